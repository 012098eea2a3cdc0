#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/FontText.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/Controls/ListBox.h"

namespace TF {

namespace {

// As high as letters get.
constexpr const char16_t* kHighText = u"{WXyg|}";

LayoutSize SelfSize(double pixels) {
  LayoutSize size;
  size.mReference = SizeReference::kSelf;
  size.mAbs = pixels;
  return size;
}

}  // namespace

void LListBox::SetContentWidth(double width) {
  const double client = GetClientRect().mWidth;
  SetAxisLayout(LayoutAxis::kX, mLayout->Axis(LayoutAxis::kX).mPosition,
                SelfSize(std::round(mBounds.mWidth - client + width)));
}

void LListBox::SetContentHeight(double height) {
  const double client = GetClientRect().mHeight;
  SetAxisLayout(LayoutAxis::kY, mLayout->Axis(LayoutAxis::kY).mPosition,
                SelfSize(std::round(mBounds.mHeight - client + height)));
}

void LListBox::MeasureTemplate(const RCPtr<LControl>& row) {
  if (!row) return;
  const RCPtr<LControl> held(this);
  const LayoutGuard growing(mInRowGrowth);
  const double startWidth = mBounds.mWidth;
  const LayoutSize skinWidth = mLayout->Axis(LayoutAxis::kX).mSize;
  LayoutLimit minimum, maximum;
  GetAxisLimits(LayoutAxis::kX, minimum, maximum);
  SetAxisLimits(LayoutAxis::kX, LayoutLimit(), maximum);
  RectT<double> view;
  GetScrollViewRect(view);
  SetContentWidth(std::trunc(mBounds.mWidth - view.mWidth));
  const String text = row->GetText();
  row->SetText(String());
  mItemPadding = RoundToInt32(row->GetBounds().mWidth);
  row->SetText(kHighText);
  mRowHeight = RoundToInt32(row->GetBounds().mHeight);
  if (mRowHeight < 1) mRowHeight = kDefaultRowHeight;
  row->SetText(text);
  if (ExpandsTemplate() && minimum.mAbs == 0) minimum.mAbs = std::trunc(startWidth);
  SetAxisLimits(LayoutAxis::kX, minimum, maximum);
  SetAxisLayout(LayoutAxis::kX, mLayout->Axis(LayoutAxis::kX).mPosition, skinWidth);
  if (mSelectOnHover) FitHeight();
  mTemplateMeasured = true;
}

RCPtr<LListBoxItem> LListBox::AddRow() {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory || !mTemplateDescriptor || !mTemplateDescriptor->mLayout) return nullptr;
  const auto layout = MakeRC<LLayoutDescriptor>(*mTemplateDescriptor->mLayout);
  layout->Axis(LayoutAxis::kX).mTextOverflow = TextOverflow::kClip;
  LayoutPosition& position = layout->Axis(LayoutAxis::kY).mPosition;
  position = LayoutPosition();
  position.mIsDocked = true;
  position.mReference = PositionReference::kClient;
  if (!mRows.empty()) {
    position.mReference = PositionReference::kNamed;
    position.mName = mRows.back()->GetName();
    position.mRel = 1;
  }
  const String name = FromUtf8(fmt::format("ItemControl{}", mRows.size() + 1));
  const RCPtr<LListBoxItem> row(factory->CreateSubControl(
      RCPtr<LControl>(this), factory->CopyDescriptor(mTemplateDescriptor, layout, name)));
  if (!row || mDestroyed) return nullptr;
  mRows.push_back(row);
  HookRow(row);
  row->SetSelectOnHover(mSelectOnHover);
  row->SetUseParentToolTip(true);
  row->SetDragThreshold(mRowDragThreshold);
  return row;
}

TFRESULT LListBox::HookRow(const RCPtr<LListBoxItem>& row) {
  const RCPtr<LNotificationDistributor> distributor(row);
  mHandler->AddHandler(&LListBox::HandleRowDown, distributor, u"NID_MOUSE_DOWN");
  mHandler->AddHandler(&LListBox::HandleRowUp, distributor, u"NID_MOUSE_UP");
  mHandler->AddHandler(&LListBox::HandleRowDrag, distributor, u"NID_LEFT_DRAG_CONDITION_CHANGE");
  return mHandler->AddHandler(&LListBox::HandleRowHover, distributor, u"NID_HOVER_CONDITION_CHANGE");
}

