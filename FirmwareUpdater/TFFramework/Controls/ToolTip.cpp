#include "TFFramework/Controls/ToolTip.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/Controls/FloatingPlace.h"

namespace TF {

namespace {

// Milliseconds; each has passed with more than these, the first with less.
constexpr std::uint32_t kFollowsAnother = 50;
constexpr std::uint32_t kDelay = 500;
constexpr std::uint32_t kDuration = 5000;

constexpr double kBelowPointer = 20;  // Pixels.
constexpr double kWindowMargin = 8;   // Pixels of the window's width that a tip leaves.

// When the last one that was shown went; nothing before the first.
std::optional<std::uint32_t> gLastToolTipHideTick;

}  // namespace

TFRESULT LToolTip::OnDescriptorApplied() {
  SetVisible(mState == State::kShown);
  return LControl::OnDescriptorApplied();
}

void LToolTip::ApplyCreateParameters() {
  LControl::ApplyCreateParameters();
  SetNotFocusable(true);
}

void LToolTip::Show() {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (!window || mDestroyed) return;
  LayoutLimit minimum, maximum;
  GetAxisLimits(LayoutAxis::kX, minimum, maximum);
  maximum = LayoutLimit();
  // Never 0, which would be no limit.
  maximum.mAbs = std::max(window->GetClientRect().mWidth - kWindowMargin, 1.0);
  SetAxisLimits(LayoutAxis::kX, minimum, maximum);
  const bool isNew = mState == State::kOff;
  mStateTick = GetControlTicks();
  const bool atOnce = gLastToolTipHideTick && mStateTick - *gLastToolTipHideTick < kFollowsAnother;
  mState = atOnce ? State::kShown : State::kWaiting;
  if (isNew) AddIdleUser();
  if (atOnce) ShowNow();
}

void LToolTip::OnIdle() {
  const RCPtr<LControl> held(this);
  LControl::OnIdle();
  const std::uint32_t now = GetControlTicks();
  if (mState == State::kWaiting && now - mStateTick > kDelay) {
    mState = State::kShown;
    mStateTick = now;
    ShowNow();
  } else if (mState == State::kShown && now - mStateTick > kDuration) {
    Hide();
  }
}

void LToolTip::ShowNow() {
  Place();
  SetVisible(true);
}

void LToolTip::Hide() {
  const RCPtr<LControl> held(this), parent = mParent;
  if (std::exchange(mState, State::kOff) != State::kOff) RemoveIdleUser();
  if (IsShown(false)) gLastToolTipHideTick = GetControlTicks();
  if (parent) parent->DestroyChildLater(held);
}

void LToolTip::Place() {
  const RCPtr<LRootWindow> window = GetRootWindow();
  PointT<std::int32_t> mouse;
  if (window && window->GetMousePosition(mouse))
    PlaceInWindow(*this, {double(mouse.mX), mouse.mY + kBelowPointer});
}

}  // namespace TF
