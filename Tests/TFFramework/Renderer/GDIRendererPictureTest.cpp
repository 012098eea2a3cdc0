#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "Tests/Support/AllocationCounter.h"
#include "Tests/TFFramework/Renderer/ClockApplication.h"
#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace {

using TF::LRenderer;
using TF::RCPtr;
using TF::ResizeType;
using Row = std::vector<std::uint32_t>;

constexpr std::uint32_t kA = 0xFF000001, kB = 0xFF000002, kC = 0xFF000003;

// The drawn row at the top of a fresh frame.
Row DrawRow(RendererRig& rig, const RCPtr<TF::LBitmap>& picture, std::int32_t width, ResizeType type) {
  const auto height = static_cast<float>(picture->GetHeight());
  rig.Draw([&](LRenderer& renderer) {
    renderer.DrawBitmap(picture, {0, 0, static_cast<float>(width), height}, type);
  });
  Row row;
  for (std::int32_t x = 0; x < width; ++x) row.push_back(rig.mWindow.At(x, 0));
  EXPECT_EQ(rig.mWindow.At(width, 0), 0U);
  return row;
}

TEST(GDIRendererPicture, EachWayOfResizingShowsThePixelThatAHitTestReads) {
  const struct {
    const char* mWhat;
    ResizeType mType;
    Row mDrawn;
  } cases[] = {
      {"plain", ResizeType::kStretch, {kA, kB, kC}},
      {"plain, though it says tile", ResizeType::kTile, {kA, kB, kC}},
      {"stretched", ResizeType::kStretch, {kA, kA, kB, kC, kC}},
      {"stretched a lot", ResizeType::kStretch, {kA, kA, kA, kB, kB, kC, kC, kC}},
      {"shrunk", ResizeType::kStretch, {kA, kB}},
      {"shrunk to one", ResizeType::kStretch, {kA}},
      {"tiled", ResizeType::kTile, {kA, kB, kC, kA, kB}},
      {"cut tile", ResizeType::kTile, {kA, kB}},
      {"tiled often", ResizeType::kTile, {kA, kB, kC, kA, kB, kC, kA, kB, kC, kA}},
      {"centred", ResizeType::kCenter, {0, kA, kB, kC, 0}},
      {"centred beside a half", ResizeType::kCenter, {0, kA, kB, kC}},
      {"centred and cut", ResizeType::kCenter, {kB}},
      {"centred and cut beside a half", ResizeType::kCenter, {kA, kB}},
  };
  for (const auto& item : cases) {
    RendererRig rig;
    const auto picture = MakePicture(3, {kA, kB, kC});
    Row expected = item.mDrawn;
    if (item.mType == ResizeType::kStretch) {
      const std::size_t count = expected.size();
      for (std::size_t x = 0; x < count; ++x) expected[x] = (Row{kA, kB, kC})[x * 3 / count];
    }
    EXPECT_EQ(DrawRow(rig, picture, static_cast<std::int32_t>(item.mDrawn.size()), item.mType), expected)
        << item.mWhat;
  }
}

TEST(GDIRendererPicture, AWindowIntoASheetShowsNothingOfItsNeighbours) {
  RendererRig rig;
  const auto sheet = MakePicture(4, {kRed, kA, kB, kRed});
  EXPECT_EQ(DrawRow(rig, sheet->CreateSubBitmap(1, 0, 2, 1), 4, ResizeType::kStretch), (Row{kA, kA, kB, kB}));
  EXPECT_EQ(DrawRow(rig, sheet->CreateSubBitmap(1, 0, 2, 1), 3, ResizeType::kTile), (Row{kA, kB, kA}));
  EXPECT_EQ(DrawRow(rig, sheet->CreateSubBitmap(2, 0, 4, 1), 4, ResizeType::kStretch), (Row{kB, kRed, 0, 0}))
      << "beyond the sheet";
  EXPECT_EQ(DrawRow(rig, sheet->CreateSubBitmap(-1, 0, 2, 1), 2, ResizeType::kStretch), (Row{0, kRed}));
}

TEST(GDIRendererPicture, TheFirstDrawingOfASizeDecidesAndBadTypesThrow) {
  RendererRig rig;
  const auto picture = MakePicture(2, {kA, kB});
  EXPECT_EQ(DrawRow(rig, picture, 4, ResizeType::kTile), (Row{kA, kB, kA, kB}));
  EXPECT_EQ(DrawRow(rig, picture, 4, ResizeType::kStretch), (Row{kA, kB, kA, kB}));
  EXPECT_EQ(DrawRow(rig, picture, 6, ResizeType::kStretch), (Row{kA, kA, kA, kB, kB, kB}));
  const auto unknown = static_cast<ResizeType>(3);
  EXPECT_EQ(DrawRow(rig, picture, 2, unknown), (Row{kA, kB})) << "its own size needs no resizing";
  try {
    rig.mRenderer->RenderStart(rig.MakeSurface(1, 1));
    rig.mRenderer->DrawBitmap(picture, {0, 0, 5, 1}, unknown);
    FAIL();
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(std::string(error.what())
                  .rfind("Invalid Argument : Invalid ResizeType passed to DrawBitmap. : "
                         "TF::LGDIRenderer::DrawBitmap",
                         0),
              0U)
        << error.what();
  }
}

