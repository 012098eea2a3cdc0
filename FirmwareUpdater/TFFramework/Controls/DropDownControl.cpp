#include "TFFramework/Controls/DropDownControl.h"

#include <utility>

namespace TF {

TFRESULT LDropDownControl::Initialize() {
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  if (!mHandler) mHandler = MakeRC<LNotificationHandler<LDropDownControl>>(this);
  return mHandler->AddHandler(&LDropDownControl::HandleMouseDown, RCPtr<LNotificationDistributor>(this),
                              u"NID_MOUSE_DOWN");
}

void LDropDownControl::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                                      const RCPtr<LNotification>& notification) {
  const RCPtr<LControl> held(this);
  LControl::OnNotification(sender, notification);
  const RCPtr<LNotificationHandler<LDropDownControl>> handler = mHandler;
  if (handler && !mDestroyed) handler->Dispatch(sender, notification);
}

TFRESULT LDropDownControl::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender,
                                                NotificationId id) {
  if (mHandler) mHandler->RemoveHandler(sender, id);
  return LControl::OnDistributorClosing(sender, id);
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

void LDropDownControl::LoseFocus() {
  const RCPtr<LControl> held(this);
  if (IsPopupShown()) ShowPopup(false);
  LControl::LoseFocus();
}

void LDropDownControl::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LControl::OnConditionChange(conditions);
  const bool isPressed = (conditions->mCurrent & ~conditions->mPrevious & ControlCondition::kLeftDown) != 0;
  if (isPressed && !std::exchange(mEatPress, false)) ShowPopup(true);
}

}  // namespace TF
