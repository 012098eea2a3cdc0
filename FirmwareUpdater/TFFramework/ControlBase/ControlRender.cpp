#include <algorithm>
#include <cmath>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

namespace {

RectT<double> ToDouble(const RectT<std::int32_t>& rect) {
  return {double(rect.mX), double(rect.mY), double(rect.mWidth), double(rect.mHeight)};
}

// What of the present clip lies in the region, in present coordinates.
bool Touches(const RenderState& state, const Region& dirty) {
  const RectT<double> clip{state.mClip.mX + state.mOrigin.mX, state.mClip.mY + state.mOrigin.mY,
                           state.mClip.mWidth, state.mClip.mHeight};
  return std::any_of(dirty.begin(), dirty.end(), [&clip](const RectT<std::int32_t>& rect) {
    return !IsEmpty(Intersect(ToDouble(rect), clip));
  });
}

// Draws once for each rectangle of the region, which is in the target's coordinates, with that clip.
template <class Draw>
void ForEachPart(const RCPtr<LRenderer>& renderer, const Region& dirty, const Draw& draw) {
  const PointT<double> origin = renderer->GetState()->mOrigin;
  for (const RectT<std::int32_t>& rect : dirty) {
    RectT<double> part = ToDouble(rect);
    part.mX -= origin.mX;
    part.mY -= origin.mY;
    const RectT<double> visible = Intersect(part, renderer->GetState()->mClip);
    if (IsEmpty(visible)) continue;
    const CAutoClip clip(renderer, ClipFlavor{});
    renderer->SetClipRect(visible);
    draw();
  }
}

ClipFlavor OriginAt(const PointT<double>& offset) {
  ClipFlavor flavor;
  flavor.mFlavor = ClipFlavor::kPushOrigin;
  flavor.mOffset = offset;
  return flavor;
}

int CountDockedAxes(const LControl& control) {
  return int{control.IsDocked(LayoutAxis::kX)} + int{control.IsDocked(LayoutAxis::kY)};
}

}  // namespace

TFRESULT LControl::Render(const RCPtr<LRenderer>& renderer, const Region& dirty,
                          RCPtrArray<LControl>& deferred, bool pass) {
  if (mLayout->ClipToParent == pass || !renderer || !renderer->GetState()) return kInvalidArgument;
  if (!IsShown(false)) return kSuccess;
  const RCPtr<LControl> held(this);
  if (!pass && IsEmpty(Intersect(mBounds, renderer->GetState()->mClip))) {
    DeferFloating(deferred);
    return kSuccess;
  }
  const CAutoClip clip(renderer, mBounds, mBounds, nullptr, true);
  renderer->GetState()->mAlpha *= mOpacity;
  if (!Touches(*renderer->GetState(), dirty)) {
    DeferFloating(deferred);
    return kSuccess;
  }
  DrawLooks(renderer, dirty);
  DrawContent(renderer, dirty, deferred);
  if (mBackingStore) mBackingDirty.Clear();
  return kSuccess;
}

// Those that have a weight, in the order of their slots; a part of the whole weight goes into the alpha.
void LControl::ForEachLook(const RCPtr<LRenderer>& renderer, const std::function<void(LLook&)>& draw) {
  for (std::int32_t slot = 0; slot < mLooks.GetCount(); ++slot) {
    const RCPtr<LLook> look = mLooks[slot];
    const float alpha = GetLookAlpha(slot);
    if (!look || !(alpha > 0)) continue;
    if (alpha == 1) {
      draw(*look);
      continue;
    }
    const CAutoClip saved(renderer, ClipFlavor{});
    renderer->GetState()->mAlpha *= alpha;
    draw(*look);
  }
}

void LControl::DrawLooks(const RCPtr<LRenderer>& renderer, const Region& dirty) {
  ForEachLook(renderer, [&](LLook& look) { look.RenderClient(renderer, dirty); });
  ForEachLook(renderer, [&](LLook& look) { look.RenderNonClient(renderer, dirty); });
}

