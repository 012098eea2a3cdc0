#include "TFFramework/Controls/PopupMenu.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/Controls/FloatingPlace.h"
#include "TFFramework/Controls/MenuBar.h"

namespace TF {

namespace {

constexpr std::uint32_t kSubmenuDelay = 250;  // Milliseconds; a submenu opens after more than these.

}  // namespace

TFRESULT LPopupMenu::Initialize() {
  mFocusRoot = true;
  mRouteChildHits = true;
  mSelectOnHover = true;
  mShowCheckBoxes = true;
  MakeHandler();
  if (Failed(LCheckedListBox::Initialize())) return kFailure;
  // What its texts give is shown by itself.
  mContextMenu = nullptr;
  SizeToItems();
  SetSelectOnHover(true);
  ShowCheckBoxes(true);
  if (mHBar) mHBar->SetKeyMask(LScrollbar::kHomeKey | LScrollbar::kEndKey);
  return TakeMenuOfTexts();
}

TFRESULT LPopupMenu::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  const TFRESULT result = LCheckedListBox::ApplyDescriptor(descriptor);
  // A new one takes neither room nor focus before it is opened.
  if (!mCreated) mLayout->IsVisible = false;
  if (Failed(result) || !mCreated) return result;
  ClearSelection();
  RebuildItems();
  return result;
}

TFRESULT LPopupMenu::OnDescriptorApplied() {
  const TFRESULT result = LCheckedListBox::OnDescriptorApplied();
  SetClipToParent(false);
  SetVisible(false);
  SizeToItems();
  RebuildItems();
  return result;
}

void LPopupMenu::Destroy() {
  const RCPtr<LControl> held(this);
  LCheckedListBox::Destroy();
  mSubmenu = nullptr;
  mSubmenuItem = nullptr;
  mHoveredRow = nullptr;
}

RCPtr<LMenuItemDescriptor> LPopupMenu::GetItem(std::int32_t index) const {
  return mMenu ? mMenu->GetItem(index) : nullptr;
}

bool LPopupMenu::IsRow(const RCPtr<LControl>& control) const {
  for (RCPtr<LControl> each = control; each && each != this; each = RCPtr<LControl>(each->GetParent())) {
    if (RCPtr<LListBoxItem>(each)) return true;
  }
  return false;
}

bool LPopupMenu::LeadsOn(std::int32_t index) {
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  return item && item->GetItemCount() > 0;
}

bool LPopupMenu::IsItemSelectable(std::int32_t index) {
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  return item && item->mEnabled && !item->mSeparator;
}

TFRESULT LPopupMenu::SwapItems(std::int32_t, std::int32_t) {
  return kNotImplemented;
}

// Submenus.

void LPopupMenu::Arm() {
  mDelayTick = GetControlTicks();
  if (!std::exchange(mDelayActive, true)) AddIdleUser();
}

void LPopupMenu::Disarm() {
  if (std::exchange(mDelayActive, false) && !mDestroyed) RemoveIdleUser();
}

void LPopupMenu::OnSelectionChange() {
  const RCPtr<LControl> held(this);
  LCheckedListBox::OnSelectionChange();
  if (const RCPtr<LPopupMenu> parent = GetParentPopup()) parent->SelectOpenItem();
  const RCPtr<LMenuItemDescriptor> item = GetItem(mCaret);
  if (!item || mDestroyed) return;
  const bool isOpen = item == mSubmenuItem;
  if (LeadsOn(mCaret) ? !isOpen : mSubmenu != nullptr) {
    Arm();
  } else if (isOpen) {
    Disarm();
  }
}

// The way to the submenu stays visible while the mouse is in it.
void LPopupMenu::SelectOpenItem() {
  for (std::int32_t index = 0; mSubmenuItem && index < GetItemCount(); ++index) {
    if (GetItem(index) == mSubmenuItem) {
      SelectRange(index, -1, true);
      return;
    }
  }
}