TEST(GDIRendererPicture, TranslucentPixelsAreLaidOverWhatIsThere) {
  RendererRig rig;
  const auto picture = MakePicture(3, {0x80FF0000, 0x00FFFFFF, kGreen});
  rig.Draw([&](LRenderer& renderer) {
    renderer.FillRect({0, 0, 10, 10}, Color(kBlue), true);
    renderer.DrawBitmap(picture, {2.4F, 0, 3, 1}, ResizeType::kStretch);
    renderer.DrawBitmap(picture, {20, 0, 3, 1}, ResizeType::kStretch);
  });
  EXPECT_EQ(rig.mWindow.At(2, 0), 0xFF80007FU);
  EXPECT_EQ(rig.mWindow.At(3, 0), kBlue);
  EXPECT_EQ(rig.mWindow.At(4, 0), kGreen);
  EXPECT_EQ(rig.mWindow.At(20, 0), 0x80800000U);
  EXPECT_EQ(rig.mWindow.At(21, 0), 0U) << "a transparent pixel has no colour";
}

TEST(GDIRendererPicture, PicturesFarLargerThanTheWindowShowEachOfTheirParts) {
  const auto column = MakePicture(1, {kA, kB, kC});
  const auto row = MakePicture(3, {kA, kB, kC});
  constexpr float kFar = 90000;
  RendererRig rig;
  rig.Draw([&](LRenderer& renderer) {
    renderer.DrawBitmap(column, {0, 6 - kFar, 4, kFar}, ResizeType::kTile);
    renderer.DrawBitmap(row, {10 - kFar / 2, 10, kFar, 2}, ResizeType::kTile);
    renderer.DrawBitmap(row, {0, 20, 1e6F, 1e6F}, ResizeType::kTile);
  });
  EXPECT_EQ(rig.mWindow.At(0, 5), kC);
  EXPECT_EQ(rig.mWindow.At(3, 4), kB);
  EXPECT_EQ(rig.mWindow.At(0, 6), 0U);
  EXPECT_EQ(rig.mWindow.At(10, 10), kA);
  EXPECT_EQ(rig.mWindow.At(39, 11), kC);
  EXPECT_EQ(rig.mWindow.At(0, 20), kA) << "more than memory should hold";
  EXPECT_EQ(rig.mWindow.At(38, 29), kC);
}

TEST(GDIRendererPicture, CachedDrawingTakesNothingFromTheHeap) {
  RendererRig rig;
  const auto opaque = MakePicture(2, {kA, kB});
  const auto translucent = MakePicture(2, {0x80FF0000, 0x40FF0000});
  const auto draw = [&](LRenderer& renderer) {
    for (float x = 0; x < 20; ++x) {
      renderer.DrawBitmap(opaque, {x, 0, 12, 12}, ResizeType::kStretch);
      renderer.DrawBitmap(translucent, {x, 3, 12, 12}, ResizeType::kTile);
      renderer.FillRect({x, 9, 8, 8}, Color(0x80FF0000), true);
      renderer.DrawRect({x, 9, 8, 8}, Color(kRed), 1);
      const TF::SizeT<double> size{12, 12};
      renderer.PushClip({x, 0, size.mWidth, size.mHeight}, {x, 0, size.mWidth, size.mHeight}, nullptr, true);
      renderer.RestoreState();
    }
  };
  rig.Draw([&](LRenderer& renderer) {
    draw(renderer);
    const AllocationCounter counter;
    draw(renderer);
    EXPECT_EQ(counter.Count(), 0);
  });
  const AllocationCounter alive;
  rig.Draw([&](LRenderer& renderer) { renderer.DrawBitmap(opaque, {0, 0, 13, 13}, ResizeType::kStretch); });
  EXPECT_GT(alive.Count(), 0) << "the counter sees a picture that is new";
}

TEST(GDIRendererPicture, MoreSizesThanTheCacheHoldsAreStillDrawnRight) {
  RendererRig rig({400, 2});
  const auto picture = MakePicture(2, {kA, kB});
  for (int round = 0; round < 2; ++round) {
    for (std::int32_t width = 2; width < 302; ++width) {
      const Row row = DrawRow(rig, picture, width, ResizeType::kStretch);
      ASSERT_EQ(row.front(), kA) << width;
      ASSERT_EQ(row.back(), kB) << width;
      ASSERT_EQ(row[static_cast<std::size_t>(width + 1) / 2], kB) << width;
    }
  }
}

TEST(GDIRendererPicture, WhatWasNotDrawnForAWholePeriodIsMadeAnew) {
  constexpr std::uint32_t kPeriod = 300000;
  const auto application = TF::MakeRC<ClockApplication>();
  RendererRig rig;
  const auto picture = MakePicture(2, {kA, kB});
  const auto other = MakePicture(1, {kA});
  DrawRow(rig, picture, 4, ResizeType::kTile);
  const auto drawStretched = [&] { return DrawRow(rig, picture, 4, ResizeType::kStretch); };
  const Row tiled{kA, kB, kA, kB};

  application->mTicks += kPeriod;
  EXPECT_EQ(drawStretched(), tiled) << "not more than a period";
  application->mTicks += 1;
  DrawRow(rig, other, 1, ResizeType::kStretch);
  EXPECT_EQ(drawStretched(), tiled) << "the first purge takes nothing";
  application->mTicks += kPeriod + 1;
  DrawRow(rig, other, 1, ResizeType::kStretch);
  EXPECT_EQ(drawStretched(), tiled) << "drawn since the purge before";
  application->mTicks += kPeriod + 1;
  DrawRow(rig, other, 1, ResizeType::kStretch);
  application->mTicks += kPeriod + 1;
  DrawRow(rig, other, 1, ResizeType::kStretch);
  EXPECT_EQ(drawStretched(), (Row{kA, kA, kB, kB}));
}

}  // namespace
