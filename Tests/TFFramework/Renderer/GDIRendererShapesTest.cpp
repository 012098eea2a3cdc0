#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace {

using TF::LRenderer;
using Ink = TF::RectT<std::int32_t>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
const float kNoNumber = std::nanf("");

// What a drawing leaves, row by row: "#" for a pixel with ink.
std::vector<std::string> RowsOf(const MemoryWindow& window, const Ink& area) {
  std::vector<std::string> rows;
  for (std::int32_t y = area.mY; y < area.GetBottom(); ++y) {
    std::string& row = rows.emplace_back();
    for (std::int32_t x = area.mX; x < area.GetRight(); ++x) row += window.At(x, y) ? '#' : '.';
  }
  return rows;
}

TF::PolylineT<float> Polyline(std::initializer_list<TF::PointT<float>> points) {
  TF::PolylineT<float> polyline;
  polyline.mPoints = TF::Array<TF::PointT<float>>(points);
  return polyline;
}

TEST(GDIRendererShapes, OutlinesAndLinesIncludeTheirFarEnds) {
  const struct {
    const char* mWhat;
    std::function<void(LRenderer&)> mDrawing;
    Ink mInk;
    std::int32_t mCount;
  } cases[] = {
      {"outline",
       [](LRenderer& r) {
         r.DrawRect({2, 3, 10, 5}, Color(kRed), 1);
       },
       {2, 3, 11, 6},
       30},
      {"outline of width 3",
       [](LRenderer& r) {
         r.DrawRect({5, 5, 10, 8}, Color(kRed), 3);
       },
       {4, 4, 13, 11},
       13 * 11 - 7 * 5},
      {"outline of width 0",
       [](LRenderer& r) {
         r.DrawRect({2, 3, 10, 5}, Color(kRed), 0);
       },
       {2, 3, 11, 6},
       30},
      {"thicker than it is wide",
       [](LRenderer& r) {
         r.DrawRect({5, 5, 2, 2}, Color(kRed), 4);
       },
       {3, 3, 6, 6},
       36},
      {"backwards",
       [](LRenderer& r) {
         r.DrawRect({5, 5, -2, 2}, Color(kRed), 1);
       },
       {},
       0},
      {"area",
       [](LRenderer& r) {
         r.FillRect({2, 3, 10, 5}, Color(kRed), true);
       },
       {2, 3, 10, 5},
       50},
      {"halves",
       [](LRenderer& r) {
         r.FillRect({1.5F, 1.4F, 2, 2}, Color(kRed), true);
       },
       {2, 1, 2, 2},
       4},
      {"both",
       [](LRenderer& r) {
         r.DrawFilledRect({2, 3, 10, 5}, Color(kBlue), Color(kRed), 1);
       },
       {2, 3, 11, 6},
       66},
      {"area alone",
       [](LRenderer& r) {
         r.DrawFilledRect({2, 3, 10, 5}, Color(kBlue), {}, 1);
       },
       {2, 3, 10, 5},
       50},
      {"level",
       [](LRenderer& r) {
         r.DrawLine({2, 3}, {10, 3}, Color(kRed), 1);
       },
       {2, 3, 9, 1},
       9},
      {"upright and back",
       [](LRenderer& r) {
         r.DrawLine({2, 10}, {2, 3}, Color(kRed), 1);
       },
       {2, 3, 1, 8},
       8},
      {"point",
       [](LRenderer& r) {
         r.DrawLine({2, 3}, {2, 3}, Color(kRed), 1);
       },
       {2, 3, 1, 1},
       1},
      {"slanted",
       [](LRenderer& r) {
         r.DrawLine({2, 3}, {8, 9}, Color(kRed), 1);
       },
       {2, 3, 7, 7},
       7},
      {"transparent",
       [](LRenderer& r) {
         r.FillRect({0, 0, 9, 9}, Color(0x00FF0000), true);
       },
       {},
       0},
      {"everywhere",
       [](LRenderer& r) {
         r.FillRect({-1e30F, -1e30F, 2e30F, 2e30F}, Color(kRed), true);
       },
       {0, 0, 40, 30},
       1200},
  };
  RendererRig rig;
  for (const auto& item : cases) {
    rig.Draw(item.mDrawing);
    EXPECT_EQ(rig.mWindow.GetInk(), item.mInk) << item.mWhat;
    EXPECT_EQ(rig.mWindow.CountInk(), item.mCount) << item.mWhat;
  }
}

