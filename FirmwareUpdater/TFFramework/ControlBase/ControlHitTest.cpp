#include <algorithm>
#include <vector>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

constexpr std::uint32_t kAlphaShift = 24;

PointT<double> From(const PointT<double>& corner, const PointT<double>& point) {
  return {point.mX - corner.mX, point.mY - corner.mY};
}

// What floats takes its hits itself, whatever is above it.
bool FloatsBelow(const LControl& top, const LControl& control) {
  for (const LControl* each = &control; each && each != &top; each = each->GetParent().Get()) {
    if (!each->GetClipToParent()) return true;
  }
  return false;
}

}  // namespace

void LControl::HitTest(RCPtr<LControl>& result, const PointT<double>& point, bool testSelf,
                       PointT<double>& localPoint, std::int32_t& bestZ) {
  result = nullptr;
  localPoint = {-kInfinite, -kInfinite};
  mRoutedChild = nullptr;
  if (!IsShown(false) || mIsDoomed) return;
  const bool isInside = ContainsPoint(point);
  if (!isInside && mUnclippedCount == 0) return;
  const PointT<double> own = From({mBounds.mX, mBounds.mY}, point);
  // What floats is not limited by what is above it.
  const bool mayHit = isInside && (testSelf || !mLayout->ClipToParent);
  const std::int32_t bestBefore = bestZ;
  HitTestChildren(result, own, mayHit, localPoint, bestZ);
  if (result && (!mRouteChildHits || FloatsBelow(*this, *result))) {
    bestZ = result->GetEffectiveZ();
    return;
  }
  if (result) {
    mRoutedChild = result;
    mRoutedPoint = {RoundToInt32(localPoint.mX), RoundToInt32(localPoint.mY)};
    mRoutedZ = result->GetEffectiveZ();
    result = nullptr;
    // It must not stand in the way of this control, which takes the hit for it.
    bestZ = bestBefore;
  }
  const std::int32_t z = GetEffectiveZ();
  const bool isFree = mayHit && !mHitExcluded && (z == kNoZ || z > bestZ) && !IsClippedAt(point);
  if (!isFree || IsTransparentAt(own)) return;
  result = RCPtr<LControl>(this);
  localPoint = own;
  bestZ = z;
}

bool LControl::IsClippedAt(const PointT<double>& point) const {
  if (!mParent || !mLayout->ClipToParent || IsDockedOnBothAxes()) return false;
  RectT<double> view;
  mParent->GetScrollViewRect(view);
  return !Contains(view, From(mParent->mScrollOffset, point));
}

// The children stand in the client area of each look that is shown; looks mostly agree on it.
void LControl::HitTestChildren(RCPtr<LControl>& result, const PointT<double>& point, bool mayHit,
                               PointT<double>& localPoint, std::int32_t& bestZ) {
  if (GetChildCount() == 0) return;
  std::vector<RectT<double>> clients;
  for (std::int32_t slot = 0; slot < mLooks.GetCount(); ++slot) {
    if (!(GetLookAlpha(slot) > 0)) continue;
    const RectT<double> client = GetClientRect(slot);
    if (std::find(clients.begin(), clients.end(), client) == clients.end()) clients.push_back(client);
  }
  if (clients.empty()) clients.push_back(GetClientRect());
  for (const RectT<double>& client : clients) {
    HitTestLayer(result, point, client, mayHit, localPoint, bestZ);
  }
}

void LControl::HitTestLayer(RCPtr<LControl>& result, const PointT<double>& point, const RectT<double>& client,
                            bool mayHit, PointT<double>& localPoint, std::int32_t& bestZ) {
  const bool isInClient = Contains(client, point);
  const PointT<double> content{point.mX - client.mX + mScrollOffset.mX,
                               point.mY - client.mY + mScrollOffset.mY};
  std::int32_t resultZ = result ? result->GetEffectiveZ() : kNoZ;
  for (std::int32_t index = GetChildCount() - 1; index >= 0; --index) {
    LControl& child = *GetChild(index, ChildOrder::kZ);
    const bool floats = !child.mLayout->ClipToParent;
    const bool childMayHit = mayHit && !floats && (isInClient || child.IsDockedOnBothAxes());
    if ((result || !childMayHit) && !floats && child.mUnclippedCount == 0) continue;
    RCPtr<LControl> hit;
    PointT<double> hitPoint;
    child.HitTest(hit, content, childMayHit, hitPoint, bestZ);
    if (!hit) continue;
    const std::int32_t hitZ = hit->GetEffectiveZ();
    if (result && hitZ <= resultZ) continue;
    result = hit;
    resultZ = hitZ;
    localPoint = hitPoint;
  }
}

bool LControl::IsTransparentAt(const PointT<double>& point) {
  for (std::int32_t slot = 0; slot < mLooks.GetCount(); ++slot) {
    if (GetLookAlpha(slot) > 0 && GetColorAtPoint(point, slot) >> kAlphaShift > 0) return false;
  }
  return true;
}

std::uint32_t LControl::GetColorAtPoint(const PointT<double>& point, std::int32_t slot) {
  const RCPtr<LLook> look = GetLook(slot);
  return look ? look->GetColorAtPoint(point) : LVisualPart::kNothing;
}

bool LControl::ContainsPoint(const PointT<double>& point) {
  return Contains(mBounds, point);
}

}  // namespace TF
