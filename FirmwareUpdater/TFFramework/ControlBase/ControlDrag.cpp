#include <algorithm>
#include <cmath>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/DragArithmetic.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/PointAxis.h"

namespace TF {

namespace {

constexpr std::uint32_t kFlickTime = 100;  // Milliseconds; who rests longer before letting go does not flick.
constexpr double kMillisecondsPerSecond = 1000;

// The bits of one axis in a mask of edges.
struct AxisEdges {
  LayoutAxis mAxis;
  std::uint32_t mMove;
  std::uint32_t mNear;
  std::uint32_t mFar;
};

constexpr AxisEdges kAxisEdges[] = {
    {LayoutAxis::kX, DragEdges::kX, DragEdges::kLeft, DragEdges::kRight},
    {LayoutAxis::kY, DragEdges::kY, DragEdges::kTop, DragEdges::kBottom},
};

bool IsResize(DragMode mode) {
  return mode == DragMode::kResize || mode == DragMode::kResizeScrolling;
}

bool ScrollsAtEdges(DragMode mode) {
  return mode == DragMode::kMoveScrolling || mode == DragMode::kResizeScrolling;
}

double LimitEdges(const AxisEdges& edges, std::uint32_t mask, double movement, double size) {
  if (mask & edges.mNear) movement = LimitNearEdge(movement, size);
  return mask & edges.mFar ? LimitFarEdge(movement, size) : movement;
}

}  // namespace

TFRESULT LControl::SetDragMode(DragMode mode, std::uint32_t edges) {
  mDragMode = mode;
  mDragEdges = edges;
  return kSuccess;
}

void LControl::TakeDragSnapshot() {
  const AxisLayout& x = mLayout->Axis(LayoutAxis::kX);
  const AxisLayout& y = mLayout->Axis(LayoutAxis::kY);
  mDragStartSize = {mBounds.mWidth, mBounds.mHeight};
  mDragStartScroll = mParent ? mParent->mScrollOffset : PointT<double>();
  mDragStartPosAbs = {x.mPosition.mAbs, y.mPosition.mAbs};
  mDragStartSizeAbs = {x.mSize.mAbs, y.mSize.mAbs};
}

void LControl::OnDragBegin() {
  if (mDragMode == DragMode::kCarry) FloatForDrag();
  TakeDragSnapshot();
}

void LControl::OnDragRebase() {
  mGrabPoint = {mGrabPoint.mX + mDragDelta.mX, mGrabPoint.mY + mDragDelta.mY};
  TakeDragSnapshot();
}

void LControl::OnDragMove(const RCPtr<LPointWithModifiersParam>& param) {
  if (!param) return;
  const RCPtr<LControl> held(this);
  const LayoutGuard moving(mInDragMove);
  const PointT<double> movement{mBounds.mX + param->mX - mGrabPoint.mX,
                                mBounds.mY + param->mY - mGrabPoint.mY};
  PointT<double> scrolling;
  if (mDragMode == DragMode::kCarry) {
    CarryTo(movement, scrolling);
  } else if (mDragMode == DragMode::kFlick) {
    FlickContent(movement);
  } else if (mDragMode != DragMode::kNone) {
    DragInView(movement, scrolling);
  }
  // Whoever was told meanwhile may have ended the drag.
  if (!IsDragging()) return;
  ScrollForDrag(mDragMode == DragMode::kCarry ? mDropTarget : mParent, scrolling);
  if (IsDragging()) OnDragMoved(param);
}

void LControl::OnDragMoved(const RCPtr<LPointWithModifiersParam>&) {}

void LControl::DragInView(PointT<double> movement, PointT<double>& scrolling) {
  RectT<double> view{-kInfinite, -kInfinite, 2 * kInfinite, 2 * kInfinite};
  if (const RCPtr<LControl> parent = mParent) {
    parent->GetScrollViewRect(view);
    view.mX += parent->mScrollOffset.mX;
    view.mY += parent->mScrollOffset.mY;
  }
  RectT<double> limits = view;
  AdjustDragRect(limits);
  const PointT<double> size{mDragStartSize.mWidth, mDragStartSize.mHeight};
  for (const AxisEdges& edges : kAxisEdges) {
    const LayoutAxis axis = edges.mAxis;
    const DragRange range{On(axis, mGrabPoint), On(axis, view), SideOn(axis, view), On(axis, limits),
                          SideOn(axis, limits)};
    const double wanted = On(axis, movement);
    double& limited = On(axis, movement);
    limited = LimitMovement(range, wanted);
    if (IsResize(mDragMode)) limited = LimitEdges(edges, mDragEdges, limited, On(axis, size));
    const bool mayScroll = (mDragEdges & (edges.mMove | edges.mNear | edges.mFar)) != 0;
    if (ScrollsAtEdges(mDragMode) && mayScroll && limited == wanted) {
      On(axis, scrolling) = FindEdgeScrollSpeed(range, wanted);
    }
  }
  mDragDelta = movement;
  if (IsResize(mDragMode)) return ResizeFrame(movement);
  MoveFrame(movement);
}

void LControl::MoveFrame(const PointT<double>& movement) {
  for (const AxisEdges& edges : kAxisEdges) {
    if ((mDragEdges & edges.mMove) == 0) continue;
    const LayoutAxis axis = edges.mAxis;
    LayoutPosition position = mLayout->Axis(axis).mPosition;
    position.mAbs = PlaceOfDrag(axis, On(axis, movement));
    SetAxisLayout(axis, position, LayoutSize(mLayout->Axis(axis).mSize));
  }
}

// A docked control does not move with the content, so the parent's scrolling counts as its movement.
double LControl::PlaceOfDrag(LayoutAxis axis, double movement) const {
  const double place = On(axis, mDragStartPosAbs) + movement;
  if (!mParent || !IsDocked(axis)) return place;
  return place - (On(axis, mParent->mScrollOffset) - On(axis, mDragStartScroll));
}

void LControl::ResizeFrame(const PointT<double>& movement) {
  for (const AxisEdges& edges : kAxisEdges) {
    if ((mDragEdges & (edges.mNear | edges.mFar)) == 0) continue;
    const LayoutAxis axis = edges.mAxis;
    const bool isNear = (mDragEdges & edges.mNear) != 0;
    LayoutPosition position = mLayout->Axis(axis).mPosition;
    LayoutSize size = mLayout->Axis(axis).mSize;
    if (isNear) position.mAbs = PlaceOfDrag(axis, On(axis, movement));
    size.mAbs = On(axis, mDragStartSizeAbs) + (isNear ? -On(axis, movement) : On(axis, movement));
    SetAxisLayout(axis, position, size);
  }
}

void LControl::FlickContent(const PointT<double>& movement) {
  const double seconds = (mLastMoveTick - mPrevMoveTick) / kMillisecondsPerSecond;
  if (!(seconds > 0)) return;
  RectT<double> limits;
  GetDragLimits(limits, RCPtr<LControl>(this));
  PointT<double> offset = mScrollOffset;
  for (const AxisEdges& edges : kAxisEdges) {
    const LayoutAxis axis = edges.mAxis;
    const double distance = On(axis, mDragDelta) - On(axis, movement);
    On(axis, mVelocity) = FindFlickSpeed(distance, seconds, On(axis, mVelocity));
    if ((mDragEdges & edges.mMove) == 0 || distance == 0) continue;
    const double farthest = On(axis, limits) + SideOn(axis, limits);
    On(axis, offset) = std::max(std::min(On(axis, offset) + distance, farthest), On(axis, limits));
  }
  mDragDelta = movement;
  SetScrollOffset(offset);
}

void LControl::StartFlick() {
  if (!mLeftDrag || mDragMode != DragMode::kFlick) return;
  mReleaseTick = GetControlTicks();
  if (mReleaseTick - mLastMoveTick >= kFlickTime) return;
  RectT<double> limits;
  GetDragLimits(limits, RCPtr<LControl>(this));
  for (const AxisEdges& edges : kAxisEdges) {
    const LayoutAxis axis = edges.mAxis;
    const double speed = On(axis, mVelocity);
    if ((mDragEdges & edges.mMove) == 0 || std::abs(speed) < kLeastFlickSpeed) continue;
    const double nearest = On(axis, limits);
    StartScroll(axis, speed, nearest + SideOn(axis, limits), nearest, nullptr);
    mInertia[static_cast<std::size_t>(axis)] = true;
  }
}

void LControl::ScrollForDrag(const RCPtr<LControl>& scroller, const PointT<double>& scrolling) {
  if (!scroller) return;
  const RCPtr<LControl> held(this), target = scroller;
  for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
    const double speed = On(axis, scrolling);
    if (speed == 0) {
      if (target->mScrollClient[static_cast<std::size_t>(axis)] == this) target->StopScroll(axis);
      continue;
    }
    RectT<double> limits;
    target->GetDragLimits(limits, held);
    const double nearest = On(axis, limits);
    target->StartScroll(axis, speed, nearest + SideOn(axis, limits), nearest, held);
  }
}

void LControl::StopScrollFor(const LControl& client) {
  for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
    if (mScrollClient[static_cast<std::size_t>(axis)] == &client) StopScroll(axis);
  }
}

void LControl::OnDragEnd() {
  const RCPtr<LControl> held(this);
  if (mParent) mParent->StopScrollFor(*this);
  if (mDragMode == DragMode::kCarry) LandDrag();
}

void LControl::GetDragLimits(RectT<double>& result, const RCPtr<LControl>&) {
  result = {0, 0, kInfinite, kInfinite};
}

void LControl::GetScrollViewRect(RectT<double>& result) {
  const RectT<double> client = GetClientRect();
  result = {0, 0, client.mWidth, client.mHeight};
}

void LControl::AdjustDragRect(RectT<double>&) {}

}  // namespace TF