void LControl::DrawContent(const RCPtr<LRenderer>& renderer, const Region& dirty,
                           RCPtrArray<LControl>& deferred) {
  // A view's own content ends with its client area; bars beside that are children.
  const Region inClient = mBackingStore ? PartInClient(*renderer, dirty) : Region();
  const Region& content = mBackingStore ? inClient : dirty;
  ForEachPart(renderer, content, [&] { OnRenderBackground(renderer); });
  DrawTexts(renderer, content);
  DrawChildren(renderer, dirty, deferred);
  ForEachPart(renderer, content, [&] { OnRenderForeground(renderer); });
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl>& child = GetChild(index, ChildOrder::kZ);
    if (!child->mLayout->ClipToParent && child->IsShown(false)) deferred.Add(child);
  }
}

Region LControl::PartInClient(LRenderer& renderer, const Region& dirty) const {
  const PointT<double> origin = renderer.GetState()->mOrigin;
  const RectT<double> client = GetClientRect();
  Region part = dirty;
  part.Intersect(RectT<std::int32_t>{RoundToInt32(origin.mX + client.mX), RoundToInt32(origin.mY + client.mY),
                                     RoundToInt32(client.mWidth), RoundToInt32(client.mHeight)});
  return part;
}

void LControl::DrawTexts(const RCPtr<LRenderer>& renderer, const Region& dirty) {
  const PointT<double> offset = mLookShowsScroll ? mScrollOffset : PointT<double>();
  ForEachLook(renderer, [&](LLook& look) { look.RenderText(renderer, dirty, offset); });
}

// Bars that are docked on both axes stand beside the client area, which clips all others.
void LControl::DrawChildren(const RCPtr<LRenderer>& renderer, const Region& dirty,
                            RCPtrArray<LControl>& deferred) {
  if (GetChildCount() == 0) return;
  const RectT<double> client = GetClientRect();
  std::int32_t next = 0;
  RectT<double> view;
  GetScrollViewRect(view);
  const RectT<double> shown{client.mX, client.mY, view.mWidth, view.mHeight};
  if (IsEmpty(Intersect(shown, renderer->GetState()->mClip))) {
    next = SkipRun(next, 1, deferred);
  } else {
    const CAutoClip clip(renderer, shown, shown, nullptr, true);
    const CAutoClip origin(renderer, OriginAt({-mScrollOffset.mX, -mScrollOffset.mY}));
    next = DrawRun(next, 1, renderer, dirty, deferred);
  }
  const CAutoClip origin(renderer, OriginAt({client.mX - mScrollOffset.mX, client.mY - mScrollOffset.mY}));
  DrawRun(next, 2, renderer, dirty, deferred);
}

bool LControl::IsInRun(const LControl& child, int dockedAxes) const {
  return child.mLayout->ClipToParent && CountDockedAxes(child) <= dockedAxes;
}

std::int32_t LControl::DrawRun(std::int32_t first, int dockedAxes, const RCPtr<LRenderer>& renderer,
                               const Region& dirty, RCPtrArray<LControl>& deferred) {
  std::int32_t index = first;
  for (; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index, ChildOrder::kZ);
    if (!IsInRun(*child, dockedAxes)) break;
    child->Render(renderer, dirty, deferred, false);
  }
  return index;
}

std::int32_t LControl::SkipRun(std::int32_t first, int dockedAxes, RCPtrArray<LControl>& deferred) {
  std::int32_t index = first;
  for (; index < GetChildCount(); ++index) {
    LControl& child = *GetChild(index, ChildOrder::kZ);
    if (!IsInRun(child, dockedAxes)) break;
    if (child.IsShown(false)) child.DeferFloating(deferred);
  }
  return index;
}

// What a floating control has floating below itself comes with its own turn.
void LControl::DeferFloating(RCPtrArray<LControl>& deferred) {
  if (mUnclippedCount == 0) return;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl>& child = GetChild(index, ChildOrder::kZ);
    if (!child->IsShown(false)) continue;
    if (child->mLayout->ClipToParent) {
      child->DeferFloating(deferred);
    } else {
      deferred.Add(child);
    }
  }
}

TFRESULT LControl::OnRenderBackground(const RCPtr<LRenderer>&) {
  return kSuccess;
}

TFRESULT LControl::OnRenderForeground(const RCPtr<LRenderer>&) {
  return kSuccess;
}

}  // namespace TF
