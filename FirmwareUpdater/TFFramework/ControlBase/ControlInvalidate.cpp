#include <cmath>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

// More pieces of dirt than these count as the rectangle around them.
constexpr std::int32_t kMostBackingParts = 64;

RectT<double> Moved(const RectT<double>& rect, const PointT<double>& offset) {
  return {rect.mX + offset.mX, rect.mY + offset.mY, rect.mWidth, rect.mHeight};
}

// Every pixel that the rectangle touches.
RectT<std::int32_t> ToPixels(const RectT<double>& rect) {
  const std::int32_t left = RoundToInt32(std::floor(rect.mX));
  const std::int32_t top = RoundToInt32(std::floor(rect.mY));
  const std::int64_t right = RoundToInt32(std::ceil(rect.GetRight()));
  const std::int64_t bottom = RoundToInt32(std::ceil(rect.GetBottom()));
  return {left, top, RoundToInt32(static_cast<double>(right - left)),
          RoundToInt32(static_cast<double>(bottom - top))};
}

}  // namespace

void LControl::Invalidate(const RectT<double>& rect, bool clip) {
  InvalidateUp(rect, clip, rect);
}

void LControl::InvalidateUp(const RectT<double>& rect, bool clip, const RectT<double>& clipRect) {
  if (mBackingStore && mBoundsChanging == 0) {
    const RectT<double> client = GetClientRect();
    AddBackingDirt(Moved(rect, {mScrollOffset.mX - client.mX, mScrollOffset.mY - client.mY}));
  }
  if (!IsShown(false)) return;
  const RCPtr<LControl> parent = mParent;
  const PointT<double> position = GetPositionInParent();
  if (!parent) {
    const RCPtr<LRootWindow> window = GetRootWindow();
    const RectT<double> visible = clip ? Intersect(rect, clipRect) : rect;
    if (window && !IsEmpty(visible)) window->InvalidateRect(ToPixels(Moved(visible, position)));
    return;
  }
  if (!clip || !mLayout->ClipToParent) {
    const RectT<double> visible = clip ? Intersect(rect, clipRect) : rect;
    return parent->InvalidateUp(Moved(visible, position), false, Moved(visible, position));
  }
  const RectT<double> frame{0, 0, parent->mBounds.mWidth, parent->mBounds.mHeight};
  const RectT<double> shown = Intersect(Moved(clipRect, position), frame);
  if (!IsEmpty(shown)) parent->InvalidateUp(Moved(rect, position), true, shown);
}

void LControl::InvalidateFrame() {
  Invalidate({0, 0, mBounds.mWidth, mBounds.mHeight}, mLayout->ClipToParent);
}

void LControl::InvalidateUnclipped() {
  if (mUnclippedCount == 0) return;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    if (!child->mLayout->ClipToParent) child->InvalidateFrame();
    child->InvalidateUnclipped();
  }
}

void LControl::AddBackingDirt(const RectT<double>& rect) {
  const RectT<double> shown = Intersect(rect, GetClientView());
  if (IsEmpty(shown)) return;
  mBackingDirty.Add(ToPixels(shown));
  if (mBackingDirty.GetCount() > kMostBackingParts) mBackingDirty = Region(mBackingDirty.GetBounds());
}

void LControl::RebuildBackingStore() {
  mBackingDirty.Clear();
  AddBackingDirt(GetClientView());
}

void LControl::OnChildMoved(const RCPtr<LControl>& child) {
  if (mBackingStore && child) AddBackingDirt(child->GetBounds());
}

// The dirt lies in the content and moves with it. What the view newly shows was never drawn.
void LControl::OnScrollOffsetChange(const PointT<double>& from, const PointT<double>&) {
  if (!mBackingStore) return;
  const RectT<double> view = GetClientView();
  Region shown(ToPixels(view));
  shown.Subtract(ToPixels({from.mX, from.mY, view.mWidth, view.mHeight}));
  for (const RectT<std::int32_t>& rect : shown) {
    AddBackingDirt({double(rect.mX), double(rect.mY), double(rect.mWidth), double(rect.mHeight)});
  }
}

}  // namespace TF
