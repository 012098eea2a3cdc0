#include "TFFramework/Controls/DropDownControl.h"

#include <utility>

namespace TF {

TFRESULT LDropDownControl::Initialize() {
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  MakeHandler();
  return mHandler->AddHandler(&LDropDownControl::HandleMouseDown, RCPtr<LNotificationDistributor>(this),
                              u"NID_MOUSE_DOWN");
}

TFRESULT LDropDownControl::HandleMouseDown(const RCPtr<LNotificationDistributor>&,
                                           const RCPtr<LNotification>&) {
  if (mClosedByFocus) mEatPress = true;
  return kNothingDone;
}

TFRESULT LDropDownControl::SetFocus(bool forward) {
  const RCPtr<LControl> held(this);
  const TFRESULT result = LControl::SetFocus(forward);
  const bool closes = !mDestroyed && IsPopupShown();
  if (closes) ShowPopup(false);
  mClosedByFocus = closes;
  return result;
}

// The popup goes without the focus: hidden with it, it would hand it to this control, away from who takes it.
void LDropDownControl::LoseFocus() {
  const RCPtr<LControl> held(this);
  LControl::LoseFocus();
  if (!mDestroyed && IsPopupShown()) ShowPopup(false);
}

void LDropDownControl::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LControl::OnConditionChange(conditions);
  const bool isPressed = conditions->Rose(ControlCondition::kLeftDown);
  if (isPressed && !std::exchange(mEatPress, false)) ShowPopup(true);
}

}  // namespace TF
