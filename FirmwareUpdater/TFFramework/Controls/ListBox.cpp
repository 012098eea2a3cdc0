#include "TFFramework/Controls/ListBox.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/LayoutGuard.h"

namespace TF {

namespace {

constexpr const char16_t* kTemplateItem = u"templateItem";
constexpr const char16_t* kItemPrefix = u"ITEM.";
constexpr std::size_t kItemPrefixLength = 5;
// A text table may name any number; a list of more is a mistake.
constexpr std::int32_t kMostTextItems = 100000;

// The bars take what the list does not use itself.
constexpr std::uint32_t kVerticalBarKeys =
    LScrollbar::kPageUpKey | LScrollbar::kPageDownKey | LScrollbar::kHomeKey | LScrollbar::kEndKey;
constexpr std::uint32_t kHorizontalBarKeys =
    LScrollbar::kLeftKey | LScrollbar::kRightKey | LScrollbar::kHomeKey | LScrollbar::kEndKey;

// -1 for what is no number of an item.
std::int32_t ParseItemNumber(std::u16string_view digits) {
  std::int32_t number = 0;
  for (const char16_t digit : digits) {
    if (digit < u'0' || digit > u'9') return -1;
    number = number * 10 + (digit - u'0');
    if (number >= kMostTextItems) return -1;
  }
  return digits.empty() ? -1 : number;
}

}  // namespace

LListBox::LListBox(const RCPtr<LControl>& parent, const String& name) : HandlingControl(parent, name) {}

LListBox::~LListBox() = default;

TFRESULT LListBox::Initialize() {
  const TFRESULT result = LScrollView::Initialize();
  MakeHandler();
  if (Failed(result)) return result;
  mAutoClientExtent = 0;
  mExtentExtra = {};
  if (mVBar) mVBar->SetKeyMask(kVerticalBarKeys);
  if (mHBar) mHBar->SetKeyMask(kHorizontalBarKeys);
  if (TakeTemplate()) {
    ReadItems();
  } else {
    TakeReadyRows();
  }
  GrowRows();
  if (mRows.empty()) return result;
  RefreshRows();
  if (NeedsContentWidth()) RecomputeContentWidth();
  FitHeight();
  UpdateWidth();
  if (mSorted) Sort();
  return result;
}

bool LListBox::TakeTemplate() {
  const RCPtr<LControl> row = FindChild(kTemplateItem);
  if (!row) return mTemplateDescriptor != nullptr;
  mTemplateDescriptor = row->GetDescriptor();
  MeasureTemplate(row);
  row->Destroy();
  SetScrollStep(LayoutAxis::kY, mRowHeight);
  UpdateBars();
  return true;
}

// What the program has put into the list stays when the skin changes.
void LListBox::ReadItems() {
  if (!mStringSection) return;
  std::map<std::int32_t, String> items;
  for (const auto& [identifier, text] : mStringSection->GetStrings()) {
    if (identifier.Find(kItemPrefix) != 0) continue;
    const std::int32_t number = ParseItemNumber(identifier.View().substr(kItemPrefixLength));
    if (number >= 0) items[number] = text;
  }
  if (items.empty()) return;
  RemoveAllItems();
  SetItemCount(items.rbegin()->first + 1);
  const LayoutGuard bulk(mBulkChange);
  for (const auto& [number, text] : items) SetItemText(number, text);
}

void LListBox::TakeReadyRows() {
  mRows.clear();
  mRecords.clear();
  for (std::int32_t number = 1;; ++number) {
    const RCPtr<LListBoxItem> row(FindChild(FromUtf8(fmt::format("item{}", number))));
    if (!row) break;
    if (number == 1) MeasureTemplate(row);
    mRows.push_back(row);
    InsertRecord(number - 1);
    GetItemRecord(number - 1)->mLabel = MakeRC<LListText>(row->GetText());
    HookRow(row);
  }
}

TFRESULT LListBox::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  const LayoutGuard applying(mApplyingDescriptor);
  return LScrollView::ApplyDescriptor(descriptor);
}

TFRESULT LListBox::OnDescriptorApplied() {
  const TFRESULT result = LScrollView::OnDescriptorApplied();
  mApplyingDescriptor = false;
  GrowRows();
  return result;
}

TFRESULT LListBox::AdoptChild(const RCPtr<LControl>& child, const RCPtr<LControlDescriptor>& descriptor) {
  if (!descriptor) return kSuccess;
  if (child) return LScrollView::AdoptChild(child, descriptor);
  if (descriptor->mName != kTemplateItem) return kFailure;
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  const RCPtr<LControl> row =
      factory ? factory->CreateSubControl(RCPtr<LControl>(this), descriptor) : RCPtr<LControl>();
  return row && TakeTemplate() ? kSuccess : kFailure;
}

void LListBox::Destroy() {
  const RCPtr<LControl> held(this);
  LScrollView::Destroy();
  mRows.clear();
}

std::int32_t LListBox::SetItemCount(std::int32_t count) {
  const RCPtr<LControl> held(this);
  const std::int32_t before = GetItemCount();
  {
    const LayoutGuard bulk(mBulkChange);
    if (count > before) mRecords.reserve(static_cast<std::size_t>(count));
    while (GetItemCount() < count) InsertRecord(GetItemCount());
    while (GetItemCount() > std::max(count, 0) && !Failed(RemoveItem(GetItemCount() - 1))) {
    }
  }
  ItemsChanged(std::min(before, GetItemCount()));
  return GetItemCount() == count ? count : -GetItemCount();
}

