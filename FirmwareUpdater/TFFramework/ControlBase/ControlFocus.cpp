#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

std::int32_t Negated(std::int32_t tabStop) {
  using Limits = std::numeric_limits<std::int32_t>;
  return tabStop == Limits::min() ? Limits::max() : -tabStop;
}

std::int32_t WithSign(std::int32_t tabStop, bool negative) {
  if ((tabStop < 0) == negative) return tabStop;
  return tabStop == 0 ? -1 : Negated(tabStop);
}

}  // namespace

bool LControl::IsFocusRefused() const {
  if (!mParent || mFocusRoot) return false;
  for (const LControl* above = mParent.Get(); above; above = above->mParent.Get()) {
    if (above->mNotFocusable) return true;
    if (above->mFocusRoot) return false;
  }
  return false;
}

bool LControl::HoldsFocusable() const {
  if (mNotFocusable) return false;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const LControl& child = *GetChild(index, ChildOrder::kTab);
    const bool isUsable = child.IsShown(false) && child.IsEnabled(false) && !child.mIsDoomed;
    if (!isUsable || child.mNotFocusable) continue;
    if (child.HoldsFocusable() || !child.IsFocusRefused()) return true;
  }
  return false;
}

bool LControl::HasFocusableChild() {
  return IsUsable() && HoldsFocusable();
}

bool LControl::CanTakeFocus() {
  return IsUsable() && !mIsDoomed && !mNotFocusable && !HasFocusableChild() && !IsFocusRefused();
}

bool LControl::CanReceiveFocus() {
  return HasFocusableChild() || CanTakeFocus();
}

bool LControl::CanLoseFocus() {
  return true;
}

RCPtr<LControl> LControl::FindFocusHolder(const LControl* except) const {
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl>& child = GetChild(index);
    if ((child->mHasFocus || child->mContainsFocus) && child != except) return child;
  }
  return nullptr;
}

RCPtr<LControl> LControl::FindFocusableChild(bool forward) {
  const std::int32_t count = GetChildCount();
  for (std::int32_t step = 0; step < count; ++step) {
    const std::int32_t index = forward ? step : count - 1 - step;
    const RCPtr<LControl> child = GetChild(index, ChildOrder::kTab);
    if (child->CanReceiveFocus()) return child;
  }
  return nullptr;
}

// What can no longer be used has nothing to say.
bool LControl::AllowsFocusChange() const {
  const RCPtr<LRootWindow> window = GetRootWindow();
  const RCPtr<LControl> holder = window ? window->GetFocusControl() : RCPtr<LControl>();
  return !holder || holder == this || !holder->IsUsable() || holder->CanLoseFocus();
}

TFRESULT LControl::SetFocus(bool forward) {
  const RCPtr<LControl> held(this);
  if (!mHasFocus && !AllowsFocusChange()) return kFailure;
  if (HasFocusableChild()) {
    RCPtr<LControl> child = mContainsFocus ? FindFocusHolder() : RCPtr<LControl>();
    if (!child || !child->CanReceiveFocus()) child = FindFocusableChild(forward);
    if (child) return child->SetFocus(forward);
  }
  if (CanTakeFocus()) return mHasFocus ? kSuccess : TakeFocus();
  const RCPtr<LControl> parent = mParent;
  return parent && !mHasFocus ? parent->SetFocus(forward) : kFailure;
}

// All marks stand before anybody is told, so that a receiver that moves the focus on finds it here.
TFRESULT LControl::TakeFocus() {
  const RCPtr<LControl> before = MarkFocusPath();
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) {
    window->ClearFocusControl();
    window->SetFocusControl(RCPtr<LControl>(this));
  }
  if (before) before->LoseFocus();
  UpdateConditions();
  for (RCPtr<LControl> above = mParent; above; above = RCPtr<LControl>(above->mParent)) {
    above->UpdateConditions();
  }
  return kSuccess;
}

RCPtr<LControl> LControl::MarkFocusPath() {
  mHasFocus = true;
  if (mContainsFocus) {
    mContainsFocus = false;
    return FindFocusHolder();
  }
  const LControl* below = this;
  for (LControl* above = mParent.Get(); above; below = above, above = above->mParent.Get()) {
    if (above->mContainsFocus) return above->FindFocusHolder(below);
    above->mContainsFocus = true;
    if (std::exchange(above->mHasFocus, false)) break;
  }
  return nullptr;
}

void LControl::LoseFocus() {
  const RCPtr<LControl> held(this);
  if (mHasFocus) {
    mHasFocus = false;
    UpdateConditions();
    const RCPtr<LRootWindow> window = GetRootWindow();
    if (window && window->GetFocusControl() == this) window->ClearFocusControl();
  } else if (mContainsFocus) {
    mContainsFocus = false;
    if (const RCPtr<LControl> child = FindFocusHolder()) child->LoseFocus();
    UpdateConditions();
  }
}

void LControl::GiveUpInput() {
  if (mHover || mChildHover) {
    mHover = false;
    mChildHover = false;
    MarkChildHover(false);
  }
  if (!mHasFocus && !mContainsFocus) return;
  LoseFocus();
  for (RCPtr<LControl> above = mParent; above; above = RCPtr<LControl>(above->mParent)) {
    above->mContainsFocus = false;
    above->UpdateConditions();
  }
}

void LControl::GiveUpInputOfTree() {
  std::vector<RCPtr<LControl>> tree(1, RCPtr<LControl>(this));
  for (std::size_t next = 0; next < tree.size(); ++next) {
    const RCPtr<LControl> control = tree[next];
    for (std::int32_t index = 0; index < control->GetChildCount(); ++index)
      tree.push_back(control->GetChild(index));
  }
  for (const RCPtr<LControl>& control : tree) control->ReleaseMouse();
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (const RCPtr<LControl> hovered = window ? window->GetHoverControl() : RCPtr<LControl>()) {
    if (std::find(tree.begin(), tree.end(), hovered) != tree.end()) hovered->MouseLeave();
  }
  GiveUpInput();
  for (const RCPtr<LControl>& control : tree) control->LeaveWindow();
}

void LControl::SetNotFocusable(bool notFocusable) {
  std::int32_t& tabStop = mLayout->TabStop;
  if (mNotFocusable == notFocusable && (tabStop < 0) == notFocusable) return;
  const RCPtr<LControl> held(this), parent = mParent;
  const bool falls = notFocusable && !mNotFocusable;
  mNotFocusable = notFocusable;
  tabStop = WithSign(tabStop, notFocusable);
  if (!parent) return;
  parent->mChildren.Touch();
  if (parent->mHasFocus && CanReceiveFocus()) {
    SetFocus(true);
  } else if (falls && (mHasFocus || mContainsFocus)) {
    parent->SetFocus(true);
  }
}

RCPtr<LControl> LControl::GetNextInTabOrder(const RCPtr<LControl>& child, bool backward) {
  const std::int32_t count = GetChildCount();
  const std::int32_t start = child ? mChildren.GetIndex(*child, ChildOrder::kTab) : -1;
  if (start < 0 || !IsUsable()) return nullptr;
  for (std::int32_t step = 1; step <= count; ++step) {
    const std::int32_t index = (start + (backward ? count - step : step)) % count;
    const RCPtr<LControl>& next = GetChild(index, ChildOrder::kTab);
    if (!next->mIsDoomed && next->IsShown(false) && next->IsEnabled(false)) return next;
  }
  return nullptr;
}

}  // namespace TF
