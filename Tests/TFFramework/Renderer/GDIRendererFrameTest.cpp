#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"
#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace {

using Platform::PixelRect;
using testing::ElementsAre;
using TF::LRenderer;
using TF::RCPtr;
using TF::Region;

TEST(GDIRendererFrame, AFullFrameStartsEmptyAndAPartialOneGoesOn) {
  RendererRig rig;
  const auto veil = [](LRenderer& renderer) { renderer.FillRect({0, 0, 10, 10}, Color(0x80FF0000), true); };
  rig.Draw(veil);
  EXPECT_EQ(rig.mWindow.At(5, 5), 0x80800000);
  rig.Draw(veil);
  EXPECT_EQ(rig.mWindow.At(5, 5), 0x80800000) << "translucent parts pile up";
  rig.DrawIn(Region({0, 0, 10, 10}), veil);
  EXPECT_EQ(rig.mWindow.At(5, 5) >> 24, 0xC0U) << "the buffer survives from frame to frame";
  rig.mContext->mRect = {0, 0, 20, 20};
  rig.DrawIn(Region({0, 0, 1, 1}), [](LRenderer&) {});
  EXPECT_EQ(rig.mWindow.GetWidth(), 20);
  EXPECT_EQ(rig.mWindow.CountInk(), 0) << "another size starts empty";
}

TEST(GDIRendererFrame, OnlyWhatTheFrameTouchedReachesTheWindow) {
  RendererRig rig;
  Region region({5, 5, 5, 5});
  region.Add(Region::Rect{35, 25, 100, 100});
  region.Add(Region::Rect{-50, 0, 10, 10});
  rig.DrawIn(region, [](LRenderer&) {});
  EXPECT_THAT(rig.mWindow.GetRects(), ElementsAre(PixelRect{35, 25, 5, 5}, PixelRect{5, 5, 5, 5}));
}

TEST(GDIRendererFrame, AWindowOfNoSizeHasOnePixel) {
  RendererRig rig({0, 0});
  rig.Draw([](LRenderer& renderer) { renderer.FillRect({0, 0, 5, 5}, Color(kRed), true); });
  EXPECT_EQ(rig.mWindow.GetWidth(), 1);
  EXPECT_EQ(rig.mWindow.GetHeight(), 1);
}

TEST(GDIRendererFrame, DrawingOutsideOfAFrameDoesNothingAndAPictureThrows) {
  RendererRig rig;
  LRenderer& renderer = *rig.mRenderer;
  TF::PolylineT<float> line;
  renderer.FillRect({0, 0, 5, 5}, Color(kRed), true);
  renderer.FillRect({0, 0, 5, 5}, Color(kRed), false);
  renderer.DrawRect({0, 0, 5, 5}, Color(kRed), 1);
  renderer.FillRects({}, {});
  renderer.DrawLine({}, {}, Color(kRed), 1);
  renderer.DrawPolygon(line, Color(kRed), {}, {1, 1}, 1);
  renderer.FillPolygon(line, Color(kRed), {}, {1, 1});
  renderer.DrawText(u"x", TF::LFont::Get(u"Arial", 12, 0), {}, Color(kRed));
  EXPECT_EQ(renderer.DrawContext(rig.MakeSurface(2, 2), {}, {0, 0, 2, 2}), TF::kFailure);
  EXPECT_EQ(renderer.DrawContextAndSwap(rig.MakeSurface(2, 2), {}), TF::kFailure);
  EXPECT_THROW(renderer.DrawBitmap(MakePicture(1, {kRed}), {0, 0, 1, 1}, TF::ResizeType::kStretch),
               std::runtime_error);
}

TEST(GDIRendererFrame, ClipAndOriginDecideWhereDrawingLands) {
  RendererRig rig;
  rig.Draw([&](LRenderer& renderer) {
    const TF::CAutoClip clip(rig.mRenderer, {10, 10, 8, 8}, {10, 10, 8, 8}, nullptr, true);
    renderer.FillRect({-5, 4, 100, 100}, Color(kRed), true);
    renderer.DrawLine({-5, -5}, {20, 20}, Color(kBlue), 1);
    renderer.DrawBitmap(MakePicture(1, {kGreen}), {6, -3, 20, 6}, TF::ResizeType::kStretch);
  });
  EXPECT_EQ(rig.mWindow.GetInk(), (TF::RectT<std::int32_t>{10, 10, 8, 8}));
  EXPECT_EQ(rig.mWindow.At(10, 10), kBlue);
  EXPECT_EQ(rig.mWindow.At(10, 14), kRed);
  EXPECT_EQ(rig.mWindow.At(16, 12), kGreen);
  EXPECT_EQ(rig.mWindow.At(16, 13), 0U);
  rig.DrawIn(Region({0, 0, 1, 1}), [](LRenderer& renderer) {
    renderer.FillRect({0, 0, 5, 5}, Color(kRed), true);
  });
  EXPECT_EQ(rig.mWindow.At(2, 2), kRed) << "the clip ended with its object";
}