// Those behind a record that has gone move up.
void LListBox::SlideEnds(std::int32_t index) {
  const auto [low, high] = std::minmax(mAnchor, mCaret);
  if (index > high) return;
  if (index < low) {
    --mAnchor;
    --mCaret;
  } else {
    mAnchor = mCaret = -1;
  }
}

TFRESULT LListBox::RemoveItem(std::int32_t index) {
  if (!IsItem(index)) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  Deselect(index);
  // Whoever is told of the selection may have removed it.
  if (!IsItem(index)) return kSuccess;
  const bool wasWidest = NeedsContentWidth() && GetItemWidth(index) >= mContentWidth;
  if (mRecords[static_cast<std::size_t>(index)].mHidden) --mHiddenCount;
  EraseRecord(index);
  SlideEnds(index);
  if (wasWidest && !mBulkChange) RecomputeContentWidth();
  ItemsChanged(index);
  return kSuccess;
}

TFRESULT LListBox::RemoveAllItems() {
  if (GetItemCount() == 0) return kNothingDone;
  const RCPtr<LControl> held(this);
  ClearSelection();
  return SetItemCount(0) == 0 ? kSuccess : kFailure;
}

TFRESULT LListBox::SetItem(std::int32_t index, const RCPtr<LRefCountedObject>& label) {
  if (!IsItem(index)) return kInvalidArgument;
  const bool wasWidest = NeedsContentWidth() && !mBulkChange && GetItemWidth(index) >= mContentWidth;
  GetItemRecord(index)->mLabel = label;
  std::int32_t row = -1;
  UpdateRow(index, row);
  if (!NeedsContentWidth()) return kSuccess;
  if (const std::int32_t width = GetItemWidth(index); width >= mContentWidth) {
    mContentWidth = width;
    UpdateWidth();
  } else if (wasWidest) {
    RecomputeContentWidth();
    UpdateWidth();
  }
  return kSuccess;
}

TFRESULT LListBox::InsertItem(std::int32_t index, const RCPtr<LRefCountedObject>& label) {
  if (index < 0 || index > GetItemCount()) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  InsertRecord(index);
  for (std::int32_t* const end : {&mAnchor, &mCaret}) *end += *end >= index ? 1 : 0;
  SetItem(index, label);
  if (mSorted) Sort();
  ItemsChanged(mSorted ? 0 : index);
  return kSuccess;
}

String LListBox::GetItemText(std::int32_t index) {
  const ListRecord* const record = IsItem(index) ? GetItemRecord(index) : nullptr;
  return record && record->mLabel ? record->mLabel->ToString() : String();
}

TFRESULT LListBox::SetItemHidden(std::int32_t index, bool hidden) {
  if (!IsItem(index)) return kInvalidArgument;
  if (GetItemRecord(index)->mHidden == hidden) return kNothingDone;
  const RCPtr<LControl> held(this);
  if (hidden) Deselect(index);
  if (!IsItem(index)) return kSuccess;
  GetItemRecord(index)->mHidden = hidden;
  mHiddenCount += hidden ? 1 : -1;
  ItemsChanged(0);
  return kSuccess;
}

TFRESULT LListBox::SetItemSeparator(std::int32_t index, bool separator) {
  if (!IsItem(index)) return kInvalidArgument;
  GetItemRecord(index)->mSeparator = separator;
  std::int32_t row = -1;
  return UpdateRow(index, row);
}

void LListBox::SetSorted(bool sorted) {
  mSorted = sorted;
  if (sorted) Sort();
}

TFRESULT LListBox::Sort() {
  return SortRange(0, GetItemCount());
}

// A stable order, found beforehand, since a record may be more than is swapped here.
TFRESULT LListBox::SortRange(std::int32_t first, std::int32_t count) {
  if (count == 0) return kNothingDone;
  if (first < 0 || count < 0 || first > GetItemCount() - count) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  std::vector<std::pair<String, std::int32_t>> order;
  order.reserve(static_cast<std::size_t>(count));
  for (std::int32_t index = first; index < first + count; ++index) {
    order.emplace_back(GetItemText(index).ToLower(), index);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  for (std::int32_t place = 0; place < count; ++place) {
    // What belongs here may have been swapped away from where it was, and on from there.
    std::int32_t from = order[static_cast<std::size_t>(place)].second - first;
    while (from < place) from = order[static_cast<std::size_t>(from)].second - first;
    if (from == place) continue;
    const TFRESULT result = SwapItems(first + place, first + from);
    if (Failed(result)) return result;
  }
  RefreshRows();
  return kSuccess;
}

TFRESULT LListBox::SwapItems(std::int32_t first, std::int32_t second) {
  if (!IsItem(first) || !IsItem(second)) return kInvalidArgument;
  std::swap(mRecords[static_cast<std::size_t>(first)], mRecords[static_cast<std::size_t>(second)]);
  for (std::int32_t* const end : {&mAnchor, &mCaret}) {
    if (*end == first) {
      *end = second;
    } else if (*end == second) {
      *end = first;
    }
  }
  return kSuccess;
}

ListRecord* LListBox::GetItemRecord(std::int32_t index) {
  return IsItem(index) ? &mRecords[static_cast<std::size_t>(index)] : nullptr;
}

void LListBox::InsertRecord(std::int32_t index) {
  mRecords.emplace(mRecords.begin() + index);
}

void LListBox::EraseRecord(std::int32_t index) {
  mRecords.erase(mRecords.begin() + index);
}

// Extent, height and rows once more.
void LListBox::ItemsChanged(std::int32_t fromIndex) {
  if (mBulkChange || mDestroyed) return;
  FitHeight();
  UpdateWidth();
  mFirstVisible = FindFirstVisible(mScrollOffset.mY);
  RefreshRows(std::max(fromIndex, 0));
}

}  // namespace TF
