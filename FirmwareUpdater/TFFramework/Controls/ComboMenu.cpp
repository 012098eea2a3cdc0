#include "TFFramework/Controls/ComboMenu.h"

#include <algorithm>

namespace TF {

namespace {

constexpr std::int32_t kNormalCombo = 0;
constexpr std::int32_t kHoverCombo = 1;
constexpr std::int32_t kOpen = 2;
constexpr std::int32_t kDisabledCombo = 3;

}  // namespace

TFRESULT LComboMenu::Initialize() {
  if (Failed(LDropDownControl::Initialize())) return kFailure;
  MakeHandler();
  mPopup = FindChild(u"popupMenu");
  if (!mPopup) return kFailure;
  const RCPtr<LNotificationDistributor> popup(mPopup);
  mHandler->AddHandler(&LComboMenu::HandlePopupShown, popup, u"NID_VISIBLITY_CONDITION_CHANGE");
  mHandler->AddHandler(&LComboMenu::HandleItemActivated, popup, u"NID_ITEM_ACTIVATED");
  mPopup->SetSelfClosing(false);
  return kSuccess;
}

TFRESULT LComboMenu::OnDescriptorApplied() {
  if (mPopup) mPopupPosition = mPopup->GetLayout()->Axis(LayoutAxis::kX).mPosition.mAbs;
  return LDropDownControl::OnDescriptorApplied();
}

void LComboMenu::Destroy() {
  const RCPtr<LControl> held(this);
  LDropDownControl::Destroy();
  mPopup = nullptr;
}

bool LComboMenu::IsPopupShown() {
  return mPopup && mPopup->IsShown(false);
}

void LComboMenu::UpdateLook() {
  std::int32_t look = mHover ? kHoverCombo : kNormalCombo;
  if (IsPopupShown()) look = kOpen;
  if (!IsEnabled(true)) look = kDisabledCombo;
  SetActiveLook(look, true);
}

void LComboMenu::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  UpdateLook();
  if (conditions->Rose(ControlCondition::kHover)) TakeOver();
  if (mDestroyed) return;
  if (conditions->Rose(ControlCondition::kLeftDown) && mLastLeftDown && mPopup) {
    PlacePopup();
    const PointT<double> corner = mPopup->GetPositionInParent();
    mPressPoint = {mLastLeftDown->mX - corner.mX, mLastLeftDown->mY - corner.mY};
  }
  LDropDownControl::OnConditionChange(conditions);
}

// The mouse walks through an open menu bar.
void LComboMenu::TakeOver() {
  const RCPtr<LControl> parent = mParent;
  for (std::int32_t index = 0; parent && index < parent->GetChildCount(); ++index) {
    const RCPtr<LComboMenu> sibling(parent->GetChild(index));
    if (!sibling || sibling == this || !sibling->IsPopupShown()) continue;
    sibling->ShowPopup(false);
    if (!mDestroyed) ShowPopup(true);
    return;
  }
}

void LComboMenu::DragTo(const PointT<std::int32_t>& point) {
  if (IsPopupShown()) return;
  const RCPtr<LControl> held(this);
  TakeOver();
  if (mDestroyed || !IsPopupShown()) return;
  const PointT<double> corner = mPopup->GetWindowPosition();
  mPopup->CaptureMouse(LMouseButtonParam::kLeft, point.mX - RoundToInt32(corner.mX),
                       point.mY - RoundToInt32(corner.mY));
}

void LComboMenu::PlacePopup() {
  RCPtr<LControl> root(this);
  while (root->GetParent()) root = RCPtr<LControl>(root->GetParent());
  const double client = GetClientRect().mX + GetWindowPosition().mX;
  const double width = mPopup->GetBounds().mWidth, room = root->GetBounds().mWidth;
  double x = mPopupPosition + client;
  if (x + width > room) x = std::max(room - width, 0.0);
  x -= client;
  LayoutPosition position = mPopup->GetAxisPosition(LayoutAxis::kX);
  if (position.mAbs == x) return;
  position.mAbs = x;
  mPopup->SetAxisPosition(LayoutAxis::kX, position);
}

void LComboMenu::ShowPopup(bool show) {
  if (!mPopup) return;
  const RCPtr<LControl> held(this);
  const RCPtr<LPopupMenu> popup = mPopup;
  if (show) {
    popup->LimitToWindow();
    PlacePopup();
  }
  popup->SetVisible(show);
  if (show && !mDestroyed) popup->SetFocus(true);
  if (mDestroyed) return;
  UpdateLook();
  if (show && mLeftDown)
    popup->CaptureMouse(LMouseButtonParam::kLeft, RoundToInt32(mPressPoint.mX), RoundToInt32(mPressPoint.mY));
}

TFRESULT LComboMenu::HandlePopupShown(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  UpdateLook();
  return kNothingDone;
}

TFRESULT LComboMenu::HandleItemActivated(const RCPtr<LNotificationDistributor>&,
                                         const RCPtr<LNotification>&) {
  ShowPopup(false);
  return kNothingDone;
}

}  // namespace TF