void LPopupMenu::OnIdle() {
  const RCPtr<LControl> held(this);
  LCheckedListBox::OnIdle();
  if (mDestroyed || !mDelayActive || GetControlTicks() - mDelayTick <= kSubmenuDelay) return;
  CloseSubmenu();
  if (!mDestroyed && LeadsOn(mCaret)) OpenSubmenu(mCaret);
}

TFRESULT LPopupMenu::OpenSubmenu(std::int32_t index) {
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  if (!item || item->GetItemCount() == 0) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  CloseSubmenu();
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory || mDestroyed) return kFailure;
  const auto layout = MakeRC<LLayoutDescriptor>(*mDescriptor->mLayout);
  const RCPtr<LPopupMenu> submenu(
      factory->CreateSubControl(held, factory->CopyDescriptor(mDescriptor, layout, u"submenu")));
  if (!submenu) return kFailure;
  mSubmenu = submenu;
  mSubmenuItem = item;
  submenu->mReceiver = mReceiver;
  submenu->mSelfClosing = mSelfClosing;
  submenu->mItemUpdater = mItemUpdater;
  submenu->SetSubMenuOf(index);
  const std::int32_t row = GetRowOfItem(index);
  if (row >= 0) PlaceSubmenu(*submenu, *mRows[static_cast<std::size_t>(row)]);
  submenu->SetVisible(true);
  return kSuccess;
}

// Beside its row, on the side that has room.
void LPopupMenu::PlaceSubmenu(LPopupMenu& submenu, const LControl& row) {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (!window) return;
  submenu.LimitToWindow();
  const RectT<std::int32_t> room = window->GetClientRect();
  const PointT<double> corner = GetWindowPosition(), top = row.GetPositionInParent();
  const RectT<double>& size = submenu.GetBounds();
  const double right = std::trunc(top.mX + row.GetBounds().mWidth);
  double x = right, y = top.mY;
  if (room.mWidth < size.mWidth + x + corner.mX) x = -size.mWidth;
  if (corner.mX + x < 0) x = right;
  if (room.mHeight < size.mHeight + y + corner.mY) y = room.mHeight - size.mHeight - corner.mY;
  if (corner.mY + y < 0) y = 0;
  PlaceFromParent(submenu, LayoutAxis::kX, x);
  PlaceFromParent(submenu, LayoutAxis::kY, y);
}

// What is higher than the window scrolls.
void LPopupMenu::LimitToWindow() {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (!window || !mDescriptor->mLayout) return;
  const LayoutLimit& skin = mDescriptor->mLayout->Axis(LayoutAxis::kY).mMaximum;
  if (skin.mIsNamed || skin.mAbs != 0 || skin.mRel != 0) return;
  LayoutLimit minimum, maximum;
  GetAxisLimits(LayoutAxis::kY, minimum, maximum);
  maximum = LayoutLimit();
  maximum.mAbs = window->GetClientRect().mHeight;
  SetAxisLimits(LayoutAxis::kY, minimum, maximum);
}

void LPopupMenu::ShowAtPointer() {
  const RCPtr<LControl> held(this), parent = mParent;
  const RCPtr<LRootWindow> window = GetRootWindow();
  PointT<std::int32_t> mouse;
  if (!parent || !window || !window->GetMousePosition(mouse)) return;
  LimitToWindow();
  PlaceInWindow(*this, {double(mouse.mX), double(mouse.mY)});
  SetVisible(true);
  if (!mDestroyed && !mHasFocus) SetFocus(true);
}

void LPopupMenu::CloseSubmenu() {
  const RCPtr<LControl> held(this);
  Disarm();
  mSubmenuItem = nullptr;
  const RCPtr<LPopupMenu> submenu = std::exchange(mSubmenu, nullptr);
  if (!submenu) return;
  mSubmenuClosed = true;
  submenu->CloseSubmenu();
  submenu->SetVisible(false);
  if (!mDestroyed) DestroyChildLater(submenu);
}