TEST(GDIRendererFrame, SurfacesAreDrawnInsideAFrameAndCopied) {
  RendererRig rig;
  const auto surface = rig.MakeSurface(10, 10);
  EXPECT_EQ(surface->GetMaxSurfaceSize(), (TF::SizeT<std::int32_t>{4096, 4096}));
  rig.Draw([&](LRenderer& renderer) {
    renderer.FillRect({0, 0, 40, 30}, Color(kBlue), true);
    const TF::CAutoClip clip(rig.mRenderer, {4, 4, 30, 20}, {4, 4, 30, 20}, nullptr, true);
    renderer.RenderStart(surface);
    renderer.FillRect({2, 2, 4, 4}, Color(kRed), true);
    renderer.RenderFinish(surface);
    EXPECT_EQ(renderer.DrawContext(surface, {1, 1}, {2, 2, 2, 100}), TF::kSuccess);
    EXPECT_EQ(renderer.DrawContext(rig.mContext, {}, {0, 0, 5, 5}), TF::kInvalidArgument);
    EXPECT_EQ(renderer.DrawContext(nullptr, {}, {0, 0, 5, 5}), TF::kInvalidArgument);
  });
  EXPECT_EQ(rig.mWindow.At(5, 5), kRed);
  EXPECT_EQ(rig.mWindow.At(6, 8), kRed);
  EXPECT_EQ(rig.mWindow.At(7, 5), kBlue) << "beyond the source rectangle";
  EXPECT_EQ(rig.mWindow.At(5, 9), kBlue) << "the surface is transparent there";
}

TEST(GDIRendererFrame, ASwappedSurfaceGoesOnEmptyAndCanShowItsOwnPast) {
  RendererRig rig;
  const auto surface = rig.MakeSurface(10, 10);
  rig.Draw([&](LRenderer& renderer) {
    renderer.RenderStart(surface);
    renderer.FillRect({0, 0, 10, 2}, Color(kRed), true);
    renderer.SetClipRect({0, 0, 5, 10});
    EXPECT_EQ(renderer.DrawContext(surface, {}, {0, 0, 5, 5}), TF::kFailure) << "onto itself";
    EXPECT_EQ(renderer.DrawContextAndSwap(surface, {0, 4}), TF::kSuccess);
    renderer.RenderFinish(surface);
    EXPECT_EQ(renderer.DrawContextAndSwap(surface, {20, 0}), TF::kSuccess);
    EXPECT_EQ(renderer.DrawContextAndSwap(surface, {0, 0}), TF::kSuccess);
    EXPECT_EQ(renderer.DrawContextAndSwap(rig.mContext, {}), TF::kInvalidArgument);
  });
  EXPECT_EQ(rig.mWindow.GetInk(), (TF::RectT<std::int32_t>{20, 4, 5, 2}));
}

// The frame of another context runs while its own buffers take turns.
TEST(GDIRendererFrame, ASurfaceThatWasSwappedInsideAnotherFrameKeepsItsClip) {
  RendererRig rig;
  const auto outer = rig.MakeSurface(20, 20);
  const auto inner = rig.MakeSurface(4, 4);
  rig.Draw([&](LRenderer& renderer) {
    renderer.RenderStart(outer);
    renderer.SetClipRect({0, 0, 5, 5});
    renderer.RenderStart(inner);
    EXPECT_EQ(renderer.DrawContextAndSwap(outer, {}), TF::kSuccess);
    renderer.RenderFinish(inner);
    renderer.FillRect({0, 0, 20, 20}, Color(kRed), true);
    renderer.RenderFinish(outer);
    EXPECT_EQ(renderer.DrawContext(outer, {}, {0, 0, 20, 20}), TF::kSuccess);
  });
  EXPECT_EQ(rig.mWindow.CountInk(), 25);
}

}  // namespace
