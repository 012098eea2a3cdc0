#include <utility>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/DragArithmetic.h"
#include "TFFramework/ControlBase/HitExclusion.h"
#include "TFFramework/ControlBase/PointAxis.h"

namespace TF {

namespace {

constexpr LayoutAxis kAxes[] = {LayoutAxis::kX, LayoutAxis::kY};

// Null when there is none at a point of the window.
RCPtr<LControl> FindTargetAt(const RCPtr<LControl>& carried, const PointT<double>& point) {
  const RCPtr<LRootWindow> window = carried->GetRootWindow();
  if (!window) return nullptr;
  RCPtr<LControl> below;
  {
    HitExclusion excluded;
    excluded.AddTree(carried);
    for (RCPtr<LControl> above = carried->GetParent(); above; above = RCPtr<LControl>(above->GetParent())) {
      if (!above->GetClipToParent()) excluded.Add(above);
    }
    PointT<std::int32_t> local;
    window->HitTest(below, {RoundToInt32(point.mX), RoundToInt32(point.mY)}, local, false);
  }
  RCPtr<LControl> target;
  if (below) below->FindDropTarget(target, carried, point);
  return target;
}

PointT<double> ToLocal(const LControl& control, const PointT<double>& point) {
  const PointT<double> corner = control.GetWindowPosition();
  return {point.mX - corner.mX, point.mY - corner.mY};
}

// Pixels per second in which a target scrolls under something that is carried over it.
PointT<double> FindCarryScroll(LControl& target, std::uint32_t edges, const PointT<double>& local) {
  RectT<double> view;
  target.GetScrollViewRect(view);
  const RectT<double> client = target.GetClientRect();
  return {FindViewScrollSpeed(local.mX - client.mX - view.mX, view.mWidth, (edges & DragEdges::kLeft) != 0,
                              (edges & DragEdges::kRight) != 0),
          FindViewScrollSpeed(local.mY - client.mY - view.mY, view.mHeight, (edges & DragEdges::kTop) != 0,
                              (edges & DragEdges::kBottom) != 0)};
}

}  // namespace

// Docked it stays where it is while the parent scrolls.
void LControl::FloatForDrag() {
  mDropTarget = nullptr;
  ShowDropCursor();
  mDragWasFloating = !mLayout->ClipToParent;
  SetClipToParent(false);
  for (const LayoutAxis axis : kAxes) {
    LayoutPosition position = mLayout->Axis(axis).mPosition;
    mDragKeptDocked[static_cast<std::size_t>(axis)] = position.mIsDocked;
    if (position.mIsDocked) continue;
    position.mIsDocked = true;
    if (mParent) position.mAbs -= On(axis, mParent->mScrollOffset);
    SetAxisLayout(axis, position, LayoutSize(mLayout->Axis(axis).mSize));
  }
}

void LControl::CarryTo(const PointT<double>& movement, PointT<double>& scrolling) {
  const RCPtr<LControl> held(this), parent = mParent;
  PointT<double> point{mGrabPoint.mX + movement.mX, mGrabPoint.mY + movement.mY};
  if (parent) {
    const PointT<double> corner = parent->GetWindowPosition();
    const RectT<double> client = parent->GetClientRect();
    point = {point.mX + corner.mX + client.mX - parent->mScrollOffset.mX,
             point.mY + corner.mY + client.mY - parent->mScrollOffset.mY};
  }
  mDragDelta = movement;
  MoveFrame(movement);
  const RCPtr<LControl> found = FindTargetAt(held, point);
  if (!(found == mDropTarget)) ChangeDropTarget(found);
  if (const RCPtr<LControl> target = mDropTarget; target && IsDragging()) {
    target->OnDropOver(held, ToLocal(*target, point));
    const std::uint32_t edges = target->GetAutoScrollEdges(held);
    if (edges != 0 && !target->mDestroyed)
      scrolling = FindCarryScroll(*target, edges, ToLocal(*target, point));
  }
}

void LControl::ChangeDropTarget(const RCPtr<LControl>& target) {
  const RCPtr<LControl> held(this);
  if (const RCPtr<LControl> before = std::exchange(mDropTarget, nullptr)) {
    before->StopScrollFor(*this);
    before->OnDropLeave(held);
  }
  if (!IsDragging()) return;
  mDropTarget = target;
  ShowDropCursor();
  if (target) target->OnDropEnter(held);
}

void LControl::ShowDropCursor() {
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) {
    window->ShowNamedCursor(mDropTarget ? u"UI_CURSOR_DROP_MOVE" : u"UI_CURSOR_NO_DROP");
  }
}

void LControl::LandDrag() {
  const RCPtr<LControl> held(this);
  ShowCursor(0);
  if (!mDragWasFloating) SetClipToParent(true);
  for (const LayoutAxis axis : kAxes) {
    LayoutPosition position = mLayout->Axis(axis).mPosition;
    if (mDragKeptDocked[static_cast<std::size_t>(axis)] || !position.mIsDocked) continue;
    position.mIsDocked = false;
    if (mParent) position.mAbs += On(axis, mParent->mScrollOffset);
    SetAxisLayout(axis, position, LayoutSize(mLayout->Axis(axis).mSize));
  }
  const RCPtr<LControl> target = std::exchange(mDropTarget, nullptr);
  if (!target) return;
  target->StopScrollFor(*this);
  if (!mDestroyed && !target->mDestroyed) target->PerformDrop(held);
  target->OnDropLeave(held);
}

std::uint32_t LControl::GetAutoScrollEdges(const RCPtr<LControl>&) {
  return 0;
}

void LControl::OnDropEnter(const RCPtr<LControl>&) {}
void LControl::OnDropOver(const RCPtr<LControl>&, const PointT<double>&) {}
void LControl::OnDropLeave(const RCPtr<LControl>&) {}

TFRESULT LControl::PerformDrop(const RCPtr<LControl>&) {
  return kFailure;
}

}  // namespace TF
