#include "TFFramework/Controls/Button.h"

#include <utility>

#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/Controls/ClippedText.h"
#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

namespace {

// Slots of looks; the same again from kOnOffset for a button that is on.
constexpr std::int32_t kNormal = 0;
constexpr std::int32_t kHover = 1;
constexpr std::int32_t kPressed = 2;
constexpr std::int32_t kFocusOffset = 3;
constexpr std::int32_t kDisabled = 6;
constexpr std::int32_t kOnOffset = 7;

}  // namespace

TFRESULT LButton::Initialize() {
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  MakeHandler();
  ThrowIfFailed(mHandler->AddHandler(&LButton::HandleSimulateClick, RCPtr<LNotificationDistributor>(this),
                                     u"NID_SIMULATE_CLICK"),
                "TF::LButton::Initialize");
  bool value = false;
  if (GetCreateFlag(u"AUTO_VALUE_SET", value)) SetAutoValueSet(value);
  if (GetCreateFlag(u"IS_RADIO", value)) SetIsRadio(value);
  UpdateLook();
  return result;
}

TFRESULT LButton::HandleSimulateClick(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  SimulateClick();
  return kSuccess;
}

TFRESULT LButton::SetAutoValueSet(bool autoValueSet) {
  mAutoValueSet = autoValueSet;
  return kSuccess;
}

TFRESULT LButton::SetIsRadio(bool isRadio) {
  mIsRadio = isRadio;
  return kSuccess;
}

bool LButton::SetChecked(bool checked) {
  return SetValue(checked ? 1 : 0) >= kOn;
}

std::int32_t LButton::FindLook() const {
  const std::int32_t row = IsChecked() ? kOnOffset : 0;
  if (!IsEnabled(true)) return row + kDisabled;
  std::int32_t state = kNormal;
  if (mHasCapture && mLeftDrag) {
    state = mHover || mPressedOffButton ? kPressed : kHover;
  } else if (mHover && !mHasCapture) {
    state = kHover;
  }
  return row + state + (mHasFocus ? kFocusOffset : 0);
}

void LButton::UpdateLook() {
  if (!mSimulating) SetActiveLook(FindLook(), true);
}

void LButton::OnLeftClicked(const RCPtr<LMouseButtonParam>& param) {
  LControl::OnLeftClicked(param);
  if (mAutoValueSet) SetValue(mIsRadio || !IsChecked() ? 1 : 0);
}

void LButton::OnValueChange() {
  const RCPtr<LControl> held(this), parent = mParent;
  LControl::OnValueChange();
  if (mIsRadio && IsChecked() && parent) {
    for (std::int32_t index = parent->GetChildCount() - 1; index >= 0; --index) {
      if (index >= parent->GetChildCount()) continue;
      const RCPtr<LButton> sibling(parent->GetChild(index));
      if (sibling && sibling != this && sibling->mIsRadio) sibling->SetValue(0);
    }
  }
  UpdateLook();
}

void LButton::SetEnabled(bool enabled) {
  const RCPtr<LControl> held(this);
  LControl::SetEnabled(enabled);
  UpdateLook();
}

String LButton::GetToolTipText() {
  return IsTextClipped(*this) ? mText : LControl::GetToolTipText();
}

TFRESULT LButton::OnKeyDown(const RCPtr<LKeyParam>& param) {
  if (param->mKey.code != PressedKey::kReturn) return kNothingDone;
  SimulateClick();
  return kSuccess;
}

void LButton::SendRepeat() {
  Send(LNotification::Create(u"NID_BUTTON_AUTOREPEAT"));
}

void LButton::BeginRepeat() {
  mRepeating = true;
  AddIdleUser();
  mLastRepeatTime = GetControlTime();
  mTimeToRepeat = mRepeatDelay;
  SendRepeat();
}

void LButton::EndRepeat() {
  if (std::exchange(mRepeating, false)) RemoveIdleUser();
}

void LButton::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LControl::OnConditionChange(conditions);
  if (mAutoRepeat && conditions->Rose(ControlCondition::kHoverBelow)) {
    // Time spent beside the button does not count.
    mLastRepeatTime = GetControlTime();
  } else if (mAutoRepeat && conditions->Rose(ControlCondition::kLeftDown) && IsEnabled(true) && !mRepeating) {
    BeginRepeat();
  } else if (mAutoRepeat && conditions->Fell(ControlCondition::kHasCapture)) {
    EndRepeat();
  }
  if (!mDestroyed) UpdateLook();
}

void LButton::OnIdle() {
  const RCPtr<LControl> held(this);
  LControl::OnIdle();
  if (mDestroyed) return;
  const double now = GetControlTime();
  if (mRepeating && mHover && IsEnabled(true)) {
    mTimeToRepeat -= now - mLastRepeatTime;
    mLastRepeatTime = now;
    if (mTimeToRepeat <= 0) {
      mTimeToRepeat = mRepeatPeriod;
      SendRepeat();
    }
  }
  if (!mDestroyed && mSimulating && now - mClickStartTime >= mClickDuration) FinishClick();
}

// The click comes last: what it starts may last long, and be told of idle time itself.
void LButton::FinishClick() {
  mSimulating = false;
  mClickStartTime = 0;
  RemoveIdleUser();
  UpdateLook();
  ClickNow();
}

void LButton::ClickNow() {
  const auto isThere = [this] { return !mDestroyed && IsEnabled(true) && IsShown(true); };
  if (!isThere()) return;
  if (mAutoRepeat) SendRepeat();
  if (!isThere()) return;
  const RCPtr<LRootWindow> window = GetRootWindow();
  OnClick(MakeRC<LMouseButtonParam>(0, 0, 0U, GetControlTicks(), LMouseButtonParam::kLeft, false,
                                    window ? window->GetMouseButtons() : 0U));
}

void LButton::SimulateClick() {
  const RCPtr<LControl> held(this);
  if (mDestroyed || !IsEnabled(true) || !IsShown(true)) return;
  if (std::exchange(mSimulating, false)) {
    RemoveIdleUser();
    ClickNow();
    if (mDestroyed || mSimulating || !IsEnabled(true) || !IsShown(true)) return;
  }
  mSimulating = true;
  AddIdleUser();
  mClickStartTime = GetControlTime();
  SetFocus(true);
  if (mDestroyed || !mSimulating) return;
  SetActiveLook(kPressed + (IsChecked() ? kOnOffset : 0), true);
  InvalidateFrame();
}

}  // namespace TF
