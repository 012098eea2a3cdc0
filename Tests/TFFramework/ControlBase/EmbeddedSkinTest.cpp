#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/DocumentSource.h"
#include "TFFramework/ControlBase/XmlReader.h"
#include "TFFramework/Utilities/Storage/FormatArgument.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/LogCapture.h"

// The skin that is linked into the program, checked as data: what it holds, and the tree of its controls.

namespace TF {
namespace {

const char16_t* const kSkinSource = u"::APP_SKINS";
constexpr std::uint32_t kEnglish = 0x0409;

struct ExpectedControl {
  const char* mPath;
  const char* mClass;
  std::int32_t mLayoutOrder;
  std::int32_t mTabStop;
  const char* mLookList;
  std::int32_t mLooks;
};

// In the order of the document. A path leaves out the screen and, in the popup, what is above it.
const ExpectedControl kControls[] = {
    {"toolTip", "Framework.ToolTip", 0, -1, "ToolTip", 1},
    {"mainControl", "FirmwareUpdater.MainControl", 0, 0, "Screen", 1},
    {"buttonExit", "Framework.Button", 15, 0, "Button.Quiet", 14},
    {"progressBar", "Framework.ProgressBar", 1, -1, "ProgressBar", 3},
    {"progressBar/activeOverlay", "Framework.Panel", 0, -1, "ProgressFill", 1},
    {"progressBar/timeRemainingLabel", "Framework.Label", 3, -2, "Trailing", 1},
    {"progressBar/percentSymbolLabel", "Framework.Label", 2, -3, "Strong", 1},
    {"progressBar/percentCompleteLabel", "Framework.Label", 1, -4, "Strong", 1},
    {"labelDeviceFirmwareVersion", "Framework.Label", 11, -14, "Strong", 1},
    {"labelFileFirmwareVersion", "Framework.Label", 10, -15, "Strong", 1},
    {"mainMenu", "Framework.MainMenu", 29, -16, "MenuBar", 1},
    {"mainMenu/templateMenu", "Framework.ComboMenu", 0, 0, "ComboMenu", 4},
    {"mainMenu/templateMenu/popupMenu", "Framework.PopupMenu", 0, 0, "PopupMenu", 3},
    {"popupMenu/corner", "Framework.Panel", 0, -1, "Scroll.Corner", 1},
    {"popupMenu/hBar", "Framework.ScrollBar", 1, -1, "Scroll.Corner", 1},
    {"popupMenu/hBar/dec", "Framework.Button", 0, -1, "Scroll.Left", 14},
    {"popupMenu/hBar/inc", "Framework.Button", 1, -1, "Scroll.Right", 14},
    {"popupMenu/hBar/channel", "Framework.ScrollChannel", 2, -1, "Scroll.Channel", 14},
    {"popupMenu/hBar/channel/thumb", "Framework.Button", 0, -1, "Thumb.H", 14},
    {"popupMenu/vBar", "Framework.ScrollBar", 2, -1, "Scroll.Corner", 1},
    {"popupMenu/vBar/dec", "Framework.Button", 0, -1, "Scroll.Up", 14},
    {"popupMenu/vBar/inc", "Framework.Button", 1, -1, "Scroll.Down", 14},
    {"popupMenu/vBar/channel", "Framework.ScrollChannel", 2, -1, "Scroll.Channel", 14},
    {"popupMenu/vBar/channel/thumb", "Framework.Button", 0, -1, "Thumb.V", 14},
    {"popupMenu/templateItem", "Framework.MenuItem", 3, -1, "MenuItem", 14},
    {"popupMenu/templateItem/checkBox", "Framework.Button", 0, -1, "CheckBox", 14},
    {"popupMenu/templateItem/hotKeyLabel", "Framework.Label", 1, -2, "Trailing", 1},
    {"buttonUpdateFirmware", "Framework.Button", 13, 2, "Button", 14},
    {"buttonScanForDevice", "Framework.Button", 14, 3, "Button", 14},
    {"labelDeviceInformation", "Framework.Label", 8, -2, "Body", 1},
    {"labelFirmwareFileInformation", "Framework.Label", 9, -3, "Body", 1},
    {"labelUpdateProcessInformation", "Framework.Label", 7, -4, "Body", 1},
    {"buttonReinitialize", "Framework.Button", 30, 4, "Button", 14},
    {"labelDeviceCannotUpdateError", "Framework.Label", 31, -5, "Body", 1},
    {"brandLogo", "Framework.Label", 2, -6, "BrandLogo", 1},
    {"productLogo", "Framework.Label", 3, -7, "Title", 1},
    {"firmwareUpdateTextLabel", "Framework.Label", 4, -8, "Secondary", 1},
    {"lineSeperatorLabel", "Framework.Label", 5, -9, "Line", 1},
    {"buttonManualDeviceHasUpdatedRescanButton", "Framework.Button", 32, 1, "Button", 14},
    {"updaterVersionLabel", "Framework.Label", 33, -10, "Secondary", 1},
};

// Where a control stands and how large it is, an axis each: what its anchor (after "@") is put at, as a
// reference, the share of it and pixels; and its size in pixels, or where its far edge is.
struct ExpectedPlace {
  const char* mControl;
  const char* mX;
  const char* mY;
};

const ExpectedPlace kPlaces[] = {
    {"mainControl", "(Parent)*0.5+0@0.5 400", "(Parent)*0.5+0@0.5 425"},
    {"buttonExit", "progressBar*0+0@0 120", "buttonUpdateFirmware*0+0@0 31"},
    {"progressBar", "(Parent)*0.05+0@0 360", "(Client)*0.89+0@1 60"},
    {"activeOverlay", "(Client)*0+0@0 0", "(Client)*0+35@0 14"},
    {"labelDeviceFirmwareVersion", "labelUpdateProcessInformation*0+0@0 to labelUpdateProcessInformation*1+0",
     "labelFileFirmwareVersion*0+0@1 20"},
    {"labelFileFirmwareVersion", "labelUpdateProcessInformation*0+0@0 to labelUpdateProcessInformation*1+0",
     "progressBar*0+0@1 20"},
    {"mainMenu", "(Client)*0+0@0 to (Client)*1+0", "(Client)*0+0@0 24"},
    {"buttonUpdateFirmware", "progressBar*0.66+0@0 120", "(Client)*0.94+0@1 31"},
    {"buttonScanForDevice", "buttonUpdateFirmware*0+0@0 to buttonUpdateFirmware*1+0",
     "buttonUpdateFirmware*0+0@0 to buttonUpdateFirmware*1+0"},
    {"labelDeviceInformation", "labelUpdateProcessInformation*0+0@0 to progressBar*1-2",
     "labelUpdateProcessInformation*0+0@0 20"},
    {"labelFirmwareFileInformation", "labelUpdateProcessInformation*0+0@0 to progressBar*1-2",
     "labelDeviceInformation*1.1+0@0 20"},
    {"labelUpdateProcessInformation", "progressBar*0-2@0 to progressBar*1-2", "lineSeperatorLabel*1+5@0 20"},
    {"buttonReinitialize", "buttonUpdateFirmware*0+0@0 to buttonUpdateFirmware*1+0",
     "buttonUpdateFirmware*0+0@0 to buttonUpdateFirmware*1+0"},
    {"labelDeviceCannotUpdateError",
     "labelUpdateProcessInformation*0+0@0 to labelUpdateProcessInformation*1+0",
     "labelUpdateProcessInformation*0+0@0 to labelUpdateProcessInformation*1+0"},
    {"brandLogo", "(Client)*0.5+0@0.5 168", "(Client)*0+8@0 62"},
    {"productLogo", "(Client)*0+0@0 to (Client)*1+0", "brandLogo*1+0@0 24"},
    {"firmwareUpdateTextLabel", "(Client)*0+0@0 to (Client)*1+0", "productLogo*1+0@0 16"},
    {"lineSeperatorLabel", "(Client)*0+0@0 to (Client)*1+0", "firmwareUpdateTextLabel*1+8@0 1"},
    {"buttonManualDeviceHasUpdatedRescanButton", "buttonReinitialize*0+0@0 to buttonReinitialize*1+0",
     "buttonReinitialize*0+0@0 to buttonReinitialize*1+0"},
    {"updaterVersionLabel", "(Client)*0+0@0 to (Client)*1+0", "(Client)*1-1@1 16"},
};

struct ExpectedFont {
  const char* mControl;
  float mSize;  // Points.
  std::int32_t mStyle;
};

constexpr std::int32_t kBold = 1;
constexpr std::int32_t kStyleOfSkin = FontAttributes::kNoFontStyle;

// All are "Arial"; the controls that are not here have the skin's font.
const ExpectedFont kFonts[] = {
    {"labelDeviceFirmwareVersion", 12, kBold},
    {"labelFileFirmwareVersion", 12, kBold},
    {"labelDeviceInformation", 12, kStyleOfSkin},
    {"labelFirmwareFileInformation", 12, kStyleOfSkin},
    {"labelUpdateProcessInformation", 12, kStyleOfSkin},
    {"labelDeviceCannotUpdateError", 12, kStyleOfSkin},
    {"productLogo", 14.25F, kStyleOfSkin},
    {"firmwareUpdateTextLabel", 9.75F, kStyleOfSkin},
    {"updaterVersionLabel", 8.25F, kStyleOfSkin},
    {"timeRemainingLabel", 9.75F, kStyleOfSkin},
    {"percentSymbolLabel", 14.25F, kBold},
    {"percentCompleteLabel", 14.25F, kBold},
};

const char* const kHidden[] = {"buttonUpdateFirmware",
                               "buttonScanForDevice",
                               "buttonReinitialize",
                               "buttonManualDeviceHasUpdatedRescanButton",
                               "mainMenu",
                               "popupMenu"};

// The controls of the document in its order, and how often each element stands there.
class Census : public XmlHandler {
 public:
  Census() {
    DocumentSource document;
    EXPECT_EQ(document.Open(kSkinSource), kSuccess);
    EXPECT_EQ(XmlReader(*this).Parse(document.GetBytes()), kSuccess);
  }
  void OnStartElement(std::u16string_view name, const XmlAttributes& attributes) override {
    const std::string element = ToUtf8(name);
    if (mPath.empty()) mRoot = element;
    ++mCounts[(mPath.empty() ? "" : mPath.back() + "/") + element];
    mPath.push_back(element);
    if (element == "SubControl") mControls.push_back(ToUtf8(*attributes.Find(u"Name")));
  }
  void OnEndElement(std::u16string_view) override { mPath.pop_back(); }
  void OnCharacterData(std::u16string_view) override {}

