#include <algorithm>
#include <cmath>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/GlobalHotKeyManager.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/MenuBuilder.h"
#include "TFFramework/Controls/PopupMenu.h"

namespace TF {

namespace {

constexpr std::int32_t kTextToKeyGap = 20;  // Pixels.
constexpr std::int32_t kNotMeasured = -1;

}  // namespace

// The menu that the texts of this control give.
TFRESULT LPopupMenu::TakeMenuOfTexts() {
  const RCPtr<LMenuDescriptor> menu = mStringSection ? ReadContextMenu(*mStringSection) : nullptr;
  return menu ? SetMenu(menu) : kNothingDone;
}

TFRESULT LPopupMenu::SetMenu(const RCPtr<LMenuDescriptor>& menu) {
  if (!menu) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  CloseSubmenu();
  mMenu = menu;
  FillHotKeyTexts(menu);
  ClearSelection();
  RebuildItems();
  return kSuccess;
}

TFRESULT LPopupMenu::SetSubMenuOf(std::int32_t index) {
  const RCPtr<LPopupMenu> above = GetParentPopup();
  const RCPtr<LMenuItemDescriptor> item = above ? above->GetItem(index) : nullptr;
  if (!item || item->GetItemCount() == 0) return kInvalidArgument;
  return SetMenu(item);
}

TFRESULT LPopupMenu::SetReceiver(const RCPtr<LNotificationReceiver>& receiver) {
  if (!receiver) return kInvalidArgument;
  if (mReceiver) return kFailure;
  mReceiver = receiver;
  if (!mMenu) return kSuccess;
  FillHotKeyTexts(mMenu);
  RebuildItems();
  return kSuccess;
}

// Where the skin leaves a limit open, the popup is at least as large as it stands there.
void LPopupMenu::SizeToItems() {
  if (!mDescriptor || !mDescriptor->mLayout) return;
  const AxisLayout& x = mDescriptor->mLayout->Axis(LayoutAxis::kX);
  const AxisLayout& y = mDescriptor->mLayout->Axis(LayoutAxis::kY);
  if (x.mMinimum.mAbs == 0 || x.mMaximum.mAbs == 0) {
    LayoutLimit minimum = x.mMinimum;
    if (minimum.mAbs == 0) minimum.mAbs = std::trunc(mBounds.mWidth);
    SetAxisLimits(LayoutAxis::kX, minimum, x.mMaximum);
  }
  if (y.mMinimum.mAbs == 0 || y.mMaximum.mAbs == 0) {
    LayoutLimit minimum = y.mMinimum;
    if (minimum.mAbs == 0) {
      minimum.mAbs = mRowHeight;
      minimum.mRel = 0;
    }
    SetAxisLimits(LayoutAxis::kY, minimum, y.mMaximum);
  }
  mItemPadding = kNotMeasured;
}

// What stands around text and key text in a row, and how high a separator is.
void LPopupMenu::MeasureParts(LMenuListBoxItem& row) {
  const double width = row.GetBounds().mWidth;
  if (mItemPadding < 0) {
    double before = 0, behind = 0;
    if (const RCPtr<LControl>& box = row.GetCheckBox())
      before = box->GetPositionInParent().mX + box->GetBounds().mWidth;
    if (const RCPtr<LControl>& label = row.GetHotKeyLabel())
      behind = width - (label->GetBounds().mWidth + label->GetPositionInParent().mX);
    mItemPadding = TruncateToInt32(before) + kTextToKeyGap + TruncateToInt32(behind);
  }
  row.SetSeparator(true);
  row.Relayout();
  mSeparatorHeight = TruncateToInt32(row.GetBounds().mHeight);
  row.SetSeparator(false);
}

void LPopupMenu::TakeItem(std::int32_t index, const LMenuItemDescriptor& item) {
  ListRecord& record = *GetItemRecord(index);
  record.mLabel = MakeRC<LListText>(item.mText);
  record.mHighlighted = item.GetItemCount() > 0;
  record.mSeparator = item.mSeparator;
  SetItemChecked(index, item.mChecked);
  mSeparatorCount += item.mSeparator ? 1 : 0;
  mContentWidth = std::max(mContentWidth, GetPopupItemWidth(index));
}

TFRESULT LPopupMenu::RebuildItems() {
  if (!mMenu || mDestroyed) return kNothingDone;
  const RCPtr<LControl> held(this);
  {
    const LayoutGuard bulk(mBulkChange);
    SetItemCount(mMenu->GetItemCount());
    mSeparatorCount = 0;
    mContentWidth = 0;
  }
  GrowRows();
  if (mRows.empty()) return kNothingDone;
  {
    const LayoutGuard bulk(mBulkChange);
    if (const RCPtr<LMenuListBoxItem> last(mRows.back()); last) MeasureParts(*last);
    for (std::int32_t index = 0; index < GetItemCount(); ++index) {
      const RCPtr<LMenuItemDescriptor> item = GetItem(index);
      if (item) TakeItem(index, *item);
    }
  }
  SetContentWidth(std::trunc(mBarThickness.mWidth) + mContentWidth);
  FitHeight();
  UpdateWidth();
  RefreshRows();
  return kSuccess;
}

std::int32_t LPopupMenu::GetPopupItemWidth(std::int32_t index) {
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  if (!item || mRows.empty()) return 0;
  double width = MeasureText(mRows.front()->GetFont(), item->mText);
  const RCPtr<LMenuListBoxItem> row(mRows.front());
  if (row && row->GetHotKeyLabel() && !item->mHotKeyText.IsEmpty())
    width += MeasureText(row->GetHotKeyLabel()->GetFont(), item->mHotKeyText);
  return mItemPadding + RoundToInt32(std::round(width));
}

std::int32_t LPopupMenu::GetContentHeight() {
  return (GetItemCount() - mSeparatorCount) * mRowHeight + mSeparatorCount * mSeparatorHeight;
}

TFRESULT LPopupMenu::UpdateRow(std::int32_t index, std::int32_t& row) {
  const RCPtr<LControl> held(this);
  const TFRESULT result = LCheckedListBox::UpdateRow(index, row);
  if (row < 0 || row >= GetRowCount()) return result;
  const RCPtr<LListBoxItem> control = mRows[static_cast<std::size_t>(row)];
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  if (const RCPtr<LMenuListBoxItem> menuRow(control); menuRow)
    menuRow->SetHotKeyText(item ? item->mHotKeyText : String());
  control->SetEnabled(item && item->mEnabled);
  return result;
}

RCPtr<LListBoxItem> LPopupMenu::AddRow() {
  const RCPtr<LListBoxItem> row = LCheckedListBox::AddRow();
  if (row) {
    mHandler->AddHandler(&LPopupMenu::HandleRowTip, RCPtr<LNotificationDistributor>(row),
                         u"NID_HOVER_CONDITION_CHANGE");
  }
  return row;
}

RCPtr<LNotificationReceiver> LPopupMenu::GetTarget() const {
  if (mReceiver) return mReceiver;
  RCPtr<LControl> above = mParent;
  while (above && RCPtr<LPopupMenu>(above)) above = RCPtr<LControl>(above->GetParent());
  return RCPtr<LNotificationReceiver>(above);
}

TFRESULT LPopupMenu::FillHotKeyTexts(const RCPtr<LMenuDescriptor>& menu) {
  if (!menu || !GetTarget() || (mReceiver && !GetRootWindow())) return kFailure;
  for (std::int32_t index = 0; index < menu->GetItemCount(); ++index) {
    const RCPtr<LMenuItemDescriptor> item = menu->GetItem(index);
    if (item->GetItemCount() > 0) {
      FillHotKeyTexts(item);
    } else if (item->mHotKeyText.IsEmpty()) {
      item->mHotKeyText = FindHotKeyText(item->mIdentifier);
    }
  }
  return kSuccess;
}

String LPopupMenu::FindHotKeyText(const String& identifier) const {
  KeyCode key;
  const RCPtr<LControl> control(GetTarget());
  if (!mReceiver && control && FindKeyOf(control->GetHotKeys(), identifier, key)) return KeyCodeToName(key);
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  const RCPtr<LGlobalHotKeyManager> global =
      application ? application->GetHotKeys() : RCPtr<LGlobalHotKeyManager>();
  return global && global->FindKey(identifier, key) ? KeyCodeToName(key) : String();
}

// Whoever answers for the items may say how each one stands now.
void LPopupMenu::RefreshItemStates() {
  const RCPtr<LControl> held(this);
  const RCPtr<LMenuDescriptor> menu = mMenu;
  ClearSelection();
  for (std::int32_t index = GetItemCount() - 1; index >= 0 && mItemUpdater && !mDestroyed; --index) {
    const RCPtr<LMenuItemDescriptor> item = GetItem(index);
    if (menu != mMenu || !item || item->mSeparator || item->GetItemCount() > 0) continue;
    LMenuItemState state;
    menu->GetItemState(index, state);
    if (mItemUpdater->Update(menu, index, item->mIdentifier, state) != kSuccess || !IsItem(index)) continue;
    item->mEnabled = state.mEnabled;
    item->mChecked = state.mChecked;
    item->mText = state.mText;
    SetItemText(index, state.mText);
    SetItemChecked(index, state.mChecked);
  }
}

}  // namespace TF
