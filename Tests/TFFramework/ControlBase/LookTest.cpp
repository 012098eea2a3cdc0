#include "TFFramework/ControlBase/Look.h"

#include <gtest/gtest.h>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/PngWriter.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/ControlBase/LookParts.h"
#include "Tests/TFFramework/Renderer/ClockApplication.h"

namespace TF {

namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kClear = 0;

class LookTest : public testing::Test {
 protected:
  static constexpr RectT<std::int32_t> kArea{0, 0, 60, 40};

  void SetUp() override {
    mApplication->mRenderer = mRenderer;
    mRenderer->CreateRenderContext(kArea, nullptr, true, mContext);
  }

  // Draws a look with its frame at x, y of the target.
  void Draw(LLook& look, double x = 0, double y = 0, const Region& dirty = Region(kArea)) {
    mContext->mRegion = Region(kArea);
    mRenderer->RenderStart(mContext);
    mRenderer->SaveState();
    mRenderer->PushOrigin({x, y});
    mClientDrawn = look.RenderClient(mRenderer, dirty);
    mNonClientDrawn = look.RenderNonClient(mRenderer, dirty);
    look.RenderText(mRenderer, dirty, {0, 0});
    mRenderer->RestoreState();
    mRenderer->RestoreState();
    mRenderer->RenderFinish(mContext);
  }
  std::uint32_t At(std::int32_t x, std::int32_t y) {
    const auto view = dynamic_cast<LGDIRenderContextInfo&>(*mContext).mBackBuffer->GetCanvas().GetPixels();
    return view.mPixels[static_cast<std::size_t>(y) * view.mStride / sizeof(std::uint32_t) +
                        static_cast<std::size_t>(x)];
  }
  // How many pixels of a rectangle are not clear.
  int CountInk(const RectT<std::int32_t>& rect) {
    int count = 0;
    for (std::int32_t y = rect.mY; y < rect.GetBottom(); ++y) {
      for (std::int32_t x = rect.mX; x < rect.GetRight(); ++x) count += At(x, y) != kClear;
    }
    return count;
  }
  RCPtr<LVisualPartDescriptor> PicturePart(std::uint32_t width, std::uint32_t height,
                                           const std::vector<std::uint32_t>& pixels, ResizeType type) {
    const std::string name = "Picture" + std::to_string(mPictures++) + ".png";
    const auto bytes = TestSupport::WriteArgbPng(width, height, pixels);
    mFolder.WriteFile(name, std::string(bytes.begin(), bytes.end()));
    auto part = MakeRC<LVisualPartDescriptor>();
    part->mImageFile = String(mFolder.InnerEntry(name));
    part->mImageRect = {0, 0, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    part->mSize = {part->mImageRect.mWidth, part->mImageRect.mHeight};
    part->mResizeType = type;
    return part;
  }

  TestSupport::TemporaryFolder mFolder;
  int mPictures = 0;
  RCPtr<ClockApplication> mApplication = MakeRC<ClockApplication>();
  RCPtr<LRenderer> mRenderer = LRenderer::Create(static_cast<std::int32_t>(RendererType::kGdi), nullptr);
  RCPtr<LRenderContextInfo> mContext;
  RCPtr<LLookDescriptor> mDescriptor = MakeRC<LLookDescriptor>();
  bool mClientDrawn = false;
  bool mNonClientDrawn = false;
};

TEST_F(LookTest, PlacesPartsByTheEdgesTheyName) {
  using Offset = std::optional<std::int32_t>;
  struct Case {
    Offset mLeft, mRight, mWidth;
    std::int32_t mFrom, mTo;  // Columns of a frame of 20 that a part of 5 covers.
  };
  const Case cases[] = {
      {2, {}, {}, 2, 7}, {{}, -3, {}, 12, 17}, {2, -3, {}, 2, 17}, {{}, {}, {}, 7, 12}, {{}, {}, 8, 6, 14},
      {0, {}, 8, 0, 8},  {{}, 0, 30, 0, 20},   {-2, {}, {}, 0, 3}, {15, -10, {}, 0, 0}, {{}, {}, 31, 0, 20},
  };
  for (const Case& entry : cases) {
    auto docked = Client(ColorPart(kRed, {5, 4}), entry.mLeft.value_or(0), 0, entry.mRight.value_or(0), 0);
    docked->mHasLeft = entry.mLeft.has_value();
    docked->mHasRight = entry.mRight.has_value();
    docked->Width = entry.mWidth;
    auto descriptor = MakeRC<LLookDescriptor>();
    descriptor->mNonClientParts.Add(docked);
    LLook look(descriptor, nullptr);
    look.SetSize({20, 4});
    const RectT<double> frame{0, 0, 20, 4};
    mContext->mRegion = Region(kArea);
    mRenderer->RenderStart(mContext);
    {
      const CAutoClip clip(mRenderer, frame, frame, nullptr, true);
      EXPECT_EQ(look.RenderNonClient(mRenderer, Region(kArea)), entry.mTo > entry.mFrom);
    }
    mRenderer->RenderFinish(mContext);
    for (std::int32_t x = 0; x < 20; ++x) {
      EXPECT_EQ(At(x, 2), x >= entry.mFrom && x < entry.mTo ? kRed : kClear) << x;
    }
  }
}

TEST_F(LookTest, TheClientAreaStaysInsideTheFrame) {
  struct Case {
    SizeT<std::int32_t> mFrame;
    std::int32_t mLeft, mTop, mRight, mBottom;
    RectT<std::int32_t> mClient;
  };
  for (const Case& entry :
       {Case{{20, 10}, 3, 2, -4, -1, {3, 2, 13, 7}}, Case{{20, 10}, -3, -2, 5, 5, {0, 0, 20, 10}},
        Case{{20, 10}, 30, 2, -4, -9, {20, 2, 0, 0}}, Case{{0, 0}, 3, 2, -4, -1, {0, 0, 0, 0}}}) {
    auto descriptor = MakeRC<LLookDescriptor>();
    descriptor->mClientPart = Client(ColorPart(kRed), entry.mLeft, entry.mTop, entry.mRight, entry.mBottom);
    LLook look(descriptor, nullptr);
    look.SetSize(entry.mFrame);
    EXPECT_EQ(look.GetClientRect(), entry.mClient);
  }
  LLook bare(mDescriptor, nullptr);
  bare.SetSize({7, 5});
  EXPECT_EQ(bare.GetClientRect(), (RectT<std::int32_t>{0, 0, 7, 5}));
}

TEST_F(LookTest, DrawsOnlyWhatIsDirtyAndNothingWithoutAFrame) {
  mDescriptor->mClientPart = Client(ColorPart(kGreen), 0, 0, 0, 0);
  LLook look(mDescriptor, nullptr);
  look.SetSize({20, 10});
  Draw(look, 10, 5, Region({12, 6, 3, 2}));
  EXPECT_TRUE(mClientDrawn);
  EXPECT_FALSE(mNonClientDrawn);
  EXPECT_EQ(CountInk(kArea), 6);
  EXPECT_EQ(At(12, 6), kGreen);
  Draw(look, 10, 5, Region({0, 0, 10, 40}));
  EXPECT_FALSE(mClientDrawn);
  EXPECT_FALSE(look.RenderClient(mRenderer, Region(kArea)));
  look.SetClipRegion(Region({0, 0, 2, 2}));
  Draw(look, 10, 5);
  EXPECT_EQ(CountInk(kArea), 4);
}

TEST_F(LookTest, WhatIsSeenIsWhatIsHit) {
  // Columns: red, nothing, blue.
  const std::vector<std::uint32_t> row = {kRed, kClear, kBlue};
  struct Case {
    ResizeType mType;
    std::int32_t mWidth;
  };
  for (const Case& entry :
       {Case{ResizeType::kStretch, 3}, Case{ResizeType::kStretch, 9}, Case{ResizeType::kStretch, 10},
        Case{ResizeType::kTile, 8}, Case{ResizeType::kTile, 31}, Case{ResizeType::kCenter, 9},
        Case{ResizeType::kCenter, 8}, Case{ResizeType::kCenter, 3}}) {
    auto descriptor = MakeRC<LLookDescriptor>();
    descriptor->mClientPart = Client(PicturePart(3, 1, row, entry.mType), 0, 0, 0, 0);
    LLook look(descriptor, nullptr);
    look.SetSize({entry.mWidth, 1});
    Draw(look);
    for (std::int32_t x = 0; x < entry.mWidth; ++x) {
      const std::uint32_t hit = look.GetColorAtPoint({static_cast<double>(x), 0});
      EXPECT_EQ(At(x, 0), hit >> 24 == 0 ? kClear : hit)
          << x << " of " << entry.mWidth << " by " << static_cast<int>(entry.mType);
    }
    EXPECT_EQ(look.GetColorAtPoint({-1, 0}), LVisualPart::kNothing);
    EXPECT_EQ(look.GetColorAtPoint({static_cast<double>(entry.mWidth), 0}), LVisualPart::kNothing);
  }
}

TEST_F(LookTest, AColourIsHitWhereItIsSeen) {
  struct Case {
    ResizeType mType;
    SizeT<std::int32_t> mSize;
  };
  for (const Case& entry : {Case{ResizeType::kStretch, {0, 0}}, Case{ResizeType::kTile, {3, 3}},
                            Case{ResizeType::kCenter, {7, 4}}, Case{ResizeType::kCenter, {20, 1}},
                            Case{ResizeType::kStretch, {INT32_MAX, INT32_MAX}}}) {
    auto part = ColorPart(kRed, entry.mSize);
    part->mResizeType = entry.mType;
    auto descriptor = MakeRC<LLookDescriptor>();
    descriptor->mClientPart = Client(part, 0, 0, 0, 0);
    LLook look(descriptor, nullptr);
    look.SetSize({10, 5});
    Draw(look);
    for (std::int32_t y = 0; y < 5; ++y) {
      for (std::int32_t x = 0; x < 10; ++x) {
        const bool hit = look.GetColorAtPoint({static_cast<double>(x), static_cast<double>(y)}) >> 24 > 0;
        EXPECT_EQ(At(x, y) != kClear, hit) << x << ' ' << y << " of " << entry.mSize.mWidth;
      }
    }
  }
}

// A skin may say that a part is larger than the whole sheet.
TEST_F(LookTest, APartBeyondItsImageIsHitAtOnce) {
  auto part = PicturePart(2, 2, std::vector<std::uint32_t>(4, kClear), ResizeType::kStretch);
  part->mImageRect = {-5, -5, INT32_MAX, INT32_MAX};
  mDescriptor->mClientPart = Client(part, 0, 0, 0, 0);
  LLook look(mDescriptor, nullptr);
  look.SetSize({1, 1});
  EXPECT_EQ(look.GetColorAtPoint({0, 0}), LVisualPart::kNothing);
}

TEST_F(LookTest, OffsetsAtTheEndOfTheNumbersLeaveALook) {
  mDescriptor->mHasText = true;
  mDescriptor->TextForegroundPart = ColorPart(kRed);
  for (const std::int32_t offset : {INT32_MAX, INT32_MIN}) {
    mDescriptor->TextLeftAbs = -offset / 2;
    mDescriptor->TextRightAbs = mDescriptor->TextTopAbs = offset;
    mDescriptor->mClientPart = Client(ColorPart(kGreen), 0, offset, offset, 0);
    mDescriptor->mNonClientParts.Add(
        Client(ColorPart(kBlue, {INT32_MAX, 1}), -offset / 2, offset, offset, offset));
    LLook look(mDescriptor, nullptr);
    look.SetSize({10, 10});
    Draw(look);
    EXPECT_EQ(look.GetClientRect().mWidth, offset > 0 ? 10 : 0);
  }
}

// Shrinking leaves pixels out; whoever clicks there still means the part.
TEST_F(LookTest, AShrunkPictureIsHitWhereAnyOfItsPixelsIsOpaque) {
  std::vector<std::uint32_t> pixels(36, kClear);
  pixels[7] = kRed;
  mDescriptor->mClientPart = Client(PicturePart(6, 6, pixels, ResizeType::kStretch), 0, 0, 0, 0);
  LLook look(mDescriptor, nullptr);
  look.SetSize({2, 2});
  EXPECT_EQ(look.GetColorAtPoint({0, 0}), kRed);
  EXPECT_EQ(look.GetColorAtPoint({1, 0}), LVisualPart::kNothing);
  EXPECT_EQ(look.GetColorAtPoint({1, 1}), LVisualPart::kNothing);
}

TEST_F(LookTest, TheFirstOpaquePartUnderAPointCounts) {
  mDescriptor->mClientPart = Client(ColorPart(kRed), 0, 0, 0, 0);
  mDescriptor->mNonClientParts.Add(Client(ColorPart(0x00FFFFFF), 0, 0, 0, 0));
  mDescriptor->mNonClientParts.Add(Client(ColorPart(kBlue), 0, 0, -10, 0));
  LLook look(mDescriptor, nullptr);
  look.SetSize({20, 10});
  EXPECT_EQ(look.GetColorAtPoint({5, 5}), kBlue);
  EXPECT_EQ(look.GetColorAtPoint({15, 5}), kRed);
  look.SetOverlay(MakeRC<LVisualPart>(LBitmap::CreateFilledBitmap({2, 2}, LColor::FromPacked(kGreen)),
                                      ResizeType::kStretch),
                  true);
  EXPECT_EQ(look.GetColorAtPoint({15, 5}), kGreen);
  Draw(look);
  EXPECT_EQ(At(15, 5), kGreen);
  EXPECT_EQ(At(5, 5), kBlue);
  look.SetSize({0, 0});
  EXPECT_EQ(look.GetColorAtPoint({0, 0}), LVisualPart::kNothing);
}

TEST_F(LookTest, APartWhosePictureIsBrokenDrawsNothingAndSaysSoOnce) {
  TestSupport::LogCapture log;
  const auto part = PicturePart(2, 2, std::vector<std::uint32_t>(4, kRed), ResizeType::kStretch);
  part->mColorizer = Solid(kBlue);
  mFolder.WriteFile("Picture0.png", "no picture");
  mDescriptor->mClientPart = Client(part, 0, 0, 0, 0);
  for (int i = 0; i < 2; ++i) {
    LLook look(mDescriptor, nullptr);
    look.SetSize({20, 10});
    Draw(look);
    EXPECT_EQ(CountInk(kArea), 0);
    EXPECT_EQ(look.GetColorAtPoint({5, 5}), LVisualPart::kNothing);
  }
  const std::string text = log.Text();
  EXPECT_NE(text.find("Picture0.png"), std::string::npos);
  EXPECT_EQ(text.find("Picture0.png"), text.rfind("Picture0.png")) << text;
}

TEST_F(LookTest, APartThatNamesNothingIsAnError) {
  const auto part = MakeRC<LVisualPartDescriptor>();
  part->mSize = {1, 1};
  const LVisualPart visual(*part);
  EXPECT_THROW(visual.Draw(*mRenderer, {1, 1}), Exception<std::runtime_error>);
  EXPECT_THROW(visual.GetColorAtPoint({0, 0}), Exception<std::runtime_error>);
}

class LookTextTest : public LookTest {
 protected:
  LookTextTest() {
    mDescriptor->mHasText = true;
    mDescriptor->TextRightRel = 1;
    mDescriptor->TextBottomRel = 1;
    mDescriptor->TextForegroundPart = ColorPart(kRed, {0, 0});
  }
  const RCPtr<LFont> mFont = LFont::Get(u"Arial", 8.25F, LFont::kRegular);
};

TEST_F(LookTextTest, PlacesLinesByTheirAlignment) {
  mDescriptor->TextLeftAbs = 5;
  mDescriptor->TextTopAbs = 3;
  mDescriptor->TextHAlign = 1;
  mDescriptor->TextVAlign = 0.5F;
  LLook look(mDescriptor, mFont);
  look.SetSize({105, 63});
  look.SetText(u"Long line\nx");
  const LFontText& text = *look.GetFontText();
  ASSERT_EQ(text.GetLineCount(), 2);
  const std::int32_t height = mFont->GetHeight();
  ASSERT_GT(height, 0);
  for (std::int32_t i = 0; i < 2; ++i) {
    EXPECT_EQ(text.GetLineRect(i).GetRight(), 100) << i;
    EXPECT_EQ(text.GetLineRect(i).mY,
              (60 - 2.0F * static_cast<float>(height)) / 2 + static_cast<float>(i * height));
  }
  EXPECT_GT(text.GetLineRect(1).mX, text.GetLineRect(0).mX);
  EXPECT_EQ(text.GetTextBounds().GetRight(), 100);
  EXPECT_EQ(text.GetTextBounds().mHeight, 2 * height);
}

TEST_F(LookTextTest, WrapsToItsRectangleAndMeasuresForAnother) {
  LLook look(mDescriptor, mFont);
  look.SetText(u"one two three four");
  look.SetSize({1000, 40});
  const LFontText& text = *look.GetFontText();
  const std::int32_t height = mFont->GetHeight();
  const std::int32_t whole = text.GetNaturalWidth();
  EXPECT_GT(whole, 60);
  look.SetWrap(true);
  EXPECT_EQ(text.GetLineCount(), 1);
  EXPECT_EQ(text.GetHeightForWidth(whole), height);
  EXPECT_EQ(text.GetHeightForWidth(whole - 2), 2 * height);
  look.SetSize({whole / 2, 40});
  EXPECT_GE(text.GetLineCount(), 2);
  look.SetText(u"");
  EXPECT_EQ(text.GetLineCount(), 1);
  EXPECT_EQ(text.GetHeightForWidth(1), height);
  EXPECT_EQ(text.GetNaturalWidth(), 0);
}

TEST_F(LookTextTest, LinesThatWereMadeBeforeThereWasARendererAreMadeAgain) {
  mApplication->mRenderer = nullptr;
  LLook look(mDescriptor, mFont);
  look.SetSize({200, 40});
  look.SetText(u"some text");
  EXPECT_EQ(look.GetFontText()->GetLineRect(0).mWidth, 0);
  mApplication->mRenderer = mRenderer;
  EXPECT_GT(look.GetFontText()->GetLineRect(0).mWidth, 20);
  EXPECT_GT(look.GetFontText()->GetLineRect(0).mHeight, 0);
}

TEST_F(LookTextTest, DrawsInsideItsRectangleInTheColourOfItsPart) {
  mDescriptor->TextLeftAbs = 10;
  mDescriptor->TextRightAbs = -20;
  LLook look(mDescriptor, mFont);
  look.SetSize({60, 40});
  look.SetText(u"MMMMMMMMMM");
  Draw(look);
  EXPECT_EQ(CountInk({0, 0, 10, 40}), 0);
  EXPECT_EQ(CountInk({40, 0, 20, 40}), 0);
  EXPECT_GT(CountInk({10, 0, 30, 40}), 20);
  bool solid = false;
  for (std::int32_t x = 10; x < 40; ++x) {
    for (std::int32_t y = 0; y < 20; ++y) solid |= At(x, y) == kRed;
  }
  EXPECT_TRUE(solid);
}

TEST_F(LookTextTest, ATextInAPictureOrAGradientIsAnErrorWhenItIsDrawn) {
  const auto gradient = ColorPart(kRed);
  gradient->mColorizer = Solid(kRed);
  gradient->mColorizer->mType = ColorizerType::kLinearGradient;
  const std::pair<RCPtr<LVisualPartDescriptor>, const char*> cases[] = {
      {PicturePart(1, 1, {kRed}, ResizeType::kStretch),
       "Domain Error : Bitmap fill for text foreground part"},
      {gradient, "Domain Error : Gradient fill for text foreground part"}};
  for (const auto& [part, text] : cases) {
    mDescriptor->TextForegroundPart = part;
    LLook look(mDescriptor, mFont);
    look.SetSize({60, 40});
    look.SetText(u"text");
    try {
      look.RenderText(mRenderer, Region(kArea), {0, 0});
      ADD_FAILURE() << text;
    } catch (const Exception<std::domain_error>& error) {
      EXPECT_EQ(std::string(error.what()).rfind(text, 0), 0U) << error.what();
    }
  }
}

}  // namespace

}  // namespace TF