  std::vector<std::string> mPath;
  std::string mRoot;
  std::map<std::string, int> mCounts;  // By the element and what it stands in.
  std::vector<std::string> mControls;
};

// "+3", "-2".
std::string Pixels(double value) {
  return fmt::format("{:+}", static_cast<int>(value));
}

std::string Describe(const AxisLayout& axis) {
  const char* const kReferences[] = {"(Parent)", "(Client)", "(Self)"};
  const LayoutPosition& position = axis.mPosition;
  const LayoutSize& size = axis.mSize;
  const std::string from = position.mReference == PositionReference::kNamed
                               ? ToUtf8(position.mName)
                               : kReferences[static_cast<int>(position.mReference)];
  const std::string start =
      fmt::format("{}*{}{}@{} ", from, position.mRel, Pixels(position.mAbs), position.mAnchor);
  if (size.mReference == SizeReference::kSelf) return start + std::to_string(static_cast<int>(size.mAbs));
  const std::string to = size.mReference == SizeReference::kNamed
                             ? ToUtf8(size.mName)
                             : kReferences[static_cast<int>(size.mReference)];
  return start + fmt::format("to {}*{}{}", to, size.mRel, Pixels(size.mAbs));
}

using Controls = std::vector<RCPtr<LControlDescriptor>>;

void Collect(const RCPtr<LControlDescriptor>& control, Controls& controls) {
  for (const auto& child : control->mSubControls) {
    controls.push_back(child);
    Collect(child, controls);
  }
}

class EmbeddedSkinTest : public testing::Test {
 protected:
  void SetUp() override {
    RegisterProgramResources();
    ASSERT_EQ(mFactory->LoadResources(u"::", kEnglish), kSuccess);
    ASSERT_EQ(mFactory->GetSkinCount(), 1U);
    Collect(Skin(), mControls);
  }
  void TearDown() override { SetResources({}); }

