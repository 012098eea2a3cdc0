#include "TFFramework/ControlBase/LayoutAttributes.h"

#include <fmt/format.h>

#include "Tests/TFFramework/ControlBase/SkinDocumentFixture.h"

namespace TF {
namespace {

using LayoutAttributesTest = SkinDocumentFixture;

// A document with one control, which has these attributes.
std::string ControlDocument(const std::string& attributes) {
  return SkinDocument("<Skin><SubControl Class='C' Name='n' " + attributes + "/></Skin>");
}

// A value of a layout in words.
struct LayoutField {
  const char* mName;  // "?" stands for the axis.
  const char *mText, *mDefaultX, *mDefaultY, *mRead;
  std::string (*mGet)(const LLayoutDescriptor& layout, LayoutAxis axis);
};

template <class T>
std::string ToText(const T& value) {
  return fmt::format("{}", value);
}

template <class Reference>
std::string ToText(const Reference& reference, const String& name) {
  return fmt::format("{} {}", static_cast<int>(reference), ToUtf8(name));
}

using Layout = LLayoutDescriptor;

const LayoutField kLayoutFields[] = {
    {"ClipToParent", "False", "true", "true", "false",
     [](const Layout& layout, LayoutAxis) { return ToText(layout.ClipToParent); }},
    {"IsVisible", "true", "true", "true", "false",
     [](const Layout& layout, LayoutAxis) { return ToText(layout.IsVisible); }},
    {"Z_Order", "-5", "0", "0", "-5",
     [](const Layout& layout, LayoutAxis) { return ToText(layout.Z_Order); }},
    {"LayoutOrder", "7", "0", "0", "7",
     [](const Layout& layout, LayoutAxis) { return ToText(layout.LayoutOrder); }},
    {"TabStop", "-14", "0", "0", "-14",
     [](const Layout& layout, LayoutAxis) { return ToText(layout.TabStop); }},
    {"TextDecoration", "any", "", "", "any",
     [](const Layout& layout, LayoutAxis) { return ToUtf8(layout.TextDecoration); }},
    {"TextOverflow?Type", "Expand", "0", "0", "1",
     [](const Layout& layout, LayoutAxis axis) {
       return ToText(static_cast<int>(layout.Axis(axis).mTextOverflow));
     }},
    {"?IsDocked", "True", "false", "false", "true",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mPosition.mIsDocked); }},
    {"?PlacementAnchor", "0.5", "0", "0", "0.5",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mPosition.mAnchor); }},
    {"?PositionToControl", "sibling", "1 ", "1 ", "2 sibling",
     [](const Layout& layout, LayoutAxis axis) {
       const LayoutPosition& position = layout.Axis(axis).mPosition;
       return ToText(position.mReference, position.mName);
     }},
    {"?PositionRel", "0.25", "0", "0", "0.25",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mPosition.mRel); }},
    {"?PositionAbs", "-12.7", "0", "0", "-12",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mPosition.mAbs); }},
    {"?SizeToControl", "sibling", "2 ", "2 ", "3 sibling",
     [](const Layout& layout, LayoutAxis axis) {
       return ToText(layout.Axis(axis).mSize.mReference, layout.Axis(axis).mSize.mName);
     }},
    {"?SizeRel", "1", "0", "0", "1",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mSize.mRel); }},
    {"?SizeAbs", "120", "16", "40", "120",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mSize.mAbs); }},
    {"?MinSizeToControl", "Children", "0 ", "0 ", "1 Children",
     [](const Layout& layout, LayoutAxis axis) {
       return ToText(layout.Axis(axis).mMinimum.mIsNamed, layout.Axis(axis).mMinimum.mName);
     }},
    {"?MinSizeRel", "0.1", "0", "0", "0.1",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mMinimum.mRel); }},
    {"?MinSizeAbs", "30", "0", "0", "30",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mMinimum.mAbs); }},
    {"?MaxSizeToControl", "Children", "0 ", "0 ", "1 Children",
     [](const Layout& layout, LayoutAxis axis) {
       return ToText(layout.Axis(axis).mMaximum.mIsNamed, layout.Axis(axis).mMaximum.mName);
     }},
    {"?MaxSizeRel", "0.2", "0", "0", "0.2",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mMaximum.mRel); }},
    {"?MaxSizeAbs", "40", "0", "0", "40",
     [](const Layout& layout, LayoutAxis axis) { return ToText(layout.Axis(axis).mMaximum.mAbs); }},
};

