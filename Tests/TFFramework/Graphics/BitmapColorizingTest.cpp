#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/BitmapData.h"

namespace {

using TF::ColorizerType;
using TF::LBitmap;
using TF::LColor;
using TF::LColorizer;
using TF::MakeRC;
using TF::RCPtr;

constexpr LColor kRed{1, 0, 0, 1};
constexpr TF::SizeT<std::int32_t> kSmall{2, 1};

RCPtr<LColorizer> Solid(const LColor& color) {
  auto colorizer = MakeRC<LColorizer>();
  colorizer->mColor = color;
  return colorizer;
}

RCPtr<LColorizer> Gradient(const LColor& start, const LColor& end) {
  auto colorizer = Solid(start);
  colorizer->mType = ColorizerType::kLinearGradient;
  colorizer->mEndColor = end;
  return colorizer;
}

RCPtr<LBitmap> Filled(std::uint32_t packed) {
  return LBitmap::CreateFilledBitmap(kSmall, LColor::FromPacked(packed));
}

std::uint32_t PixelOf(const RCPtr<LBitmap>& bitmap, int x = 0, int y = 0) {
  return bitmap->GetPixel(x, y).ToPacked();
}

// The text up to the line in the source.
std::string ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::exception& error) {
    const std::string text = error.what();
    return text.substr(0, text.find(" : Utilities\\Graphics\\Bitmap : Line "));
  }
  return "none";
}

TEST(BitmapFilling, EveryPixelIsThePackedColour) {
  const auto bitmap = LBitmap::CreateFilledBitmap({3, 2}, {0.5F, 0, 1, 0.5F});
  EXPECT_EQ(bitmap->GetWidth(), 3);
  EXPECT_EQ(bitmap->GetHeight(), 2);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) EXPECT_EQ(PixelOf(bitmap, x, y), 0x808000FF);
  }
}

TEST(BitmapFilling, TheColorizersAlphaIsMultiplied) {
  const auto size = TF::SizeT<std::int32_t>{1, 1};
  EXPECT_EQ(PixelOf(LBitmap::CreateColorizedBitmap(Solid({1, 1, 0, 0.5F}), 0.5F, size)), 0x40FFFF00);
  EXPECT_EQ(PixelOf(LBitmap::CreateColorizedBitmap(Gradient(kRed, kRed), 1, size, nullptr, nullptr)),
            0xFFFF0000);
}

TEST(BitmapColorizing, MixesTowardsTheColourAndKeepsAlpha) {
  const struct {
    const char* mName;
    std::uint32_t mPixel;
    LColor mColor;
    float mAlphaMod;
    std::uint32_t mResult;
  } cases[] = {
      {"no alpha", 0x12345678, {1, 1, 1, 0}, 1, 0x12345678},
      {"no alpha by the modifier", 0x12345678, {1, 1, 1, 1}, 0, 0x12345678},
      {"full alpha", 0x12345678, kRed, 1, 0x12FF0000},
      {"transparent pixels too", 0x00345678, kRed, 1, 0x00FF0000},
      {"half alpha", 0xFF00FF64, {1, 0, 0, 0.5F}, 1, 0xFF808032},
      {"half alpha by the modifier", 0xFF00FF64, {1, 0, 0, 1}, 0.5F, 0xFF808032},
      {"a quarter", 0x80204060, {0, 1, 0, 0.25F}, 1, 0x80187048},
      {"beyond the range above", 0x80FF0000, {2, 0, 0, 1}, 1, 0x80FF0000},
      {"beyond the range below", 0x80202020, {-1, 0.5F, 0, 1}, 1, 0x80008000},
      {"no number", 0x80202020, {std::numeric_limits<float>::quiet_NaN(), 0, 0, 1}, 1, 0x80000000},
  };
  for (const auto& test : cases) {
    const auto bitmap = Filled(test.mPixel);
    LBitmap::ApplyColorizer(bitmap, Solid(test.mColor), test.mAlphaMod);
    EXPECT_EQ(PixelOf(bitmap, 1, 0), test.mResult) << test.mName << std::hex << " " << PixelOf(bitmap, 1, 0);
  }
}

