#include <algorithm>
#include <cmath>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/DragArithmetic.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/PointAxis.h"

namespace TF {

namespace {

constexpr std::uint32_t kInertiaTime = 1000;  // Milliseconds in which a flick keeps its speed.
constexpr std::uint32_t kRepeatTime = 100;    // Milliseconds between the presses of a button that is held.

// What is no number leaves the offset where it is.
double LimitOffset(double wanted, double present) {
  if (std::isnan(wanted)) return present;
  return std::clamp(std::round(wanted), -LControl::kInfinite, LControl::kInfinite);
}

}  // namespace

TFRESULT LControl::SetScrollOffset(const PointT<double>& offset) {
  const PointT<double> from = mScrollOffset;
  const PointT<double> to{LimitOffset(offset.mX, from.mX), LimitOffset(offset.mY, from.mY)};
  if (to == from) return kNothingDone;
  const RCPtr<LControl> held(this);
  {
    const LayoutGuard scrolling(mScrolling);
    InvalidateUnclipped();
    mScrollOffset = to;
    for (std::int32_t index = 0; index < GetChildCount(); ++index) {
      const RCPtr<LControl> child = GetChild(index);
      child->OnParentScroll(from, to);
    }
    InvalidateFrame();
    InvalidateUnclipped();
    OnScrollOffsetChange(from, to);
    Send(LNotification::Create(u"NID_SCROLL_OFFSET_CHANGE"));
  }
  const RCPtr<LRootWindow> window = GetRootWindow();
  PointT<std::int32_t> mouse;
  if (!window || !window->GetHoverControl() || !window->GetMousePosition(mouse)) return kSuccess;
  const PointT<double> corner = GetWindowPosition();
  const PointT<double> point{mouse.mX - corner.mX, mouse.mY - corner.mY};
  if (Contains({0, 0, mBounds.mWidth, mBounds.mHeight}, point)) window->RepeatHitTest();
  return kSuccess;
}

TFRESULT LControl::StartScroll(LayoutAxis axis, double speed, double max, double min,
                               const RCPtr<LControl>& client) {
  if (!IsAxis(axis)) return kInvalidArgument;
  const auto place = static_cast<std::size_t>(axis);
  mScrollSpeed[place] = speed;
  mScrollMax[place] = max;
  mScrollMin[place] = min;
  mScrollClient[place] = client;
  if (mScrollRunning[place]) return kSuccess;
  mScrollRunning[place] = true;
  mScrollLastTime[place] = GetControlTime();
  AddIdleUser();
  return kSuccess;
}

TFRESULT LControl::StopScroll(LayoutAxis axis) {
  if (!IsAxis(axis)) return kInvalidArgument;
  const auto place = static_cast<std::size_t>(axis);
  mScrollClient[place] = nullptr;
  if (!mScrollRunning[place]) return kNothingDone;
  mScrollRunning[place] = false;
  mInertia[place] = false;
  RemoveIdleUser();
  return kSuccess;
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
  UnhookIdle(RCPtr<LNotificationDistributor>(GetRootWindow()));
}

void LControl::UnhookIdle(const RCPtr<LNotificationDistributor>& window) {
  if (!window) return;
  const NotificationId id = GetNotificationID(u"NID_IDLE");
  if (mHandler) mHandler->RemoveHandler(window, id);
  Unregister(window, id);
}

TFRESULT LControl::HandleIdle(const RCPtr<LNotificationDistributor>& sender, const RCPtr<LNotification>&) {
  const RCPtr<LControl> held(this);
  // The control has left the window, or needs it no more.
  if (mIdleRefCount == 0 || !(RCPtr<LNotificationDistributor>(GetRootWindow()) == sender)) {
    UnhookIdle(sender);
    return kSuccess;
  }
  if (!mInDragMove) {
    const double time = GetControlTime();
    for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) MoveAxis(axis, time);
    RepeatPress();
  }
  DestroyDoomedChildren();
  if (!mDestroyed) OnIdle();
  return kSuccess;
}

// Steps are whole pixels; the time that is left over counts for the next one.
void LControl::MoveAxis(LayoutAxis axis, double time) {
  const auto place = static_cast<std::size_t>(axis);
  if (!mScrollRunning[place]) return;
  const double seconds = time - mScrollLastTime[place];
  const double speed = mScrollSpeed[place];
  const double step = std::round(speed * seconds);
  if (step == 0) return;
  mScrollLastTime[place] = mScrollLastTime[place] + step / speed;
  PointT<double> offset = mScrollOffset;
  On(axis, offset) = std::max(std::min(On(axis, offset) + step, mScrollMax[place]), mScrollMin[place]);
  SetScrollOffset(offset);
  if (const RCPtr<LControl> client = mScrollClient[place]) MoveClient(client);
  if (mScrollRunning[place] && mInertia[place]) SlowDown(axis, step / speed);
}

// What is dragged stays under the mouse while the content moves.
void LControl::MoveClient(const RCPtr<LControl>& client) {
  if (!client->IsDragging()) return StopScrollFor(*client);
  const RCPtr<LRootWindow> window = client->GetRootWindow();
  PointT<std::int32_t> mouse;
  if (!window || !window->GetMousePosition(mouse)) return;
  const PointT<double> corner = client->GetWindowPosition();
  client->OnDragMove(MakeRC<LPointWithModifiersParam>(
      RoundToInt32(mouse.mX - corner.mX), RoundToInt32(mouse.mY - corner.mY), 0, GetControlTicks()));
}

void LControl::SlowDown(LayoutAxis axis, double seconds) {
  if (GetControlTicks() - mReleaseTick <= kInertiaTime) return;
  double& speed = mScrollSpeed[static_cast<std::size_t>(axis)];
  speed = SlowedSpeed(speed, std::round(mDeceleration * seconds));
  if (speed == 0) StopScroll(axis);
}

// Holding the button presses again and again what lies under it.
void LControl::RepeatPress() {
  const RCPtr<LControl> child = mRoutedChild;
  const RCPtr<LMouseButtonParam> press = mLastLeftDown;
  if (mDestroyed || !mLeftDown || !mRouteChildHits || !child || child->mDestroyed || !press) return;
  if (GetControlTicks() - mPressTick <= kRepeatTime || !RepeatsPressOn(child)) return;
  const PointT<std::int32_t> point = mRoutedPoint;
  ReleaseMouse();
  child->CaptureMouse(press->mButton, point.mX, point.mY);
  child->MouseDown(MakeRC<LMouseButtonParam>(point.mX, point.mY, press->mModifiers, press->mTime,
                                             press->mButton, press->mIsDoubleClick, press->mButtonsHeld));
}

bool LControl::RepeatsPressOn(const RCPtr<LControl>&) {
  return true;
}

void LControl::OnIdle() {}

}  // namespace TF