std::string NameOnAxis(std::string name, LayoutAxis axis) {
  if (const auto mark = name.find('?'); mark != name.npos) name[mark] = axis == LayoutAxis::kX ? 'X' : 'Y';
  return name;
}

TEST_F(LayoutAttributesTest, EachAttributeOfALayoutSetsItsOwnFieldAlone) {
  for (const LayoutField& written : kLayoutFields) {
    for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
      const std::string name = NameOnAxis(written.mName, axis);
      ASSERT_EQ(Load(ControlDocument(name + "='" + written.mText + "'")), kSuccess);
      const LLayoutDescriptor& layout = *Skin()->mSubControls[0]->mLayout;
      for (const LayoutField& field : kLayoutFields) {
        for (const LayoutAxis other : {LayoutAxis::kX, LayoutAxis::kY}) {
          const char* unset = other == LayoutAxis::kX ? field.mDefaultX : field.mDefaultY;
          const bool isWritten = NameOnAxis(field.mName, other) == name;
          EXPECT_EQ(field.mGet(layout, other), isWritten ? field.mRead : unset) << name << " " << field.mName;
        }
      }
    }
  }
}

TEST_F(LayoutAttributesTest, WordsOfALayoutHaveTheirMeaning) {
  const struct {
    const char *mAttributes, *mField, *mRead;
  } cases[] = {
      {"XPositionToControl='Parent'", "?PositionToControl", "0 "},
      {"XPositionToControl='Screen'", "?PositionToControl", "0 "},
      {"XPositionToControl='Client'", "?PositionToControl", "1 "},
      {"XPositionToControl='Active Window'", "?PositionToControl", "1 "},
      {"XPositionToControl='Self'", "?PositionToControl", "2 Self"},
      {"XPositionToControl='parent'", "?PositionToControl", "2 parent"},
      {"XSizeToControl='Parent'", "?SizeToControl", "0 "},
      {"XSizeToControl='Screen'", "?SizeToControl", "0 "},
      {"XSizeToControl='Client'", "?SizeToControl", "1 "},
      {"XSizeToControl='Active Window'", "?SizeToControl", "1 "},
      {"XSizeToControl='Self'", "?SizeToControl", "2 "},
      {"XMinSizeToControl='Self'", "?MinSizeToControl", "0 "},
      {"XMinSizeToControl='Parent'", "?MinSizeToControl", "1 Parent"},
      {"TextOverflowXType='Wrap'", "TextOverflow?Type", "2"},
      {"TextOverflowXType='expand'", "TextOverflow?Type", "0"},
      {"IsVisible='True'", "IsVisible", "true"},
      {"XIsDocked='true'", "?IsDocked", "false"},
      {"XSizeAbs='0x20'", "?SizeAbs", "32"},
      {"XSizeAbs='wide'", "?SizeAbs", "0"},
  };
  for (const auto& [attributes, name, read] : cases) {
    ASSERT_EQ(Load(ControlDocument(attributes)), kSuccess);
    for (const LayoutField& field : kLayoutFields) {
      if (std::string(field.mName) != name) continue;
      EXPECT_EQ(field.mGet(*Skin()->mSubControls[0]->mLayout, LayoutAxis::kX), read) << attributes;
    }
  }
  ASSERT_EQ(Load(ControlDocument("TextOverflowYType='Wrap'")), kSuccess);
  EXPECT_EQ(Skin()->mSubControls[0]->mLayout->Axis(LayoutAxis::kY).mTextOverflow, TextOverflow::kClip);
  ASSERT_EQ(Load(SkinDocument("<Skin><SubControl Class='Application' Name='n' IsVisible='False' TabStop='3' "
                              "Z_Order='2'/></Skin>")),
            kSuccess);
  EXPECT_TRUE(Skin()->mSubControls[0]->mLayout->IsVisible);
  EXPECT_EQ(Skin()->mSubControls[0]->mLayout->TabStop, 0);
  EXPECT_EQ(Skin()->mSubControls[0]->mLayout->Z_Order, 2);
}

}  // namespace
}  // namespace TF
