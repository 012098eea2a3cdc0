#include "TFFramework/ControlBase/LayoutArithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

namespace TF {

void PrintTo(const LayoutSpan& span, std::ostream* out) {
  *out << span.mPosition << "+" << span.mSize;
}

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kHuge = std::numeric_limits<double>::infinity();

TEST(LayoutArithmeticTest, RoundsHalvesAwayFromZeroAndSnapsDown) {
  const struct {
    double mValue, mRounded, mSnapped;
  } cases[] = {{0, 0, 0},
               {0.5, 1, 0},
               {-0.5, -1, -1},
               {2.4999, 2, 2},
               {-2.5, -3, -3},
               {-3, -3, -3},
               {399.49999, 399, 399},
               {std::nextafter(7.0, 0.0), 7, 7},
               {std::nextafter(-7.0, -8.0), -7, -7},
               {6.999, 7, 6},
               {kNan, 0, 0},
               {kHuge, kLayoutInfinite, kLayoutInfinite},
               {-kHuge, -kLayoutInfinite, -kLayoutInfinite}};
  for (const auto& [value, rounded, snapped] : cases) {
    EXPECT_EQ(RoundCoordinate(value), rounded) << value;
    EXPECT_EQ(SnapCoordinate(value), snapped) << value;
  }
}

TEST(LayoutArithmeticTest, AFractionIsTakenAsTheFloatThatItIs) {
  EXPECT_EQ(EdgeAt({0, 425}, 0.94F, 0), 399);
  EXPECT_EQ(EdgeAt({10, 101}, 0.5F, -3), 58);
  EXPECT_EQ(EdgeOf({10, 101}, 0.5F, -3), 57.5);
  EXPECT_EQ(EdgeAt({0, kHuge}, 0, 0), 0);
}

TEST(LayoutArithmeticTest, TheSideThatFacesTheEdgeLiesOnIt) {
  const struct {
    double mPosition;
    float mAnchor;
    double mFar;
    LayoutSpan mExpected;
  } cases[] = {{5, 0, 90, {5, 85}},      {100, 1, 90, {90, 10}}, {50, 0.5F, 80, {20, 60}},
               {50, 0.5F, 20, {20, 60}}, {5, 0, 2, {5, 0}},      {5, 1, 90, {5, 0}},
               {5, 0, 5, {5, 0}},        {5, -1, 90, {5, 0}},    {5, 2, 1, {5, 0}},
               {5, 0.25F, 35, {-5, 40}}, {kNan, 0, 9, {0, 0}},   {0, 0, kHuge, {0, kLayoutInfinite}}};
  for (const auto& [position, anchor, far, expected] : cases) {
    EXPECT_EQ(SpanToEdge(position, anchor, far), expected) << position << " " << anchor << " " << far;
  }
}

TEST(LayoutArithmeticTest, ASizeOfItsOwnIsHeldAtTheAnchor) {
  const struct {
    double mPosition;
    float mAnchor;
    double mSize;
    LayoutSpan mExpected;
  } cases[] = {{51, 0.5F, 30, {36, 30}}, {100, 1, 30, {70, 30}}, {7, 0, -30, {7, 0}}, {7, 1, kNan, {7, 0}}};
  for (const auto& [position, anchor, size, expected] : cases) {
    EXPECT_EQ(SpanOfSize(position, anchor, size), expected) << position << " " << anchor;
  }
}

TEST(LayoutArithmeticTest, LimitsChangeTheSizeAroundTheAnchor) {
  EXPECT_EQ(GrowTo({10, 20}, 0, 50), (LayoutSpan{10, 50}));
  EXPECT_EQ(GrowTo({10, 20}, 0.5F, 51), (LayoutSpan{-6, 51}));
  EXPECT_EQ(GrowTo({10, 20}, 1, 20), (LayoutSpan{10, 20}));
  EXPECT_EQ(ShrinkTo({10, 20}, 1, 5), (LayoutSpan{25, 5}));
  EXPECT_EQ(ShrinkTo({10, 20}, 0, 21), (LayoutSpan{10, 20}));
  EXPECT_EQ(ShrinkToLimit({10, 20}, 0, 15), (LayoutSpan{10, 5}));
  EXPECT_EQ(ShrinkToLimit({10, 20}, 0, 10), (LayoutSpan{10, 20}));
  EXPECT_EQ(ShrinkToLimit({10, 20}, 0, 30), (LayoutSpan{10, 20}));
}

TEST(LayoutArithmeticTest, AnEdgeGrowsToItsLimitUnlessTheAnchorHoldsIt) {
  const struct {
    LayoutSpan mSpan;
    float mAnchor;
    double mLimit;
    TFRESULT mResult;
    LayoutSpan mExpected;
  } cases[] = {{{10, 20}, 0, 50, kSuccess, {10, 40}},  {{10, 20}, 0.5F, 50, kSuccess, {-10, 60}},
               {{10, 20}, 1, 50, kFailure, {10, 20}},  {{10, 20}, 0, 30, kSuccess, {10, 20}},
               {{10, 20}, 1, 4, kSuccess, {4, 26}},    {{10, 20}, 0, 4, kFailure, {10, 20}},
               {{10, 20}, 0.5F, 4, kSuccess, {4, 32}}, {{10, 20}, -1, 50, kFailure, {10, 20}},
               {{10, 20}, 1, 10, kSuccess, {10, 20}}};
  for (const auto& [span, anchor, limit, result, expected] : cases) {
    LayoutSpan actual = span;
    EXPECT_EQ(GrowToLimit(actual, anchor, limit), result) << anchor << " " << limit;
    EXPECT_EQ(actual, expected) << anchor << " " << limit;
  }
}

TEST(LayoutArithmeticTest, AFrameHasWholeEdgesAndNoNegativeSide) {
  EXPECT_EQ(SnapFrame({1.5, 2.6}, {-1.5, 1}), (RectT<double>{1, -2, 3, 1}));
  EXPECT_EQ(SnapFrame({10, -4}, {5, -5}), (RectT<double>{6, 0, 4, 5}));
  EXPECT_EQ(SnapFrame({kNan, kNan}, {0, kHuge}), (RectT<double>{0, 0, 0, kLayoutInfinite}));
}

}  // namespace
}  // namespace TF
