#include "TFFramework/ControlBase/Control.h"

namespace TF {

TFRESULT LControl::SetDragMode(DragMode mode, std::uint32_t edges) {
  mDragMode = mode;
  mDragEdges = edges;
  return kSuccess;
}

void LControl::OnDragBegin() {}
void LControl::OnDragRebase() {}
void LControl::OnDragMove(const RCPtr<LPointWithModifiersParam>&) {}
void LControl::OnDragMoved(const RCPtr<LPointWithModifiersParam>&) {}
void LControl::OnDragEnd() {}

void LControl::FindDropTarget(RCPtr<LControl>& result, const RCPtr<LControl>&, const PointT<double>&) {
  result = nullptr;
}

bool LControl::IsDropTarget(const RCPtr<LControl>&) {
  return false;
}

std::uint32_t LControl::GetAutoScrollEdges(const RCPtr<LControl>&) {
  return 0;
}

void LControl::GetDragLimits(RectT<double>& result, const RCPtr<LControl>&) {
  result = {0, 0, kInfinite, kInfinite};
}

void LControl::GetScrollViewRect(RectT<double>& result) {
  const RectT<double> client = GetClientRect();
  result = {0, 0, client.mWidth, client.mHeight};
}

void LControl::AdjustDragRect(RectT<double>&) {}
void LControl::OnDropEnter(const RCPtr<LControl>&) {}
void LControl::OnDropOver(const RCPtr<LControl>&, const PointT<double>&) {}
void LControl::OnDropLeave(const RCPtr<LControl>&) {}

TFRESULT LControl::PerformDrop(const RCPtr<LControl>&) {
  return kFailure;
}

TFRESULT LControl::SetScrollOffset(const PointT<double>& offset) {
  const PointT<double> from = mScrollOffset;
  const PointT<double> to{std::round(offset.mX), std::round(offset.mY)};
  if (to == from) return kNothingDone;
  mScrollOffset = to;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    child->OnParentScroll(from, to);
  }
  InvalidateFrame();
  OnScrollOffsetChange(from, to);
  Send(LNotification::Create(u"NID_SCROLL_OFFSET_CHANGE"));
  return kSuccess;
}

TFRESULT LControl::StartScroll(LayoutAxis, double, double, double, const RCPtr<LControl>&) {
  return kNothingDone;
}

TFRESULT LControl::StopScroll(LayoutAxis) {
  return kNothingDone;
}

void LControl::HookIdle() {
  if (!mHandler) mHandler = MakeRC<LNotificationHandler<LControl>>(this);
  const RCPtr<LNotificationDistributor> window(GetRootWindow());
  if (Failed(mHandler->AddHandler(&LControl::HandleIdle, window, u"NID_IDLE"))) mIdleRefCount = 0;
}

void LControl::AddIdleUser() {
  if (++mIdleRefCount == 1 && GetRootWindow()) HookIdle();
}

void LControl::RemoveIdleUser() {
  if (mIdleRefCount == 0 || --mIdleRefCount > 0) return;
  const RCPtr<LNotificationDistributor> window(GetRootWindow());
  if (!window) return;
  const NotificationId id = GetNotificationID(u"NID_IDLE");
  if (mHandler) mHandler->RemoveHandler(window, id);
  Unregister(window, id);
}

TFRESULT LControl::HandleIdle(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  const RCPtr<LControl> held(this);
  DestroyDoomedChildren();
  OnIdle();
  return kSuccess;
}

void LControl::OnIdle() {}

}  // namespace TF