TEST(GDIRendererShapes, ATranslucentOutlineIsEvenAtItsCorners) {
  RendererRig rig;
  rig.Draw([](LRenderer& renderer) { renderer.DrawRect({2, 2, 10, 10}, Color(0x80FF0000), 3); });
  for (const auto& [x, y] : {std::pair{1, 1}, {13, 13}, {1, 13}, {7, 1}, {13, 7}}) {
    EXPECT_EQ(rig.mWindow.At(x, y), 0x80800000) << x << ", " << y;
  }
}

TEST(GDIRendererShapes, FillingWithoutBlendStoresAlphaWhateverOriginAndClip) {
  RendererRig rig;
  rig.Draw([](LRenderer& renderer) {
    renderer.FillRect({0, 0, 40, 30}, Color(kBlue), true);
    renderer.Translate({7, 7});
    renderer.SetClipRect({0, 0, 1, 1});
    renderer.FillRect({2, 2, 3, 3}, Color(0x40FF0000), false);
    renderer.FillRect({38, -5, 1000, 6}, Color(0), false);
    renderer.FillRect({-1e30F, 29, 2e30F, 1e30F}, Color(kRed), false);
    renderer.Translate({-7, -7});
    renderer.SetClipRect(TF::RenderState::kNoClip);
  });
  EXPECT_EQ(rig.mWindow.At(2, 2), 0x40400000U);
  EXPECT_EQ(rig.mWindow.At(5, 5), kBlue);
  EXPECT_EQ(rig.mWindow.At(39, 0), 0U);
  EXPECT_EQ(rig.mWindow.At(37, 0), kBlue);
  EXPECT_EQ(rig.mWindow.At(0, 29), kRed);
  EXPECT_EQ(rig.mWindow.At(39, 28), kBlue);
}

TEST(GDIRendererShapes, RectangleListsAreScaledMovedAndTheFirstLiesOnTop) {
  TF::ColorRectListT<float> list;
  list.mRects.Add({{1, 1, 2, 2}, Color(kRed)});
  list.mRects.Add({{1, 1, 4, 2}, Color(kBlue)});
  list.mScaleX = 2;
  list.mScaleY = 3;
  RendererRig rig;
  rig.Draw([&](LRenderer& renderer) {
    renderer.FillRects(list, {10, 5});
    EXPECT_EQ(renderer.GetState()->mOrigin, TF::PointT<double>());
  });
  EXPECT_EQ(rig.mWindow.GetInk(), (Ink{12, 8, 8, 6}));
  EXPECT_EQ(rig.mWindow.At(12, 8), kRed);
  EXPECT_EQ(rig.mWindow.At(15, 13), kRed);
  EXPECT_EQ(rig.mWindow.At(16, 8), kBlue);
}

