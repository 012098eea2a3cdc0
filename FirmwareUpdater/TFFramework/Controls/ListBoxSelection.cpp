#include <algorithm>
#include <utility>

#include "TFFramework/Controls/DropDownControl.h"
#include "TFFramework/Controls/ListBox.h"

namespace TF {

namespace {

// Looks of a list.
constexpr std::int32_t kNormalList = 0;
constexpr std::int32_t kDisabledList = 1;
constexpr std::int32_t kFocusedList = 2;

}  // namespace

bool LListBox::IsItemSelected(std::int32_t index) const {
  return IsItem(index) && mRecords[static_cast<std::size_t>(index)].IsSelected();
}

bool LListBox::IsItemSelectable(std::int32_t) {
  return true;
}

TFRESULT LListBox::SetItemValue(std::int32_t index, double value) {
  if (!IsItem(index)) return kInvalidArgument;
  ListRecord& record = *GetItemRecord(index);
  const bool was = record.IsSelected();
  record.mValue = std::clamp(value, 0.0, 1.0);
  mSelectedCount += int{record.IsSelected()} - int{was};
  std::int32_t row = -1;
  UpdateRow(index, row);
  return kSuccess;
}

void LListBox::TellSelectionChange() {
  const RCPtr<LControl> held(this);
  OnSelectionChange();
  if (!mSelectOnHover && !mDestroyed) Send(LNotification::Create(u"NID_SELECTION_CHANGE"));
}

// True when the range became the whole selection. What was selected before mostly lies in one range, too,
// which spares a walk over all records.
bool LListBox::SelectAlone(std::int32_t first, std::int32_t last) {
  const auto [low, high] = std::minmax(first, last);
  std::int32_t from = std::min(mAnchor, mCaret), to = std::max(mAnchor, mCaret);
  std::int32_t known = 0;
  for (std::int32_t index = std::max(from, 0); index <= to && IsItem(index); ++index)
    known += IsItemSelected(index) ? 1 : 0;
  if (known != mSelectedCount) {
    from = 0;
    to = GetItemCount() - 1;
  }
  bool changed = false;
  for (std::int32_t index = std::min(to, GetItemCount() - 1); index >= std::max(from, 0); --index) {
    if ((index >= low && index <= high) || !IsItemSelected(index)) continue;
    SetItemValue(index, 0);
    changed = true;
  }
  for (std::int32_t index = std::min(high, GetItemCount() - 1); index >= low; --index) {
    if (IsItemSelected(index)) continue;
    SetItemValue(index, 1);
    changed = true;
  }
  return changed;
}

TFRESULT LListBox::SelectRange(std::int32_t first, std::int32_t last, bool exclusive) {
  if (!IsItem(first)) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  last = last < 0 ? first : std::min(last, GetItemCount() - 1);
  if (first == last && IsItemSelected(first) && (!exclusive || mSelectedCount == 1)) {
    EnsureVisible(first);
    return first;
  }
  bool changed = false;
  if (exclusive) {
    changed = SelectAlone(first, last);
  } else {
    const std::int32_t step = last < first ? -1 : 1;
    for (std::int32_t index = first; IsItem(index) && index != last + step; index += step) {
      if (IsItemSelected(index)) continue;
      SetItemValue(index, 1);
      changed = true;
    }
  }
  mAnchor = first;
  mCaret = last;
  EnsureVisible(mCaret);
  if (changed && !mDestroyed) TellSelectionChange();
  return kSuccess;
}

// The ends move to what is left of the selection.
void LListBox::MoveEndsFrom(std::int32_t index) {
  if (mSelectedCount == 0) {
    mAnchor = mCaret = -1;
    return;
  }
  const auto neighbour = [this, index] {
    if (IsItemSelected(index + 1)) return index + 1;
    return IsItemSelected(index - 1) ? index - 1 : -1;
  };
  if (mCaret == index) {
    const bool wasBoth = mAnchor == index;
    if (const std::int32_t near = neighbour(); near >= 0) {
      mCaret = near;
      if (wasBoth) mAnchor = near;
    } else if (!wasBoth && mAnchor >= 0) {
      mCaret = mAnchor;
    } else {
      std::int32_t lastSelected = GetItemCount() - 1;
      while (lastSelected >= 0 && !IsItemSelected(lastSelected)) --lastSelected;
      mAnchor = mCaret = lastSelected;
    }
  } else if (mAnchor == index) {
    mAnchor = neighbour();
  }
}

TFRESULT LListBox::Deselect(std::int32_t index) {
  if (!IsItemSelected(index)) return kNothingDone;
  SetItemValue(index, 0);
  MoveEndsFrom(index);
  TellSelectionChange();
  return kSuccess;
}

void LListBox::ClearSelection() {
  if (mSelectedCount == 0) {
    mAnchor = mCaret = -1;
    return;
  }
  const RCPtr<LControl> held(this);
  SelectAlone(-1, -1);
  mAnchor = mCaret = -1;
  TellSelectionChange();
}

// At least one, however small the view is.
std::int32_t LListBox::CountFittingRows() {
  RectT<double> view;
  GetScrollViewRect(view);
  const double bottom = view.mHeight + mScrollOffset.mY;
  const auto fits = [bottom](const RCPtr<LListBoxItem>& row) {
    return row->GetBounds().GetBottom() <= bottom;
  };
  return std::max(static_cast<std::int32_t>(std::count_if(mRows.begin(), mRows.end(), fits)), 1);
}

// The record that so many visible ones lie before it; the first visible one when there are not so many.
std::int32_t LListBox::StepBack(std::int32_t index, std::int32_t steps) const {
  std::int32_t first = index;
  for (; index >= 0 && steps >= 0; --index) {
    if (mRecords[static_cast<std::size_t>(index)].mHidden) continue;
    first = index;
    --steps;
  }
  return first;
}

TFRESULT LListBox::EnsureVisible(std::int32_t index) {
  if (!IsItem(index)) return kInvalidArgument;
  if (mRows.empty() || mHiddenCount == GetItemCount()) return kNothingDone;
  std::int32_t wanted = index;
  while (wanted >= 0 && mRecords[static_cast<std::size_t>(wanted)].mHidden) --wanted;
  if (wanted < 0) wanted = StepVisible(index, 0);
  const std::int32_t capacity = CountFittingRows() - 1;
  const std::int32_t lastFitting = StepVisible(mFirstVisible, capacity);
  // What can be seen stays where it is, also near the end of the list.
  if (wanted >= mFirstVisible && wanted <= lastFitting) return kSuccess;
  const std::int32_t mostFirst = StepBack(GetItemCount() - 1, capacity);
  std::int32_t first = wanted;
  if (wanted > mostFirst) {
    first = mostFirst;
  } else if (wanted > mFirstVisible) {
    first = StepBack(wanted, capacity);
  }
  ScrollToFirst(first);
  return kSuccess;
}

// The mouse does not select what comes to lie under it by this.
void LListBox::ScrollToFirst(std::int32_t first) {
  const RCPtr<LControl> held(this);
  const bool selects = std::exchange(mSelectOnHover, false);
  try {
    SetScrollOffset({mScrollOffset.mX, double(CountVisibleBefore(first)) * mRowHeight});
  } catch (...) {
    mSelectOnHover = selects;
    throw;
  }
  mSelectOnHover = selects;
}

void LListBox::Activate(std::int32_t index) {
  if (!IsItem(index) || !IsItemSelectable(index)) return;
  const RCPtr<LControl> held(this);
  const bool leads = LeadsOn(index);
  OnItemActivated();
  if (mDestroyed || leads) return;
  if (mSelectOnHover) SetVisible(false);
  if (mParent && !mDestroyed) Send(LNotification::Create(u"NID_ITEM_ACTIVATED"));
}

void LListBox::SetSelectOnHover(bool selects) {
  mSelectOnHover = selects;
  for (const RCPtr<LListBoxItem>& row : mRows) row->SetSelectOnHover(selects);
}

void LListBox::ToggleItem(std::int32_t index) {
  if (IsItemSelected(index)) {
    Deselect(index);
  } else {
    SelectRange(index, index, false);
  }
}

void LListBox::OnRowPress(std::int32_t index, const RCPtr<LMouseButtonParam>& param) {
  if (!IsItem(index)) return;
  const RCPtr<LControl> held(this);
  const bool ctrl = (param->mModifiers & Modifier::kCtrl) != 0;
  const bool shift = (param->mModifiers & Modifier::kShift) != 0;
  if (!mMultiSelect) {
    SelectRange(index, index, true);
  } else if (mClickMode != kModifierMode || (ctrl && !shift)) {
    ToggleItem(index);
  } else if (ctrl) {
    mAnchor = mCaret = index;
    SelectRange(index, index, false);
  } else if (shift) {
    SelectRange(mAnchor >= 0 ? mAnchor : index, index, true);
  } else {
    SelectRange(index, index, true);
  }
  if (param->mIsDoubleClick && !mDestroyed) Send(LNotification::Create(u"NID_ITEM_DOUBLE_CLICKED"));
}

TFRESULT LListBox::HandleRowDown(const RCPtr<LNotificationDistributor>& sender,
                                 const RCPtr<LNotification>& notification) {
  const RCPtr<LListBoxItem> row(sender);
  const RCPtr<LMouseButtonParam> param(notification->GetData());
  const std::int32_t index = IndexOfRow(row.Get());
  if (!param || mSelectOnHover) return kNothingDone;
  if (param->mButton == LMouseButtonParam::kLeft) {
    if (!mMultiSelect || !IsItemSelected(index)) {
      if (mMultiSelect) mPressIndex = index;
      OnRowPress(index, param);
    }
  } else if (param->mButton == LMouseButtonParam::kRight && index >= 0 && !param->mIsDoubleClick) {
    Send(LNotification::Create(u"NID_ITEM_RIGHT_CLICK", MakeRC<LHolder<int>>(index)));
  }
  return kNothingDone;
}

// A press on what is selected already counts when the button comes up, so that all of it can be dragged.
TFRESULT LListBox::HandleRowUp(const RCPtr<LNotificationDistributor>& sender,
                               const RCPtr<LNotification>& notification) {
  const RCPtr<LListBoxItem> row(sender);
  const RCPtr<LMouseButtonParam> param(notification->GetData());
  const bool counts = param && param->mButton == LMouseButtonParam::kLeft && mMultiSelect && !mSelectOnHover;
  if (!counts) return kNothingDone;
  const std::int32_t pressed = std::exchange(mPressIndex, -1);
  const std::int32_t index = IndexOfRow(row.Get());
  if (IsItemSelected(index) && index != pressed) OnRowPress(index, param);
  return kNothingDone;
}

RCPtr<LItemConditionsParam> LListBox::DescribeRow(const RCPtr<LListBoxItem>& row,
                                                  const RCPtr<LNotification>& event) {
  const RCPtr<LConditionsParam> conditions(event->GetData());
  auto item = MakeRC<LItemConditionsParam>();
  if (conditions) {
    item->mPrevious = conditions->mPrevious;
    item->mCurrent = conditions->mCurrent;
    item->mWidth = conditions->mWidth;
    item->mHeight = conditions->mHeight;
  }
  item->mIndex = IndexOfRow(row.Get());
  item->mHover = (item->mCurrent & ControlCondition::kHover) != 0;
  for (std::int32_t slot = row->GetLookCount() - 1; slot >= 0; --slot) {
    if (row->GetLookAlpha(slot) > 0) item->mLook = slot;
  }
  return item;
}

TFRESULT LListBox::HandleRowDrag(const RCPtr<LNotificationDistributor>& sender,
                                 const RCPtr<LNotification>& notification) {
  const RCPtr<LListBoxItem> row(sender);
  if (row && row->IsEnabled(true))
    Send(LNotification::Create(u"NID_ITEM_LEFT_DRAG_CONDITION_CHANGE", DescribeRow(row, notification)));
  return kNothingDone;
}

TFRESULT LListBox::HandleRowHover(const RCPtr<LNotificationDistributor>& sender,
                                  const RCPtr<LNotification>& notification) {
  const RCPtr<LListBoxItem> row(sender);
  if (!row || !row->IsEnabled(true)) return kNothingDone;
  const RCPtr<LItemConditionsParam> item = DescribeRow(row, notification);
  const bool rises = item->Rose(ControlCondition::kHoverBelow);
  if (mSelectOnHover && rises && IsItem(item->mIndex) && IsItemSelectable(item->mIndex))
    SelectRange(item->mIndex, -1, true);
  if (!mDestroyed) Send(LNotification::Create(u"NID_ITEM_HOVER_CONDITION_CHANGE", item));
  return kNothingDone;
}

RCPtr<LListBoxItem> LListBox::FindRowAt(const PointT<double>& point) {
  RectT<double> view;
  GetScrollViewRect(view);
  const RectT<double> client = GetClientRect();
  if (!Contains({client.mX, client.mY, view.mWidth, view.mHeight}, point)) return nullptr;
  for (const RCPtr<LListBoxItem>& row : mRows) {
    const PointT<double> corner = row->GetPositionInParent();
    const RectT<double>& bounds = row->GetBounds();
    if (row->IsShown(false) && Contains({corner.mX, corner.mY, bounds.mWidth, bounds.mHeight}, point))
      return row;
  }
  return nullptr;
}

void LListBox::OnMouseMove(const RCPtr<LPointWithModifiersParam>& param) {
  const RCPtr<LControl> held(this);
  LScrollView::OnMouseMove(param);
  if (mDestroyed || !mSelectOnHover || !mHasCapture || !mLeftDrag) return;
  const RCPtr<LListBoxItem> row = FindRowAt({double(param->mX), double(param->mY)});
  const std::int32_t index = row ? IndexOfRow(row.Get()) : -1;
  if (!row) return ClearSelection();
  if (IsItem(index) && IsItemSelectable(index)) SelectRange(index, -1, true);
}

void LListBox::OnLeftMouseUp(const RCPtr<LMouseButtonParam>& param) {
  const RCPtr<LControl> held(this);
  LScrollView::OnLeftMouseUp(param);
  if (mDestroyed || !mSelectOnHover) return;
  const PointT<double> point{double(param->mX), double(param->mY)};
  const RCPtr<LControl> parent = mParent;
  if (const RCPtr<LListBoxItem> row = FindRowAt(point)) {
    if (parent) Activate(IndexOfRow(row.Get()));
    return;
  }
  if (!RCPtr<LDropDownControl>(parent)) return;
  const PointT<double> corner = GetPositionInParent();
  const RectT<double>& face = parent->GetBounds();
  if (!Contains(RectT<double>{0, 0, face.mWidth, face.mHeight},
                PointT<double>{point.mX + corner.mX, point.mY + corner.mY}))
    SetVisible(false);
}

void LListBox::SelectByKey(std::int32_t step, bool extends) {
  std::int32_t index = mCaret + step;
  while (IsItem(index) && (GetItemRecord(index)->mHidden || !IsItemSelectable(index))) index += step;
  if (!IsItem(index)) return;
  if (extends && mMultiSelect && mAnchor >= 0) {
    SelectRange(mAnchor, index, false);
  } else {
    SelectRange(index, -1, true);
  }
}

TFRESULT LListBox::OnKeyDown(const RCPtr<LKeyParam>& param) {
  constexpr std::uint32_t kShifted = KeyCode::kShift;
  switch (param->mKey.code) {
    case PressedKey::kUp:
    case PressedKey::kUp | kShifted:
      SelectByKey(-1, param->mKey.code != PressedKey::kUp);
      return kSuccess;
    case PressedKey::kDown:
    case PressedKey::kDown | kShifted:
      SelectByKey(1, param->mKey.code != PressedKey::kDown);
      return kSuccess;
    case PressedKey::kReturn:
      if (mCaret >= 0) Activate(mCaret);
      return kSuccess;
    // The bars have taken those that they can use before.
    case PressedKey::kLeft:
    case PressedKey::kRight:
    case PressedKey::kPageUp:
    case PressedKey::kPageDown:
    case PressedKey::kHome:
    case PressedKey::kEnd:
      return kSuccess;
    default:
      return kNothingDone;
  }
}

void LListBox::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  const RCPtr<LControl> held(this);
  LScrollView::OnConditionChange(conditions);
  constexpr std::uint32_t kShownBits = ControlCondition::kEnabled | ControlCondition::kHasFocus;
  if (((conditions->mPrevious ^ conditions->mCurrent) & kShownBits) == 0) return;
  std::int32_t look = mHasFocus ? kFocusedList : kNormalList;
  if (!IsEnabled(true)) look = kDisabledList;
  SetActiveLook(look < GetLookCount() ? look : kNormalList, true);
}

}  // namespace TF
