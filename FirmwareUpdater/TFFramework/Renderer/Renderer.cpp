#include "TFFramework/Renderer/Renderer.h"

#include <cmath>
#include <stdexcept>
#include <utility>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/D3D9Renderer.h"
#include "TFFramework/Renderer/Gdi/GDIRenderer.h"

namespace TF {

namespace {

PointT<double> Rounded(const PointT<double>& point) {
  return {std::round(point.mX), std::round(point.mY)};
}

void MoveClip(RenderState& state, const PointT<double>& offset) {
  state.mClip.mX -= offset.mX;
  state.mClip.mY -= offset.mY;
}

}  // namespace

RCPtr<LRenderer> LRenderer::Create(std::int32_t type, Platform::WindowSurface*) {
  switch (type) {
    case static_cast<std::int32_t>(RendererType::kOpenGl):
      Throw<std::runtime_error>("This program has no OpenGL renderer.", "TF::LRenderer::Create");
    case static_cast<std::int32_t>(RendererType::kGdi):
      return MakeRC<LGDIRenderer>();
    case static_cast<std::int32_t>(RendererType::kD3D9):
      return MakeRC<LD3D9Renderer>();
    default:
      Throw<std::domain_error>("", "TF::LRenderer::Create");
  }
}

LRenderContextInfo* LRenderer::GetTopContext() {
  const std::int32_t count = mContexts.GetCount();
  return count > 0 ? mContexts[count - 1].Get() : nullptr;
}

bool LRenderer::HasSavedState() {
  const LRenderContextInfo* const context = GetTopContext();
  return context && !context->mStateStack.empty();
}

RenderState* LRenderer::GetState() {
  LRenderContextInfo* const context = GetTopContext();
  return context ? &context->mState : nullptr;
}

void LRenderer::SetBounds(const RectT<std::int32_t>& rect) {
  if (LRenderContextInfo* const context = GetTopContext()) context->mRect = rect;
}

void LRenderer::SetStencil(const RCPtr<LStencil>& stencil) {
  if (RenderState* const state = GetState()) state->mStencil = stencil;
}

TFRESULT LRenderer::RenderStart(const RCPtr<LRenderContextInfo>& context) {
  if (!context) Throw<std::runtime_error>("Render context is NULL", "TF::LRenderer::RenderStart");
  for (const RCPtr<LRenderContextInfo>& running : mContexts) {
    if (running == context)
      Throw<std::runtime_error>("Render context reentered.", "TF::LRenderer::RenderStart");
  }
  mContexts.Add(context);
  return kSuccess;
}

TFRESULT LRenderer::RenderFinish(const RCPtr<LRenderContextInfo>& context) {
  if (!context || GetTopContext() != context.Get()) {
    Throw<std::runtime_error>("RenderFinish context does not match RenderStart context",
                              "TF::LRenderer::RenderFinish");
  }
  RCPtr<LRenderContextInfo> finished;
  mContexts.RemoveLast(finished);
  return kSuccess;
}

void LRenderer::PushOrigin(const PointT<double>& offset) {
  LRenderContextInfo* const context = GetTopContext();
  if (!context || context->mStateStack.empty()) return;
  SaveState();
  const PointT<double> whole = Rounded(offset);
  Translate(whole);
  MoveClip(context->mState, whole);
}

void LRenderer::PushClip(const RectT<double>& frame, const RectT<double>& clipRect,
                         const RCPtr<LStencil>& stencil, bool relative) {
  LRenderContextInfo* const context = GetTopContext();
  if (!context) return;
  RenderState& state = context->mState;
  PointT<double> offset{frame.mX, frame.mY};
  if (!relative) offset = {offset.mX - state.mOrigin.mX, offset.mY - state.mOrigin.mY};
  offset = Rounded(offset);
  SaveState();
  const RectT<double> clip = relative ? Intersect(Intersect(clipRect, frame), state.mClip) : clipRect;
  SetClipRect(Normalize(clip));
  Translate(offset);
  if (relative) MoveClip(state, offset);
  if (!stencil) return;
  if (state.mStencilActive && state.mStencil) return SetStencil(state.mStencil->Clone());
  SetStencil(stencil);
  state.mStencilActive = true;
}

void LRenderer::SaveState() {
  if (LRenderContextInfo* const context = GetTopContext()) context->mStateStack.push_back(context->mState);
}

void LRenderer::RestoreState() {
  LRenderContextInfo* const context = GetTopContext();
  if (!context || context->mStateStack.empty()) return;
  const RenderState saved = std::move(context->mStateStack.back());
  context->mStateStack.pop_back();
  RenderState& state = context->mState;
  // The saved clip is in the saved coordinates, so the origin goes first.
  Translate({saved.mOrigin.mX - state.mOrigin.mX, saved.mOrigin.mY - state.mOrigin.mY});
  // A sum of far numbers, or of what is no number, would not come back to it.
  state.mOrigin = saved.mOrigin;
  state.mAlpha = saved.mAlpha;
  SetClipRect(saved.mClip);
  SetStencil(saved.mStencil);
  state.mStencilActive = saved.mStencilActive;
}

void LRenderer::SetClipRect(const RectT<double>& rect) {
  if (RenderState* const state = GetState()) state->mClip = rect;
}

void LRenderer::Translate(const PointT<double>& offset) {
  RenderState* const state = GetState();
  if (!state) return;
  state->mOrigin.mX += offset.mX;
  state->mOrigin.mY += offset.mY;
}

}  // namespace TF