TEST(GDIRendererShapes, PathsAreDrawnAsSegmentsLinesAndClosedLines) {
  auto shape = Polyline({{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 3}});
  const auto draw = [](auto operation) {
    RendererRig rig;
    rig.Draw(operation);
    return RowsOf(rig.mWindow, {1, 1, 7, 7});
  };
  using Rows = std::vector<std::string>;
  EXPECT_EQ(draw([&](LRenderer& r) {
              r.DrawPolyline(shape, Color(kRed), {2, 2}, {1, 1}, 1);
            }),
            (Rows{".......", ".#####.", ".....#.", ".....#.", ".#...#.", ".#####.", "......."}));
  EXPECT_EQ(draw([&](LRenderer& r) {
              r.DrawPolygon(shape, Color(kRed), {2, 2}, {1, 1}, 1);
            }),
            (Rows{".......", ".#####.", ".#...#.", ".#...#.", ".#...#.", ".#####.", "......."}));
  EXPECT_EQ(draw([&](LRenderer& r) {
              r.DrawLineSegments(shape, Color(kRed), {2, 2}, {1, 1}, 1);
            }),
            (Rows{".......", ".#####.", ".......", ".......", ".......", ".#####.", "......."}));
  auto square = Polyline({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
  EXPECT_EQ(draw([&](LRenderer& r) {
              r.FillPolygon(square, Color(kRed), {2, 2}, {1, 2});
            }),
            (Rows{".......", ".##....", ".##....", ".##....", ".##....", ".......", "......."}));
  EXPECT_EQ(draw([&](LRenderer& r) {
              r.DrawPolygon(square, Color(kRed), {2, 2}, {2, 1}, 1);
            }),
            (Rows{".......", ".#####.", ".#...#.", ".#####.", ".......", ".......", "......."}))
      << "the pen is not scaled";
}

TEST(GDIRendererShapes, APathIsKeptUntilItsPolylineSaysThatItChanged) {
  RendererRig rig;
  auto line = Polyline({{0, 0}, {4, 0}});
  const auto draw = [&](LRenderer& renderer) { renderer.DrawPolyline(line, Color(kRed), {}, {1, 1}, 1); };
  rig.Draw(draw);
  line.mPoints[1].mX = 9;
  rig.Draw(draw);
  EXPECT_EQ(rig.mWindow.GetInk().mWidth, 5);
  line.mChanged = true;
  rig.Draw(draw);
  EXPECT_EQ(rig.mWindow.GetInk().mWidth, 10);
  EXPECT_FALSE(line.mChanged);
  rig.Draw([copy = line](LRenderer& renderer) mutable {
    copy.mPoints[1].mX = 2;
    renderer.DrawPolyline(copy, Color(kRed), {}, {1, 1}, 1);
  });
  EXPECT_EQ(rig.mWindow.GetInk().mWidth, 3) << "a copy is a shape of its own";
}

TEST(GDIRendererShapes, AbsurdNumbersLeaveTheRendererUsable) {
  RendererRig rig;
  auto wild = Polyline({{kNoNumber, 0}, {kInfinity, 1e30F}, {-1e30F, -kInfinity}, {3, 3}});
  rig.Draw([&](LRenderer& renderer) {
    for (const float value : {kNoNumber, kInfinity, -kInfinity, 1e30F, 0.0F, -3e9F}) {
      renderer.DrawRect({value, value, value, value}, Color(kRed), value);
      renderer.FillRect({value, value, value, value}, Color(kRed), true);
      renderer.FillRect({value, value, value, value}, Color(kRed), false);
      renderer.DrawLine({value, 0}, {0, value}, Color(kRed), value);
      renderer.DrawPolygon(wild, Color(kRed), {value, 0}, {value, value}, value);
      renderer.FillPolygon(wild, Color(kRed), {0, value}, {1, 1});
      renderer.DrawText(u"x", TF::LFont::Get(u"Arial", 12, 0), {value, value}, Color(kRed));
      renderer.DrawBitmap(MakePicture(1, {kRed}), {value, value, value, value}, TF::ResizeType::kTile);
    }
    renderer.FillRect({0, 0, 40, 30}, Color(0), false);
    renderer.DrawLine({2, 2}, {6, 6}, Color(kGreen), 1);
  });
  EXPECT_EQ(rig.mWindow.GetInk(), (Ink{2, 2, 5, 5}));
}

TEST(GDIRendererShapes, AnAssignedPolylineIsAnotherShape) {
  RendererRig rig;
  auto line = Polyline({{2, 2}, {10, 2}});
  const auto draw = [&](LRenderer& renderer) { renderer.DrawPolyline(line, Color(kRed), {}, {1, 1}, 1); };
  rig.Draw(draw);
  line = Polyline({{2, 9}, {10, 9}});
  rig.Draw(draw);
  EXPECT_EQ(rig.mWindow.GetInk(), (Ink{2, 9, 9, 1}));
}

TEST(GDIRendererShapes, AShapeThatReachesFarBeyondTheWindowStillCoversIt) {
  RendererRig rig;
  auto square = Polyline({{-1000, -1000}, {1000, -1000}, {1000, 1000}, {-1000, 1000}});
  for (const float scale : {1.0F, 9000.0F, 1e6F}) {
    rig.Draw([&](LRenderer& renderer) { renderer.FillPolygon(square, Color(kRed), {}, {scale, scale}); });
    EXPECT_EQ(rig.mWindow.CountInk(), RendererRig::kWidth * RendererRig::kHeight) << scale;
  }
}

}  // namespace
