#include "TFFramework/Utilities/Graphics/Region.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using TF::Region;
using Rect = Region::Rect;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

// The same operations pixel by pixel.
constexpr int kSide = 24;

struct Grid {
  std::array<bool, kSide * kSide> mPixels{};

  template <class Change>
  void ForEach(const Rect& rect, Change change) {
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) {
        const bool inside =
            x >= rect.mX && y >= rect.mY && x < rect.mX + rect.mWidth && y < rect.mY + rect.mHeight;
        change(mPixels[static_cast<std::size_t>(y * kSide + x)], inside);
      }
    }
  }
};

Grid PixelsOf(const Region& region) {
  Grid grid;
  for (const Rect& rect : region) {
    grid.ForEach(rect, [](bool& pixel, bool inside) {
      EXPECT_FALSE(pixel && inside) << "rectangles overlap";
      pixel = pixel || inside;
    });
  }
  return grid;
}

TEST(RegionTest, KeepsTheSamePixelsAsAGridThroughRandomOperations) {
  constexpr std::uint32_t kSeed = 20261123;
  std::mt19937 random(kSeed);
  const auto upTo = [&](int limit) {
    return static_cast<std::int32_t>(random() % static_cast<unsigned>(limit));
  };
  Region region;
  Grid grid;
  for (int step = 0; step < 2000; ++step) {
    const Rect rect{upTo(kSide), upTo(kSide), upTo(12) - 1, upTo(12) - 1};
    const bool isEmpty = TF::IsEmpty(rect);
    switch (random() % 8) {
      case 0:
        region.Intersect(rect);
        grid.ForEach(rect, [&](bool& pixel, bool inside) { pixel = pixel && inside && !isEmpty; });
        break;
      case 1:
      case 2:
        region.Subtract(Region(rect));
        grid.ForEach(rect, [&](bool& pixel, bool inside) { pixel = pixel && !(inside && !isEmpty); });
        break;
      default:
        region.Add(rect);
        grid.ForEach(rect, [&](bool& pixel, bool inside) { pixel = pixel || (inside && !isEmpty); });
    }
    Region inside = region;
    inside.Intersect(Rect{0, 0, kSide, kSide});
    ASSERT_EQ(PixelsOf(inside).mPixels, grid.mPixels) << "step " << step << " of seed " << kSeed;
  }
}

TEST(RegionTest, AWholeRectangleStaysOrBecomesOne) {
  const Rect whole{0, 0, 400, 425};
  Region region(Rect{10, 10, 20, 20});
  region.Add(Rect{100, 300, 50, 10});
  region.Add(whole);
  EXPECT_TRUE(region.IsRect(whole));
  region.Add(Rect{5, 5, 10, 10});
  EXPECT_TRUE(region.IsRect(whole)) << "what is covered adds nothing";

  Region halves(Rect{0, 0, 200, 425});
  halves.Add(Rect{200, 0, 200, 425});
  EXPECT_TRUE(halves.IsRect(whole)) << "neighbours that share an edge join";
  EXPECT_TRUE(region.HasSamePixels(halves));
  EXPECT_FALSE(region.IsRect(Rect{0, 0, 400, 424}));
}

TEST(RegionTest, EndsOfTheNumberRangeDoNotWrap) {
  const Rect everything{kMin, kMin, kMax, kMax};
  Region region(everything);
  region.Subtract(Rect{-100, -100, 50, 50});
  EXPECT_FALSE(region.Contains({-75, -75}));
  EXPECT_TRUE(region.Contains({kMin, kMin}));
  EXPECT_EQ(region.GetBounds(), everything);

  Region far(Rect{kMax - 10, 0, 10, 10});
  far.Add(Rect{kMin, 0, 10, 10});
  EXPECT_EQ(far.GetBounds(), (Rect{kMin, 0, kMax, 10}));
  far.Translate({5, 0});
  EXPECT_EQ(far.GetBounds().mX, kMin + 5);
  EXPECT_TRUE(far.Contains({kMax - 5, 5}));
  EXPECT_TRUE(TF::IsEmpty(TF::Intersect(Rect{kMin, 0, 5, 5}, Rect{kMax - 5, 0, 5, 5})));
}

TEST(RegionTest, OperationsOnItselfAndOnNothing) {
  Region region(Rect{0, 0, 4, 4});
  region.Add(Rect{10, 0, 4, 4});
  const Region before = region;
  region.Add(region);
  region.Intersect(region);
  EXPECT_TRUE(region.HasSamePixels(before));
  region.Intersect(Region());
  EXPECT_TRUE(region.IsEmpty());
  EXPECT_EQ(region.GetBounds(), Rect());
  region = before;
  region.Subtract(region);
  EXPECT_TRUE(region.IsEmpty());
}

TEST(RegionTest, RectanglesThatDoNotOverlapHaveAnEmptyIntersection) {
  using Wide = TF::RectT<double>;
  const struct {
    Wide mA, mB, mBoth;
  } cases[] = {
      {{0, 0, 10, 10}, {5, 5, 10, 10}, {5, 5, 5, 5}},
      {{0, 0, 10, 10}, {20, 5, 10, 10}, {20, 5, 0, 0}},
      {{0, 0, 10, 10}, {10, 0, 5, 5}, {10, 0, 0, 0}},
      {{0, 0, -10, 10}, {-20, 0, 40, 10}, {0, 0, 0, 0}},
  };
  for (const auto& item : cases) EXPECT_EQ(TF::Intersect(item.mA, item.mB), item.mBoth);
  EXPECT_EQ(TF::Normalize(Wide{10, 10, -4, -6}), (Wide{6, 4, 4, 6}));
}

}  // namespace
