#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Renderer.h"
#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace {

using testing::HasSubstr;
using TF::CAutoClip;
using TF::ClipFlavor;
using TF::LRenderer;
using TF::RCPtr;
using TF::RendererType;
using TF::RenderState;
using Point = TF::PointT<double>;
using DoubleRect = TF::RectT<double>;

template <class E, class Action>
void ExpectThrow(const char* text, Action action) {
  try {
    action();
    FAIL() << "no exception: " << text;
  } catch (const E& error) {
    EXPECT_THAT(error.what(), HasSubstr(text));
  }
}

// States are the same in every renderer; this one draws nothing.
class RendererState : public testing::Test {
 protected:
  RendererState() {
    mRenderer->CreateRenderContext({0, 0, 100, 100}, nullptr, true, mContext);
    mRenderer->RenderStart(mContext);
  }

  RenderState& State() { return mContext->mState; }

  const RCPtr<LRenderer> mRenderer =
      LRenderer::Create(static_cast<std::int32_t>(RendererType::kD3D9), nullptr);
  RCPtr<TF::LRenderContextInfo> mContext;
};

TEST(RendererCreation, TypesWithoutARendererEndInErrors) {
  ExpectThrow<std::domain_error>("Domain Error : TF::LRenderer::Create",
                                 [] { LRenderer::Create(3, nullptr); });
  ExpectThrow<std::domain_error>("Domain Error : TF::LRenderer::Create",
                                 [] { LRenderer::Create(-1, nullptr); });
  ExpectThrow<std::runtime_error>("OpenGL", [] { LRenderer::Create(0, nullptr); });
  EXPECT_EQ(LRenderer::Create(1, nullptr)->GetRendererType(), RendererType::kGdi);
}

TEST_F(RendererState, FramesThatDoNotNestEndInErrors) {
  RCPtr<TF::LRenderContextInfo> other;
  mRenderer->CreateRenderContext({0, 0, 10, 10}, nullptr, true, other);
  ExpectThrow<std::runtime_error>("Render context is NULL : TF::LRenderer::RenderStart",
                                  [&] { mRenderer->RenderStart(nullptr); });
  ExpectThrow<std::runtime_error>("Render context reentered. : TF::LRenderer::RenderStart",
                                  [&] { mRenderer->RenderStart(mContext); });
  mRenderer->RenderStart(other);
  ExpectThrow<std::runtime_error>("Render context reentered.", [&] { mRenderer->RenderStart(mContext); });
  ExpectThrow<std::runtime_error>(
      "RenderFinish context does not match RenderStart context : TF::LRenderer::RenderFinish",
      [&] { mRenderer->RenderFinish(mContext); });
  EXPECT_EQ(mRenderer->GetState(), &other->mState);
  mRenderer->RenderFinish(other);
  EXPECT_EQ(mRenderer->GetState(), &State());
  mRenderer->RenderFinish(mContext);
  EXPECT_EQ(mRenderer->GetState(), nullptr);
  ExpectThrow<std::runtime_error>("does not match", [&] { mRenderer->RenderFinish(nullptr); });
}

TEST_F(RendererState, PushOriginWantsASavedState) {
  mRenderer->PushOrigin({5, 5});
  EXPECT_EQ(State().mOrigin, Point());
  EXPECT_TRUE(mContext->mStateStack.empty());
  mRenderer->RestoreState();
  EXPECT_EQ(State().mClip, RenderState::kNoClip);
}

TEST_F(RendererState, PushOriginRoundsAndLeavesTheClipInPlace) {
  mRenderer->SaveState();
  mRenderer->SetClipRect({0, 0, 50, 50});
  mRenderer->PushOrigin({2.5, -2.5});
  EXPECT_EQ(State().mOrigin, (Point{3, -3}));
  EXPECT_EQ(State().mClip, (DoubleRect{-3, 3, 50, 50}));
  mRenderer->RestoreState();
  EXPECT_EQ(State().mOrigin, Point());
  EXPECT_EQ(State().mClip, (DoubleRect{0, 0, 50, 50}));
}

TEST_F(RendererState, AnOriginThatIsNoPlaceIsLeftBehind) {
  for (const double far : {std::nan(""), 1e300, -1e300}) {
    mRenderer->Translate({7, 3});
    mRenderer->SaveState();
    mRenderer->Translate({far, far});
    mRenderer->RestoreState();
    EXPECT_EQ(mRenderer->GetState()->mOrigin, (Point{7, 3})) << far;
    mRenderer->Translate({-7, -3});
  }
}