// A row may take less room than it asks for, or none; there is never one too many for the view all the same.
void LListBox::GrowRows() {
  if (mInRowGrowth || mApplyingDescriptor || !mTemplateMeasured || !mTemplateDescriptor || mDestroyed) return;
  const RCPtr<LControl> held(this);
  const LayoutGuard growing(mInRowGrowth);
  const RectT<double> client = GetClientRect();
  const auto mostRows = static_cast<std::size_t>(std::max(client.mHeight, 0.0) / mRowHeight) + 2;
  const auto first = static_cast<std::int32_t>(mRows.size());
  while (mRows.size() < mostRows) {
    const double bottom = mRows.empty() ? mScrollOffset.mY : mRows.back()->GetBounds().GetBottom();
    if (!mRows.empty() && bottom > client.mHeight + client.mY + mScrollOffset.mY) break;
    if (!AddRow()) break;
  }
  if (static_cast<std::int32_t>(mRows.size()) == first) return;
  RefreshRows(StepVisible(mFirstVisible, first));
  UpdateWidth();
}

std::int32_t LListBox::IndexOfRow(const LControl* row) {
  const auto found =
      std::find_if(mRows.begin(), mRows.end(), [row](const auto& each) { return each.Get() == row; });
  if (found == mRows.end()) return -1;
  const std::int32_t index = StepVisible(mFirstVisible, static_cast<std::int32_t>(found - mRows.begin()));
  return IsItem(index) ? index : -1;
}

// The record so many steps further that is not hidden; the count when there are not so many.
std::int32_t LListBox::StepVisible(std::int32_t index, std::int32_t steps) const {
  const auto count = static_cast<std::int32_t>(mRecords.size());
  if (mHiddenCount == 0) return std::min(index + steps, count);
  for (; index < count; ++index) {
    if (mRecords[static_cast<std::size_t>(index)].mHidden) continue;
    if (steps-- == 0) break;
  }
  return index;
}

std::int32_t LListBox::CountVisibleBefore(std::int32_t index) const {
  if (mHiddenCount == 0) return index;
  return static_cast<std::int32_t>(std::count_if(mRecords.begin(), mRecords.begin() + index,
                                                 [](const ListRecord& record) { return !record.mHidden; }));
}

std::int32_t LListBox::GetRowOfItem(std::int32_t index) {
  if (!IsItem(index) || index < mFirstVisible || mRecords[static_cast<std::size_t>(index)].mHidden) return -1;
  const auto rows = static_cast<std::int32_t>(mRows.size());
  std::int32_t row = index - mFirstVisible;
  if (mHiddenCount > 0) {
    row = 0;
    for (std::int32_t each = mFirstVisible; each < index && row < rows; ++each)
      row += mRecords[static_cast<std::size_t>(each)].mHidden ? 0 : 1;
  }
  return row < rows ? row : -1;
}

TFRESULT LListBox::UpdateRow(std::int32_t index, std::int32_t& row) {
  row = GetRowOfItem(index);
  if (row < 0) return kNothingDone;
  const RCPtr<LControl> held(this);
  const RCPtr<LListBoxItem> control = mRows[static_cast<std::size_t>(row)];
  const ListRecord record = *GetItemRecord(index);
  control->SetText(record.mSeparator ? String() : GetItemText(index));
  control->SetValue(record.mValue);
  control->SetHighlighted(record.mHighlighted);
  control->SetSeparator(record.mSeparator);
  control->SetEnabled(true);
  return kSuccess;
}

// Rows behind the last record are empty.
void LListBox::ClearRow(LListBoxItem& row) {
  row.SetText(String());
  row.SetValue(0);
  row.SetHighlighted(false);
  row.SetSeparator(false);
  row.SetEnabled(false);
}

void LListBox::RefreshRows(std::int32_t fromIndex) {
  const RCPtr<LControl> held(this);
  std::int32_t index = StepVisible(mFirstVisible, 0);
  for (std::size_t number = 0; number < mRows.size() && !mDestroyed; ++number) {
    const RCPtr<LListBoxItem> row = mRows[number];
    std::int32_t shown = -1;
    if (!IsItem(index)) {
      ClearRow(*row);
    } else if (index >= fromIndex) {
      UpdateRow(index, shown);
    }
    index = StepVisible(index, 1);
  }
}

void LListBox::OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) {
  std::erase_if(mRows, [&child](const RCPtr<LListBoxItem>& row) { return child == row.Get(); });
  LScrollView::OnChildRemoved(child, index);
}

