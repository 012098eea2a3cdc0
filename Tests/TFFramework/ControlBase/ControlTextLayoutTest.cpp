#include <string>

#include "TFFramework/Renderer/Renderer.h"
#include "Tests/TFFramework/ControlBase/ControlFixture.h"

namespace TF {
namespace {

// Labels whose frames hang on what their texts measure.
class ControlTextLayoutTest : public ControlFixture {
 protected:
  // A look whose text takes the left share of the frame, with an edge around its client area.
  static RCPtr<LLookDescriptor> MakeLook(float right, std::int32_t edge = 0) {
    auto look = MakeRC<LLookDescriptor>();
    look->mHasText = true;
    look->TextRightRel = right;
    look->TextBottomRel = 1;
    look->TextForegroundPart = MakeRC<LVisualPartDescriptor>();
    look->mClientPart = MakeRC<LDockedPart>();
    look->mClientPart->mPart = MakeRC<LVisualPartDescriptor>();
    look->mClientPart->OffsetLeft = look->mClientPart->OffsetTop = edge;
    look->mClientPart->OffsetRight = look->mClientPart->OffsetBottom = -edge;
    return look;
  }
  RCPtr<BoxControl> MakeLabel(const std::string& attributes, float right) {
    if (mMain) mMain->Destroy();
    mMain = nullptr;
    mApplication = nullptr;
    MakeTree(Box("label", attributes));
    mApplication->mRenderer = LRenderer::Create(static_cast<std::int32_t>(RendererType::kGdi), nullptr);
    const auto label = Child(u"label");
    label->SetFont(u"Sans", 10, LFont::kRegular, false);
    label->SetLookCount(1);
    mLook = MakeRC<LLook>(MakeLook(right), label->GetFont());
    label->SetLook(mLook, 0);
    return label;
  }

  RCPtr<LLook> mLook;
};

TEST_F(ControlTextLayoutTest, AWideTextGrowsTheFrameByWhatItsShareLacks) {
  const auto label = MakeLabel("TextOverflowXType='Expand' XSizeAbs='20'", 0.5F);
  EXPECT_EQ(label->SetText(u"A text that is wide"), kSuccess);
  const std::int32_t natural = mLook->GetFontText()->GetNaturalWidth();
  ASSERT_GT(natural, 60);
  EXPECT_EQ(label->GetBounds().mWidth, 2 * natural);
  EXPECT_EQ(label->Relayout(), kNothingDone);
  EXPECT_EQ(label->SetText(u"i"), kSuccess);
  EXPECT_EQ(label->GetBounds().mWidth, 20);
  EXPECT_EQ(label->SetText(u"i"), kNothingDone);
}

TEST_F(ControlTextLayoutTest, ATextWrapsWhereTheMaximumEndsTheGrowth) {
  const auto label =
      MakeLabel("TextOverflowXType='Expand' TextOverflowYType='Expand' XMaxSizeAbs='60' YSizeAbs='1'", 1);
  label->SetText(u"A text that is wide");
  EXPECT_EQ(label->GetBounds().mWidth, 60);
  EXPECT_TRUE(mLook->GetFontText()->IsWrapping());
  EXPECT_GT(mLook->GetFontText()->GetLineCount(), 1);
  label->Relayout();
  EXPECT_EQ(label->GetBounds().mHeight, mLook->GetFontText()->GetHeightForWidth(60));
}

TEST_F(ControlTextLayoutTest, AWrappedTextGrowsTheHeightAlone) {
  const auto label =
      MakeLabel("TextOverflowXType='Wrap' TextOverflowYType='Expand' XSizeAbs='60' YSizeAbs='1'", 1);
  label->SetText(u"A text that is wide");
  EXPECT_EQ(label->GetBounds().mWidth, 60);
  EXPECT_EQ(label->GetBounds().mHeight, mLook->GetFontText()->GetHeightForWidth(60));
  EXPECT_GT(mLook->GetFontText()->GetLineCount(), 1);
}

TEST_F(ControlTextLayoutTest, ATextThatIsCutOrHasNoShareLeavesTheFrameAlone) {
  for (const auto& [attributes, right] :
       {std::pair("XSizeAbs='20'", 0.5F), std::pair("XSizeAbs='20' TextOverflowXType='Expand'", 0.0F),
        std::pair("XSizeAbs='20' TextOverflowXType='Expand'", -1.0F)}) {
    const auto label = MakeLabel(attributes, right);
    label->SetText(u"A text that is wide");
    EXPECT_EQ(label->GetBounds().mWidth, 20) << attributes << right;
  }
}

TEST_F(ControlTextLayoutTest, AFrameAroundItsChildrenHasItsEdgesBeside) {
  MakeTree(Box("panel",
               "XSizeAbs='0' XMinSizeToControl='Children' XMinSizeRel='1' YSizeAbs='300'"
               " YMaxSizeToControl='Children' YMaxSizeRel='1'",
               Box("inner", "XSizeAbs='60'")));
  const auto panel = Child(u"panel");
  panel->SetLookCount(1);
  panel->SetLook(MakeRC<LLook>(MakeLook(1, 5), nullptr), 0);
  panel->Relayout();
  EXPECT_EQ(panel->GetBounds(), (RectT<double>{0, 0, 70, 50}));
  EXPECT_EQ(panel->GetClientRect(), (RectT<double>{5, 5, 60, 40}));
  EXPECT_EQ(panel->FindChild(u"inner")->GetWindowPosition(), (PointT<double>{5, 5}));
}

}  // namespace
}  // namespace TF