// Each step is rounded to single precision, so that a pixel at the edge of two values is the same on
// every machine; volatile keeps the compiler from fusing the steps.
TEST(BitmapColorizing, CountsInSingleSteps) {
  for (const float alpha : {0.1F, 0.3F, 1 / 3.0F, 0.7F, 0.9F}) {
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
      const auto bitmap = Filled(0xFF000000 | byte);
      LBitmap::ApplyColorizer(bitmap, Solid({0, 0, 0.6F, alpha}), 1);
      volatile float mixed = static_cast<float>(byte) / 255.0F;
      const volatile float rest = 1.0F - alpha;
      const volatile float color = 0.6F * alpha;
      mixed = mixed * rest;
      mixed = mixed + color;
      mixed = mixed * 255.0F;
      mixed = mixed + 0.5F;
      EXPECT_EQ(PixelOf(bitmap), 0xFF000000 | static_cast<std::uint32_t>(mixed)) << alpha << " " << byte;
    }
  }
}

TEST(BitmapColorizing, TouchesTheRectangleOfASubBitmapAlone) {
  const auto sheet = LBitmap::CreateFilledBitmap({3, 3}, {0, 0, 0, 1});
  LBitmap::ApplyColorizer(sheet->CreateSubBitmap(1, 1, 1, 1), Solid(kRed), 1);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(PixelOf(sheet, x, y), x == 1 && y == 1 ? 0xFFFF0000 : 0xFF000000);
    }
  }
}

TEST(BitmapColorizing, APictureOrAMaskIsCopiedAndTheSizeIgnored) {
  const auto source = Filled(0x40000000);
  for (const bool asMask : {false, true}) {
    const auto made = LBitmap::CreateColorizedBitmap(Solid(kRed), 1, {9, 9}, asMask ? nullptr : source,
                                                     asMask ? source : nullptr);
    EXPECT_EQ(made->GetWidth(), kSmall.mWidth);
    EXPECT_EQ(PixelOf(made), 0x40FF0000);
    EXPECT_EQ(PixelOf(source), 0x40000000);
  }
}

TEST(BitmapColorizing, FaultyCallsThrowTheirTexts) {
  const auto bitmap = Filled(0);
  const auto outside = bitmap->CreateSubBitmap(1, 0, 2, 1);
  const auto gradient = Gradient(kRed, {1, 0, 0, 0.5F});
  const auto solid = Solid(kRed);
  const std::string filled = "Runtime Error : TF::LBitmap::CreateFilledBitmap";
  const std::string colorized = "Runtime Error : TF::LBitmap::CreateColorizedBitmap";
  const std::string applied = "Runtime Error : TF::LBitmap::ApplyColorizer";
  const std::string gradientFilled = "Domain Error : TF::LBitmap::CreateGradientFilledBitmap";
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] {
         LBitmap::CreateFilledBitmap({0, 1}, kRed);
       },
       filled},
      {[&] {
         LBitmap::CreateFilledBitmap({1, -1}, kRed);
       },
       filled},
      {[&] {
         LBitmap::CreateColorizedBitmap(solid, 1, {0, 1});
       },
       colorized},
      {[&] { LBitmap::CreateColorizedBitmap(nullptr, 1, kSmall); }, colorized},
      {[&] {
         LBitmap::CreateColorizedBitmap(gradient, 1, {1, 0});
       },
       colorized},
      {[&] { LBitmap::CreateColorizedBitmap(gradient, 1, kSmall); }, gradientFilled},
      {[&] { LBitmap::CreateGradientFilledBitmap(solid, 1, kSmall); }, gradientFilled},
      {[&] { LBitmap::CreateColorizedBitmap(solid, 1, kSmall, bitmap, bitmap); },
       "Domain Error : TF::LBitmap::ApplyColorizer"},
      {[&] { LBitmap::CreateColorizedBitmap(solid, 1, kSmall, outside, nullptr); }, applied},
      {[&] { LBitmap::ApplyColorizer(nullptr, solid, 1); }, applied},
      {[&] { LBitmap::ApplyColorizer(bitmap, nullptr, 1); }, applied},
      {[&] { LBitmap::ApplyColorizer(outside, solid, 1); }, applied},
      {[&] { LBitmap::ApplyColorizer(bitmap, gradient, 1); }, gradientFilled},
      {[&] {
         const auto view = bitmap->LockPixels();
         LBitmap::ApplyColorizer(bitmap, solid, 1);
       },
       applied},
  };
  for (const auto& [action, text] : cases) EXPECT_EQ(ErrorOf(action), text);
  EXPECT_EQ(PixelOf(bitmap), 0U) << "a failed call changes nothing";
}

}  // namespace