TEST_F(RendererState, PushClipMovesTheOriginAndNarrowsTheClip) {
  // From the origin 100, 100 and the clip 0, 0, 50, 50 there.
  const struct {
    const char* mWhat;
    DoubleRect mFrame;
    DoubleRect mClipRect;
    bool mRelative;
    Point mOrigin;
    DoubleRect mClip;
  } cases[] = {
      {"inside", {10, 20, 30, 20}, {10, 20, 30, 20}, true, {110, 120}, {0, 0, 30, 20}},
      {"cut by the frame", {10, 20, 30, 20}, {0, 0, 50, 50}, true, {110, 120}, {0, 0, 30, 20}},
      {"cut by the clip", {40, 40, 30, 30}, {40, 40, 30, 30}, true, {140, 140}, {0, 0, 10, 10}},
      {"rounded corner", {10.5, -0.5, 30, 20}, {10.5, -0.5, 30, 20}, true, {111, 99}, {-0.5, 1, 30, 19.5}},
      {"beside the clip", {60, 60, 10, 10}, {60, 60, 10, 10}, true, {160, 160}, {0, 0, 0, 0}},
      {"absolute", {30, 40, 5, 5}, {1, 2, 70, 80}, false, {30, 40}, {1, 2, 70, 80}},
      {"absolute and backwards", {30, 40, 5, 5}, {10, 10, -4, -6}, false, {30, 40}, {6, 4, 4, 6}},
  };
  mRenderer->Translate({100, 100});
  mRenderer->SetClipRect({0, 0, 50, 50});
  for (const auto& item : cases) {
    SCOPED_TRACE(item.mWhat);
    {
      const CAutoClip clip(mRenderer, item.mFrame, item.mClipRect, nullptr, item.mRelative);
      EXPECT_EQ(State().mOrigin, item.mOrigin);
      EXPECT_EQ(State().mClip, item.mClip);
    }
    EXPECT_EQ(State().mOrigin, (Point{100, 100}));
    EXPECT_EQ(State().mClip, (DoubleRect{0, 0, 50, 50}));
  }
}

TEST_F(RendererState, AStencilInsideAStencilIsAFreshOneOfTheOuterSize) {
  const auto outer = TF::MakeRC<TF::LStencil>(TF::SizeT<std::int32_t>{7, 8});
  const auto inner = TF::MakeRC<TF::LStencil>(TF::SizeT<std::int32_t>{1, 2});
  outer->SetRect({1, 1, 2, 2});
  const DoubleRect area{0, 0, 10, 10};
  const CAutoClip first(mRenderer, area, area, outer, true);
  EXPECT_EQ(State().mStencil, outer);
  EXPECT_TRUE(State().mStencilActive);
  {
    const CAutoClip second(mRenderer, area, area, inner, true);
    EXPECT_FALSE(State().mStencil == outer || State().mStencil == inner);
    EXPECT_EQ(State().mStencil->GetRect(), (TF::RectT<std::int32_t>{0, 0, 7, 8}));
  }
  EXPECT_EQ(State().mStencil, outer);
}

TEST_F(RendererState, AutoClipBringsBackWhatItsFlavorChanged) {
  State().mAlpha = 0.5F;
  for (const std::int32_t flavor : {ClipFlavor::kSaveState, ClipFlavor::kPushClip, ClipFlavor::kPushOrigin}) {
    const CAutoClip ground(mRenderer, ClipFlavor{});
    {
      const CAutoClip clip(mRenderer, ClipFlavor{flavor, {5, 5, 9, 9}, {5, 5, 9, 9}, nullptr, true, {3, 3}});
      State().mAlpha = 0.25F;
      const double moved[] = {0, 5, 3};
      EXPECT_EQ(State().mOrigin.mX, moved[flavor]);
    }
    EXPECT_EQ(State().mOrigin, Point());
    EXPECT_EQ(State().mAlpha, 0.5F);
  }
  ExpectThrow<std::runtime_error>("Runtime Error : Unknown PushClip flavor : TF::CAutoClip::CAutoClip", [&] {
    const CAutoClip clip(mRenderer, ClipFlavor{3, {}, {}, nullptr, true, {}});
  });
  EXPECT_TRUE(mContext->mStateStack.empty());
}

}  // namespace