std::int32_t LListBox::FindFirstVisible(double offset) const {
  const auto count = static_cast<std::int32_t>(mRecords.size());
  if (count == 0) return 0;
  const std::int32_t steps = RoundToInt32(offset / std::max(mRowHeight, 1));
  const std::int32_t first = StepVisible(0, std::max(steps, 0));
  if (first < count) return first;
  std::int32_t last = count - 1;
  while (last > 0 && mRecords[static_cast<std::size_t>(last)].mHidden) --last;
  return last;
}

void LListBox::OnScrollOffsetChange(const PointT<double>& from, const PointT<double>& to) {
  const RCPtr<LControl> held(this);
  LScrollView::OnScrollOffsetChange(from, to);
  if (from.mY == to.mY || mDestroyed) return;
  GrowRows();
  const std::int32_t first = FindFirstVisible(to.mY);
  if (first == mFirstVisible) return;
  mFirstVisible = first;
  RefreshRows();
}

void LListBox::EndBoundsChange() {
  LScrollView::EndBoundsChange();
  GrowRows();
}

void LListBox::OnClientViewChange() {
  LScrollView::OnClientViewChange();
  GrowRows();
}

void LListBox::OnBarVisibilityChange(LayoutAxis axis) {
  LScrollView::OnBarVisibilityChange(axis);
  if (axis == LayoutAxis::kY) FollowContentWidth();
}

bool LListBox::ExpandsTemplate() const {
  return mTemplateDescriptor && mTemplateDescriptor->mLayout &&
         mTemplateDescriptor->mLayout->Axis(LayoutAxis::kX).mTextOverflow == TextOverflow::kExpand;
}

void LListBox::FollowContentWidth() {
  if (ExpandsTemplate()) SetContentWidth(std::trunc(mBarThickness.mWidth) + mContentWidth);
}

double LListBox::MeasureText(const RCPtr<LFont>& font, const String& text) {
  LFontText measured(font, 0, 0);
  measured.SetText(text);
  return measured.GetLineRect(0).mWidth;
}

std::int32_t LListBox::GetItemWidth(std::int32_t index) {
  if (mRows.empty() || !IsItem(index)) return 0;
  return mItemPadding + TruncateToInt32(MeasureText(mRows.front()->GetFont(), GetItemText(index)) + 0.5);
}

std::int32_t LListBox::GetContentHeight() {
  return mRowHeight * (static_cast<std::int32_t>(mRecords.size()) - mHiddenCount);
}

// Measuring all texts of a long list takes a while; most lists have a width of their own.
bool LListBox::NeedsContentWidth() const {
  if (!mTemplateDescriptor || !mTemplateDescriptor->mLayout) return true;
  const AxisLayout& x = mTemplateDescriptor->mLayout->Axis(LayoutAxis::kX);
  return x.mSize.mReference == SizeReference::kSelf || x.mTextOverflow == TextOverflow::kExpand;
}

void LListBox::RecomputeContentWidth() {
  const std::int32_t before = mContentWidth;
  mContentWidth = 0;
  for (std::int32_t index = 0; index < GetItemCount(); ++index)
    mContentWidth = std::max(mContentWidth, GetItemWidth(index));
  if (mContentWidth != before) FollowContentWidth();
}

void LListBox::UpdateWidth() {
  if (mBulkChange || mDestroyed) return;
  const RCPtr<LControl> held(this);
  const bool ownWidth =
      !mTemplateDescriptor || !mTemplateDescriptor->mLayout ||
      mTemplateDescriptor->mLayout->Axis(LayoutAxis::kX).mSize.mReference == SizeReference::kSelf;
  const double width = ownWidth ? mContentWidth : 0;
  SetClientExtent({width, double(GetContentHeight())});
  UpdateBars();
  if (!ownWidth) return;
  LayoutPosition position;
  position.mAnchor = 0.5F;
  position.mReference = PositionReference::kClient;
  position.mRel = 0.5F;
  for (std::size_t number = 0; number < mRows.size(); ++number) {
    const RCPtr<LListBoxItem> row = mRows[number];
    position.mIsDocked = row->IsDocked(LayoutAxis::kX);
    row->SetAxisLayout(LayoutAxis::kX, position, SelfSize(width));
  }
}

void LListBox::FitHeight() {
  if (mSelectOnHover && !mBulkChange) SetContentHeight(std::max(GetContentHeight(), mRowHeight));
}

}  // namespace TF
