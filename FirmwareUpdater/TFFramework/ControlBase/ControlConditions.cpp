#include "TFFramework/ControlBase/Control.h"

#include <utility>

namespace TF {

namespace {

using Bits = ControlCondition;

struct ConditionNotification {
  std::uint32_t mBits;  // Any of them has changed.
  const char16_t* mName;
};

// In the order in which they are sent.
constexpr ConditionNotification kNotifications[] = {
    {Bits::kHasFocus, u"NID_HAS_FOCUS_CONDITION_CHANGE"},
    {Bits::kContainsFocus, u"NID_CONTAINS_FOCUS_CONDITION_CHANGE"},
    {Bits::kHoverBelow, u"NID_HOVER_CONDITION_CHANGE"},
    {Bits::kHasCapture, u"NID_CAPTURE_CONDITION_CHANGE"},
    {Bits::kLeftDown | Bits::kLeftDrag, u"NID_LEFT_DRAG_CONDITION_CHANGE"},
    {Bits::kMiddleDown | Bits::kMiddleDrag, u"NID_MIDDLE_DRAG_CONDITION_CHANGE"},
    {Bits::kRightDown | Bits::kRightDrag, u"NID_RIGHT_DRAG_CONDITION_CHANGE"},
    {Bits::kEnabled, u"NID_ENABLED_CONDITION_CHANGE"},
    {Bits::kShown, u"NID_VISIBLITY_CONDITION_CHANGE"},
};

// The mouse lies over something else now than the window knows.
bool MovesUnderMouse(std::uint32_t previous, std::uint32_t current) {
  const bool isHidden =
      (current & (Bits::kHover | Bits::kHasCapture)) == Bits::kHover && Fell(previous, current, Bits::kShown);
  return isHidden || (Fell(previous, current, Bits::kHasCapture) && (current & Bits::kHover) == 0);
}

}  // namespace

bool LControl::IsShown(bool recursive) const {
  for (const LControl* control = this; control; control = recursive ? control->mParent.Get() : nullptr) {
    const bool hasArea = control->mBounds.mWidth > 0 && control->mBounds.mHeight > 0;
    if (!control->mLayout->IsVisible || !hasArea) return false;
  }
  return true;
}

bool LControl::IsEnabled(bool recursive) const {
  for (const LControl* control = this; control; control = recursive ? control->mParent.Get() : nullptr) {
    if (!control->mLayout->IsEnabled) return false;
  }
  return true;
}

std::uint32_t LControl::ComputeConditions() const {
  const std::pair<bool, std::uint32_t> inputs[] = {{mHasFocus, Bits::kHasFocus},
                                                   {mContainsFocus, Bits::kContainsFocus},
                                                   {mHover, Bits::kHover},
                                                   {mHasCapture, Bits::kHasCapture},
                                                   {mLeftDown, Bits::kLeftDown},
                                                   {mMiddleDown, Bits::kMiddleDown},
                                                   {mRightDown, Bits::kRightDown},
                                                   {mLeftDrag, Bits::kLeftDrag},
                                                   {mMiddleDrag, Bits::kMiddleDrag},
                                                   {mRightDrag, Bits::kRightDrag},
                                                   {IsEnabled(true), Bits::kEnabled},
                                                   {IsShown(true), Bits::kShown},
                                                   {mHover || mChildHover, Bits::kHoverBelow}};
  std::uint32_t bits = 0;
  for (const auto& [isSet, bit] : inputs) bits |= isSet ? bit : 0;
  return bits;
}

void LControl::UpdateConditions() {
  const std::uint32_t current = ComputeConditions();
  const std::uint32_t previous = mConditions->mCurrent;
  if (current == previous) return;
  const RCPtr<LControl> held(this);
  const bool wasDestroyed = mDestroyed;
  mConditions->mPrevious = previous;
  mConditions->mCurrent = current;
  mConditions->mWidth = mBounds.mWidth;
  mConditions->mHeight = mBounds.mHeight;
  ShowCursorFor(previous, current);
  if (Fell(previous, current, Bits::kLeftDrag) && std::exchange(mDragHasBegun, false)) OnDragEnd();
  const auto isGone = [this, wasDestroyed] { return mDestroyed && !wasDestroyed; };
  if (!isGone()) OnConditionChange(mConditions);
  if (!isGone()) SendConditionNotifications(previous ^ current);
  if (isGone()) return;
  // Whoever was told may have ended the drag.
  if (Rose(previous, current, Bits::kLeftDrag) && IsDragging()) {
    mDragHasBegun = true;
    OnDragBegin();
  }
  if (MovesUnderMouse(previous, current)) RepeatHitTest();
  if ((previous ^ current) & (Bits::kEnabled | Bits::kShown)) UpdateConditionsBelow();
}

void LControl::UpdateConditionsBelow() {
  for (std::int32_t index = GetChildCount() - 1; index >= 0; --index) {
    if (index >= GetChildCount()) continue;
    const RCPtr<LControl> child = GetChild(index);
    child->UpdateConditions();
  }
}

void LControl::SendConditionNotifications(std::uint32_t changed) {
  const bool wasDestroyed = mDestroyed;
  Send(LNotification::Create(u"NID_CONDITION_CHANGE", mConditions));
  for (const auto& [bits, name] : kNotifications) {
    // A receiver may have taken this control out of use.
    if (mDestroyed && !wasDestroyed) return;
    if (changed & bits) Send(LNotification::Create(name, mConditions));
  }
}

void LControl::ShowCursorFor(std::uint32_t previous, std::uint32_t current) {
  if (mCursor == 0) return;
  const bool hasCapture = (current & Bits::kHasCapture) != 0;
  const bool hasHover = (current & Bits::kHover) != 0;
  if (Rose(previous, current, Bits::kHover) && !hasCapture) {
    mSavedCursor = ShowCursor(mCursor);
  } else if ((Fell(previous, current, Bits::kHover) && !hasCapture) ||
             (Fell(previous, current, Bits::kHasCapture) && !hasHover)) {
    ShowCursor(mSavedCursor);
  }
}

void LControl::SetCursor(CursorHandle cursor) {
  if (cursor == mCursor) return;
  const bool isShown = mHover && !mHasCapture;
  if (isShown && mCursor == 0) {
    mSavedCursor = ShowCursor(cursor);
  } else if (isShown) {
    ShowCursor(cursor != 0 ? cursor : mSavedCursor);
  }
  mCursor = cursor;
}

void LControl::OnConditionChange(const RCPtr<LConditionsParam>&) {}

void LControl::SetVisible(bool visible) {
  if (mLayout->IsVisible == visible) return;
  const RCPtr<LControl> held(this);
  if (!visible) {
    InvalidateFrame();
    InvalidateUnclipped();
  }
  mLayout->IsVisible = visible;
  if (visible) {
    InvalidateFrame();
    InvalidateUnclipped();
  }
  HandFocusOver(visible);
  UpdateConditions();
}

void LControl::SetEnabled(bool enabled) {
  if (mLayout->IsEnabled == enabled) return;
  const RCPtr<LControl> held(this);
  mLayout->IsEnabled = enabled;
  HandFocusOver(enabled);
  InvalidateFrame();
  InvalidateUnclipped();
  UpdateConditions();
}

void LControl::HandFocusOver(bool isUsable) {
  if (!mParent) return;
  const RCPtr<LControl> parent = mParent;
  if (!isUsable && (mHasFocus || mContainsFocus)) {
    parent->SetFocus(true);
  } else if (isUsable && parent->mHasFocus && (CanTakeFocus() || HasFocusableChild())) {
    SetFocus(true);
  }
}

}  // namespace TF
