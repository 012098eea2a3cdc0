#include "TFFramework/Utilities/Graphics/Color.h"

#include <gtest/gtest.h>

#include <limits>

#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace {

using TF::LColor;

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();

TEST(LColor, PacksEachChannelRoundedAndClamped) {
  const struct {
    LColor mColor;
    std::uint32_t mPacked;
  } cases[] = {
      {{0, 0, 0, 0}, 0x00000000},
      {{1, 0, 0, 0}, 0x00FF0000},
      {{0, 1, 0, 0}, 0x0000FF00},
      {{0, 0, 1, 0}, 0x000000FF},
      {{0, 0, 0, 1}, 0xFF000000},
      {{0, 0, 0, 0.5F}, 0x80000000},
      {{0.1F, 0.9F, 0.5F, 0.25F}, 0x401AE680},
      {{-1, 2, kInfinite, -kInfinite}, 0x0000FFFF},
      {{kNoNumber, kNoNumber, kNoNumber, kNoNumber}, 0x00000000},
  };
  for (const auto& [color, packed] : cases) EXPECT_EQ(color.ToPacked(), packed) << std::hex << packed;
}

TEST(LColor, EveryByteSurvivesUnpackingAndPacking) {
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    const std::uint32_t packed = byte << 24 | (255 - byte) << 16 | (byte ^ 0x55) << 8 | byte;
    EXPECT_EQ(LColor::FromPacked(packed).ToPacked(), packed);
  }
  EXPECT_EQ(LColor::FromPacked(0x01000000).mAlpha, 0.003921569F);
}

TEST(RoundToInt32, RoundsHalvesAwayFromZeroAndSaturates) {
  const struct {
    double mValue;
    std::int32_t mRounded;
  } cases[] = {{0.5, 1},
               {-0.5, -1},
               {1.4999, 1},
               {2.5, 3},
               {2147483646.5, 2147483647},
               {2147483647.5, 2147483647},
               {1e300, 2147483647},
               {-1e300, -2147483647 - 1},
               {kInfinite, 2147483647},
               {kNoNumber, 0}};
  for (const auto& [value, rounded] : cases) EXPECT_EQ(TF::RoundToInt32(value), rounded) << value;
}

}  // namespace