void LPopupMenu::CloseAll() {
  const RCPtr<LControl> held(this);
  mClosing = true;
  if (const RCPtr<LPopupMenu> above = GetParentPopup()) return above->CloseAll();
  CloseSubmenu();
  const RCPtr<LControl> parent = mParent;
  if (parent && !mDestroyed) parent->DestroyChildLater(held);
}

// Choosing.

void LPopupMenu::OnItemActivated() {
  const RCPtr<LControl> held(this);
  LCheckedListBox::OnItemActivated();
  const RCPtr<LMenuItemDescriptor> item = GetItem(mCaret);
  if (!item) return;
  if (item->GetItemCount() == 0) return Choose(item);
  if (item == mSubmenuItem) return;
  if (!Failed(OpenSubmenu(mCaret)) && mSubmenu) mSubmenu->SelectFirst();
}

void LPopupMenu::SelectFirst() {
  for (std::int32_t index = 0; index < GetItemCount(); ++index) {
    if (!IsItemSelectable(index)) continue;
    SelectRange(index, -1, true);
    return;
  }
}

void LPopupMenu::Choose(const RCPtr<LMenuItemDescriptor>& item) {
  const RCPtr<LControl> held(this);
  const RCPtr<LNotificationReceiver> target = GetTarget();
  for (RCPtr<LControl> above = mParent; above; above = RCPtr<LControl>(above->GetParent())) {
    if (IMenuBar* const bar = dynamic_cast<IMenuBar*>(above.Get())) bar->GiveFocusBack();
  }
  if (ClosesItself()) SetVisible(false);
  if (target && item) {
    const RCPtr<LMenuDescriptor> menu = mMenu;
    std::int32_t index = menu ? menu->GetItemCount() - 1 : -1;
    while (index >= 0 && menu->GetItem(index) != item) --index;
    if (!mDestroyed) Send(LNotification::Create(u"NID_ITEM_ACTIVATED"));
    const auto chosen =
        LNotification::Create(item->mIdentifier.GetText(), MakeRC<LMenuActivationParam>(menu, index));
    if (chosen) target->OnNotification(RCPtr<LNotificationDistributor>(this), chosen);
  }
  if (!mDestroyed && ClosesItself()) CloseAll();
}

// Input.

TFRESULT LPopupMenu::SetFocus(bool forward) {
  const RCPtr<LControl> held(this);
  const bool hasIt = mHasFocus || mContainsFocus;
  if (hasIt && !mSubmenuClosed && !mInMouseDown && ClosesItself()) CloseAll();
  mSubmenuClosed = false;
  return LCheckedListBox::SetFocus(forward);
}

// What is beside the rows, such as a scroll bar, takes its presses itself.
TFRESULT LPopupMenu::MouseDown(const RCPtr<LMouseButtonParam>& param) {
  const RCPtr<LControl> held(this), child = mRoutedChild;
  const LayoutGuard pressing(mInMouseDown);
  const bool goesOn = param && !mHasCapture && param->mButton == LMouseButtonParam::kLeft && child &&
                      !IsRow(child) && child->GetRootWindow();
  if (!goesOn) return LCheckedListBox::MouseDown(param);
  return child->MouseDown(MakeRC<LMouseButtonParam>(mRoutedPoint.mX, mRoutedPoint.mY, param->mModifiers,
                                                    param->mTime, param->mButton, param->mIsDoubleClick,
                                                    param->mButtonsHeld));
}

bool LPopupMenu::RepeatsPressOn(const RCPtr<LControl>& child) {
  return !IsRow(child);
}

// The popup takes the mouse for its rows, and lets the one under it know.
void LPopupMenu::HoverRow(const RCPtr<LListBoxItem>& row) {
  if (row == mHoveredRow) return;
  const RCPtr<LControl> held(this);
  const RCPtr<LListBoxItem> before = std::exchange(mHoveredRow, row);
  if (before && before->GetParent()) before->MouseLeave();
  if (row && mHoveredRow == row && row->GetParent()) row->MouseEnter();
}

