#include "Platform/Desktop.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

namespace Platform {
namespace {

std::uint32_t PixelOf(const Canvas& canvas, std::int32_t x, std::int32_t y) {
  const PixelView view = canvas.GetPixels();
  return view.mPixels[static_cast<std::size_t>(y) * (view.mStride / sizeof(std::uint32_t)) +
                      static_cast<std::size_t>(x)];
}

TEST(DesktopTest, RefusesWhatNoPictureOrFontCanBe) {
  Desktop& desktop = GetDesktop();
  EXPECT_EQ(&GetDesktop(), &desktop);
  EXPECT_THROW(desktop.CreatePicture(2, 2, std::vector<std::uint32_t>(3)), std::invalid_argument);
  EXPECT_THROW(desktop.CreatePicture(0, 0, {}), std::invalid_argument);
  EXPECT_THROW(desktop.CreatePicture(-1, -4, std::vector<std::uint32_t>(4)), std::invalid_argument);
  for (const double size : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(desktop.OpenFont({u"Arial", size}), nullptr);
  }
  EXPECT_NE(desktop.OpenFont({std::u16string(1, 0xD800), std::numeric_limits<double>::infinity()}), nullptr);
}

TEST(DesktopTest, EveryCanvasHasAPixelAndStartsTransparent) {
  for (const std::int32_t side : {std::numeric_limits<std::int32_t>::min(), -1, 0, 1}) {
    const auto canvas = GetDesktop().CreateCanvas(side, side);
    EXPECT_EQ(canvas->GetPixels().mWidth, 1);
    EXPECT_EQ(canvas->GetPixels().mHeight, 1);
    EXPECT_EQ(PixelOf(*canvas, 0, 0), 0U);
  }
}

// Rectangles and pictures are written past Cairo, paths through it.
TEST(DesktopTest, DrawingsOfBothKindsLieOnTopOfEachOtherInOrder) {
  Desktop& desktop = GetDesktop();
  const auto canvas = desktop.CreateCanvas(10, 10);
  const auto other = desktop.CreateCanvas(10, 10);
  const CanvasPoint square[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  const auto path = desktop.CreatePath(CanvasPathKind::kPolygon, square);
  canvas->FillPath(*path, {}, 0xFFFF0000);
  EXPECT_EQ(PixelOf(*canvas, 9, 9), 0xFFFF0000U);
  canvas->FillRect({0, 0, 5, 10}, 0x800000FF);
  EXPECT_EQ(PixelOf(*canvas, 4, 4), 0xFF7F0080U);
  canvas->FillPath(*path, {0.5, 0.5, 0, 0}, 0xFF00FF00);
  EXPECT_EQ(PixelOf(*canvas, 4, 4), 0xFF00FF00U);
  other->FillPath(*path, {}, 0xFF112233);
  EXPECT_TRUE(canvas->DrawCanvas(*other, {8, 8, 50, 50}, 0, 0));
  EXPECT_EQ(PixelOf(*canvas, 1, 1), 0xFF112233U);
  EXPECT_EQ(PixelOf(*canvas, 2, 1), 0xFF00FF00U);
  EXPECT_TRUE(canvas->DrawCanvas(*other, {-3, -3, 5, 5}, 5, 5));
  EXPECT_EQ(PixelOf(*canvas, 7, 7), 0xFFFF0000U);
  EXPECT_EQ(PixelOf(*canvas, 8, 8), 0xFF112233U);
  canvas->SetClip({2, 2, 2, 2});
  canvas->Clear();
  EXPECT_EQ(PixelOf(*canvas, 9, 9), 0U);
}

TEST(DesktopTest, AnErrorOfOneDrawingDoesNotEndThoseAfterIt) {
  Desktop& desktop = GetDesktop();
  const auto canvas = desktop.CreateCanvas(10, 10);
  const CanvasPoint points[] = {{0, 0}, {10, 0}, {10, 10}};
  const auto path = desktop.CreatePath(CanvasPathKind::kPolygon, points);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double wild : {nan, 1e300, 1e-300, 0.0}) {
    canvas->FillPath(*path, {wild, 1, 0, 0}, 0xFFFF0000);
    canvas->FillPath(*path, {1, 1, 0, wild}, 0xFFFF0000);
    canvas->StrokePath(*path, {1, wild, wild, 0}, wild, 0xFFFF0000);
  }
  canvas->Clear();
  canvas->FillPath(*path, {}, 0xFFFF0000);
  EXPECT_EQ(PixelOf(*canvas, 8, 3), 0xFFFF0000U);
}

}  // namespace
}  // namespace Platform
