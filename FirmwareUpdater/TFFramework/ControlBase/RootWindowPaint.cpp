#include <algorithm>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

namespace {

RectT<double> Wide(const RectT<std::int32_t>& rect) {
  return {double(rect.mX), double(rect.mY), double(rect.mWidth), double(rect.mHeight)};
}

// Those that wait for their turn above what was painted. One array serves all windows, so that a paint in
// which at most one control floats allocates nothing; a paint within a paint finds it empty and leaves it so.
RCPtrArray<LControl>& DeferredControls() {
  static RCPtrArray<LControl> controls;
  return controls;
}

}  // namespace

void LRootWindow::InvalidateRect(const RectT<std::int32_t>& rect) {
  {
    const MutexLock lock(mRegionMutex);
    const RectT<std::int32_t> visible = Intersect(rect, mBounds);
    if (IsEmpty(visible)) return;
    mDirtyRegion.Add(visible);
  }
  if (mOSServices) mOSServices->InvalidateRect(rect);
}

void LRootWindow::InvalidateAll() {
  {
    const MutexLock lock(mRegionMutex);
    mInvalidateAll = true;
  }
  if (mOSServices) mOSServices->InvalidateRect(GetClientRect());
}

void LRootWindow::TakeDirtyRegion(Region& region) {
  const MutexLock lock(mRegionMutex);
  if (std::exchange(mInvalidateAll, false)) mDirtyRegion = IsEmpty(mBounds) ? Region() : Region(mBounds);
  region = std::exchange(mDirtyRegion, Region());
}

void LRootWindow::Paint(const Region& region) {
  const RCPtr<LControl> top = mTopControl;
  if (!top || region.IsEmpty() || !mRenderer) return;
  const RCPtr<LRootWindow> held(this);
  if (mRenderer->HasSavedState()) {
    if (mOSServices) mOSServices->InvalidateAll();
    return;
  }
  const RectT<std::int32_t> client = GetClientRect();
  const RectT<double> frame = Intersect(top->GetBounds(), Wide(region.GetBounds()));
  const CAutoClip clip(mRenderer, Wide(client), frame, nullptr, false);
  try {
    RenderControlTree(top, region, false);
  } catch (...) {
    DeferredControls().SetCount(0);
    throw;
  }
}

void LRootWindow::RenderControlTree(const RCPtr<LControl>& control, const Region& region, bool pass) {
  RCPtrArray<LControl>& deferred = DeferredControls();
  deferred.SetCount(0);
  control->Render(mRenderer, region, deferred, pass);
  const std::int32_t count = deferred.GetCount();
  if (count == 0) return;
  if (count == 1) {
    RCPtr<LControl> only;
    deferred.RemoveItem(0, only);
    return RenderFloating(only, region);
  }
  std::vector<RCPtr<LControl>> floating;
  for (std::int32_t index = 0; index < count; ++index) floating.push_back(deferred[index]);
  deferred.SetCount(0);
  std::stable_sort(floating.begin(), floating.end(),
                   [](const RCPtr<LControl>& one, const RCPtr<LControl>& other) {
                     return one->GetEffectiveZ() < other->GetEffectiveZ();
                   });
  for (const RCPtr<LControl>& each : floating) RenderFloating(each, region);
}

// Its frame counts in the content of its parent, but nothing of the parent clips it.
void LRootWindow::RenderFloating(const RCPtr<LControl>& control, const Region& region) {
  const RCPtr<LControl> parent = control->GetParent();
  if (!parent) return;
  const PointT<double> place = parent->GetWindowPosition();
  const RectT<double> client = parent->GetClientRect();
  const PointT<double>& scroll = parent->GetScrollOffset();
  const PointT<double> origin{place.mX + client.mX - scroll.mX, place.mY + client.mY - scroll.mY};
  RectT<double> dirty = Wide(region.GetBounds());
  dirty.mX -= origin.mX;
  dirty.mY -= origin.mY;
  const CAutoClip clip(mRenderer, {origin.mX, origin.mY, client.mWidth, client.mHeight},
                       Intersect(control->GetBounds(), dirty), nullptr, false);
  mRenderer->GetState()->mAlpha = control->GetOpacity();
  mRenderer->GetState()->mStencilActive = false;
  RenderControlTree(control, region, true);
}

}  // namespace TF