void LPopupMenu::OnMouseMove(const RCPtr<LPointWithModifiersParam>& param) {
  const RCPtr<LControl> held(this);
  LCheckedListBox::OnMouseMove(param);
  if (mDestroyed) return;
  const PointT<double> point{double(param->mX), double(param->mY)};
  HoverRow(FindRowAt(point));
  if (!mDestroyed && mHasCapture && mLeftDrag && !Contains({0, 0, mBounds.mWidth, mBounds.mHeight}, point))
    HandCaptureOn(point);
}

// One gesture goes through all popups of the chain.
void LPopupMenu::HandCaptureOn(const PointT<double>& point) {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (!window) return;
  const PointT<double> corner = GetWindowPosition();
  const PointT<std::int32_t> inWindow{RoundToInt32(point.mX + corner.mX), RoundToInt32(point.mY + corner.mY)};
  RCPtr<LControl> hit;
  PointT<std::int32_t> local;
  window->HitTest(hit, inWindow, local, false);
  for (; hit; hit = RCPtr<LControl>(hit->GetParent())) {
    if (IMenuFace* const face = dynamic_cast<IMenuFace*>(hit.Get())) return face->DragTo(inWindow);
    const RCPtr<LPopupMenu> popup(hit);
    if (!popup || popup == this) continue;
    const PointT<double> other = popup->GetWindowPosition();
    popup->CaptureMouse(LMouseButtonParam::kLeft, inWindow.mX - RoundToInt32(other.mX),
                        inWindow.mY - RoundToInt32(other.mY));
    return;
  }
}

TFRESULT LPopupMenu::OnKeyDown(const RCPtr<LKeyParam>& param) {
  const RCPtr<LControl> held(this);
  switch (param->mKey.code) {
    case PressedKey::kLeft:
      if (const RCPtr<LPopupMenu> above = GetParentPopup()) above->CloseSubmenu();
      return kSuccess;
    case PressedKey::kRight:
      if (LeadsOn(mCaret) && !Failed(OpenSubmenu(mCaret)) && mSubmenu) mSubmenu->SelectFirst();
      return kSuccess;
    case PressedKey::kEscape:
      if (ClosesItself()) CloseAll();
      return kSuccess;
    default:
      return LCheckedListBox::OnKeyDown(param);
  }
}

void LPopupMenu::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LCheckedListBox::OnConditionChange(conditions);
  if (mDestroyed) return;
  const std::uint32_t changed = conditions->mCurrent ^ conditions->mPrevious;
  constexpr std::uint32_t kFocusBits = ControlCondition::kHasFocus | ControlCondition::kContainsFocus;
  if (conditions->Fell(ControlCondition::kHover)) HoverRow(nullptr);
  const bool isTop = !GetParentPopup();
  if ((changed & kFocusBits) && isTop && !mHasFocus && !mContainsFocus && IsShown(false) && ClosesItself())
    CloseAll();
  if (conditions->Rose(ControlCondition::kShown)) RefreshItemStates();
  if (conditions->Fell(ControlCondition::kShown) && isTop) CloseSubmenu();
}

TFRESULT LPopupMenu::HandleRowTip(const RCPtr<LNotificationDistributor>& sender,
                                  const RCPtr<LNotification>& notification) {
  const RCPtr<LListBoxItem> row(sender);
  const RCPtr<LConditionsParam> conditions(notification->GetData());
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LMenuItemDescriptor> item = GetItem(IndexOfRow(row.Get()));
  const std::uint32_t changed = conditions ? conditions->mCurrent ^ conditions->mPrevious : 0;
  if (!application || (changed & ControlCondition::kHoverBelow) == 0) return kNothingDone;
  if ((conditions->mCurrent & ControlCondition::kHoverBelow) == 0) {
    // What somebody else has said stays.
    if (std::exchange(mShowsStatus, false)) application->RestoreStatusText(false);
  } else if (item && !item->mToolTip.IsEmpty()) {
    mShowsStatus = !Failed(application->SetStatusText(item->mToolTip, false));
  }
  return kNothingDone;
}

}  // namespace TF