  const SkinContents& Contents() const { return mFactory->GetSkinContents(); }
  const RCPtr<LControlDescriptor>& Skin() const { return Contents().mSkins[0]; }

  // By a name that one control has, or by a path as in the table.
  RCPtr<LControlDescriptor> Find(std::string_view path) const {
    for (const auto& control : mControls) {
      if (PathOf(*control).ends_with(fmt::format("/{}", path))) return control;
    }
    ADD_FAILURE() << path << " is not there";
    return MakeRC<LControlDescriptor>();
  }
  std::string PathOf(const LControlDescriptor& control) const {
    return control.mParent == nullptr ? "" : PathOf(*control.mParent) + "/" + ToUtf8(control.mName);
  }

  std::string NameOf(const LLookList& list) const {
    const auto& lists = Contents().mLookLists;
    const auto found = std::find_if(lists.begin(), lists.end(),
                                    [&list](const auto& entry) { return entry.second.Get() == &list; });
    return found == lists.end() ? "" : ToUtf8(found->first);
  }

  TestSupport::LogCapture mLog;
  const RCPtr<LControlFactory> mFactory = MakeRC<LControlFactory>(u"Tessel");
  Controls mControls;
};

TEST_F(EmbeddedSkinTest, EveryElementIsReadAndNoneDropped) {
  EXPECT_EQ(mLog.Text(), "");
  const Census census;
  EXPECT_EQ(census.mRoot, "Ombrel_Skin_Definitions");
  EXPECT_EQ(mFactory->GetApplicationName(), u"Brimline");
  const struct {
    const char* mElement;
    std::size_t mRead;
    std::size_t mExpected;
  } kCounts[] = {
      {"Colorizers/Colorizer", Contents().mColorizers.size(), 16},
      {"Parts/Part", Contents().mParts.size(), 64},
      {"Looks/Look", Contents().mLooks.size(), 56},
      {"LookLists/LookList", Contents().mLookLists.size(), 26},
  };
  for (const auto& [element, read, expected] : kCounts) {
    EXPECT_EQ(read, expected) << element;
    EXPECT_EQ(static_cast<std::size_t>(census.mCounts.at(element)), expected) << element;
  }
  for (const char* element : {"Skin/FontLocale", "SubControl/CreateParamList"}) {
    EXPECT_FALSE(census.mCounts.contains(element)) << element;
  }
}

TEST_F(EmbeddedSkinTest, PartsAreColoursOrPicturesOfTheFourSheets) {
  std::map<std::string, int> pictures;
  int colours = 0;
  for (const auto& [name, part] : Contents().mParts) {
    const std::string text = ToUtf8(name);
    EXPECT_NE(part->mColorizer == nullptr, part->mImageFile.IsEmpty()) << text << " is one of the two";
    EXPECT_TRUE(part->mMaskFile.IsEmpty()) << text;
    if (part->mImageFile.IsEmpty()) {
      ++colours;
    } else {
      ++pictures[ToUtf8(part->mImageFile)];
    }
  }
  EXPECT_EQ(colours, 20);
  EXPECT_EQ(pictures, (std::map<std::string, int>{{"::brimlinespritesheet.png", 12},
                                                  {"::logo_varnok_2x.png", 1},
                                                  {"::scrollsheet.png", 22},
                                                  {"::menusheet.png", 9}}));
  for (const auto& [name, colorizer] : Contents().mColorizers) {
    EXPECT_EQ(colorizer->mType, ColorizerType::kSolidFill) << ToUtf8(name);
    EXPECT_EQ(colorizer->mColor.mAlpha, 1.0F) << ToUtf8(name) << " has no eight digits";
  }
}

TEST_F(EmbeddedSkinTest, WhatIsDefinedIsUsed) {
  std::set<const LRefCountedObject*> used;
  for (const auto& [name, part] : Contents().mParts) used.insert(part->mColorizer.Get());
  for (const auto& [name, look] : Contents().mLooks) {
    if (look->mClientPart) used.insert(look->mClientPart->mPart.Get());
    for (const auto& part : look->mNonClientParts) used.insert(part->mPart.Get());
    used.insert(look->TextForegroundPart.Get());
  }
  for (const auto& [name, list] : Contents().mLookLists) {
    for (std::int32_t slot = 0; slot < list->GetCount(); ++slot) used.insert((*list)[slot].Get());
  }
  for (const auto& control : mControls) used.insert(control->mSkin->mLookList.Get());
  const auto check = [&used](const auto& map) {
    for (const auto& [name, object] : map) EXPECT_TRUE(used.contains(object.Get())) << ToUtf8(name);
  };
  check(Contents().mColorizers);
  check(Contents().mParts);
  check(Contents().mLooks);
  check(Contents().mLookLists);
}

TEST_F(EmbeddedSkinTest, ControlTreeIsThatOfTheTable) {
  const Census census;
  ASSERT_EQ(census.mControls.size(), std::size(kControls));
  ASSERT_EQ(mControls.size(), std::size(kControls));
  for (std::size_t i = 0; i < std::size(kControls); ++i) {
    const auto& [path, className, order, tab, lookList, looks] = kControls[i];
    const std::string_view name = std::string_view(path).substr(std::string_view(path).rfind('/') + 1);
    EXPECT_EQ(census.mControls[i], name) << "in the order of the document";
    const auto control = Find(path);
    ASSERT_TRUE(control->mLayout) << path;
    EXPECT_EQ(ToUtf8(control->mClass), className) << path;
    EXPECT_EQ(control->mLayout->LayoutOrder, order) << path;
    EXPECT_EQ(control->mLayout->TabStop, tab) << path;
    ASSERT_TRUE(control->mSkin->mLookList) << path;
    EXPECT_EQ(NameOf(*control->mSkin->mLookList), lookList) << path;
    EXPECT_EQ(control->mSkin->mLookList->GetCount(), looks) << path;
    EXPECT_EQ(control->mLayout->IsVisible, std::count(std::begin(kHidden), std::end(kHidden), name) == 0)
        << path;
  }
}

TEST_F(EmbeddedSkinTest, NoSlotIsEmpty) {
  for (const auto& [name, list] : Contents().mLookLists) {
    for (std::int32_t slot = 0; slot < list->GetCount(); ++slot) {
      EXPECT_TRUE((*list)[slot]) << ToUtf8(name) << ' ' << slot;
    }
  }
}

TEST_F(EmbeddedSkinTest, ControlsStandWhereTheScreenWantsThem) {
  for (const auto& [name, x, y] : kPlaces) {
    const auto control = Find(name);
    EXPECT_EQ(Describe(control->mLayout->Axis(LayoutAxis::kX)), x) << name;
    EXPECT_EQ(Describe(control->mLayout->Axis(LayoutAxis::kY)), y) << name;
  }
  const auto screen = Find("mainControl");
  for (const auto& [axis, side] : {std::pair(LayoutAxis::kX, 400), std::pair(LayoutAxis::kY, 425)}) {
    EXPECT_EQ(screen->mLayout->Axis(axis).mMinimum.mAbs, side);
    EXPECT_EQ(screen->mLayout->Axis(axis).mMaximum.mAbs, side);
  }
}

// A control is laid out after those that it refers to, or it stands where they were before.
TEST_F(EmbeddedSkinTest, ReferencesGoToSiblingsThatComeEarlier) {
  for (const auto& control : mControls) {
    std::set<String> earlier;
    for (const auto& sibling : control->mParent->mSubControls) {
      if (sibling == control) break;
      earlier.insert(sibling->mName);
    }
    for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
      const AxisLayout& layout = control->mLayout->Axis(axis);
      if (layout.mPosition.mReference == PositionReference::kNamed) {
        EXPECT_TRUE(earlier.contains(layout.mPosition.mName)) << PathOf(*control);
      }
      if (layout.mSize.mReference == SizeReference::kNamed) {
        EXPECT_TRUE(earlier.contains(layout.mSize.mName)) << PathOf(*control);
      }
    }
  }
}

TEST_F(EmbeddedSkinTest, FontsAreThoseOfTheTable) {
  EXPECT_EQ(ToUtf8(Skin()->mSkin->mFontName), "Arial");
  EXPECT_EQ(Skin()->mSkin->mFontSize, 8.25F);
  EXPECT_EQ(Skin()->mSkin->mFontStyle, 0);
  EXPECT_EQ(ToUtf8(Skin()->mSkin->mName), "Skin1");
  std::set<const LControlDescriptor*> withFont;
  for (const auto& [name, size, style] : kFonts) {
    const auto control = Find(name);
    withFont.insert(control.Get());
    EXPECT_EQ(ToUtf8(control->mSkin->mFontName), "Arial") << name;
    EXPECT_EQ(control->mSkin->mFontSize, size) << name;
    EXPECT_EQ(control->mSkin->mFontStyle, style) << name;
  }
  for (const auto& control : mControls) {
    EXPECT_EQ(control->mSkin->mFontSize > 0, withFont.contains(control.Get())) << PathOf(*control);
  }
}

TEST_F(EmbeddedSkinTest, TextsWrapFloatAndDockAsTheirControlsNeedIt) {
  for (const char* name : {"labelDeviceInformation", "labelFirmwareFileInformation",
                           "labelUpdateProcessInformation", "labelDeviceCannotUpdateError"}) {
    EXPECT_EQ(Find(name)->mLayout->Axis(LayoutAxis::kX).mTextOverflow, TextOverflow::kWrap) << name;
    EXPECT_EQ(Find(name)->mLayout->Axis(LayoutAxis::kY).mTextOverflow, TextOverflow::kExpand) << name;
  }
  for (const auto& control : mControls) {
    const std::string name = ToUtf8(control->mName);
    const bool floats = name == "popupMenu" || name == "toolTip";
    EXPECT_EQ(control->mLayout->ClipToParent, !floats) << name;
    EXPECT_EQ(control->mLayout->Z_Order >= 1000, floats) << name;
    const bool isDocked = name == "corner" || name == "hBar" || name == "vBar";
    EXPECT_EQ(control->mLayout->Axis(LayoutAxis::kX).mPosition.mIsDocked, isDocked) << name;
    EXPECT_EQ(control->mLayout->Axis(LayoutAxis::kY).mPosition.mIsDocked, isDocked) << name;
  }
}

}  // namespace
}  // namespace TF
