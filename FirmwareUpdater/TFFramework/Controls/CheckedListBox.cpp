#include "TFFramework/Controls/CheckedListBox.h"

#include <utility>

namespace TF {

TFRESULT LCheckedListBox::SetItemChecked(std::int32_t index, bool checked) {
  if (!IsItem(index)) return kInvalidArgument;
  mChecked[static_cast<std::size_t>(index)] = checked ? 1 : 0;
  std::int32_t row = -1;
  UpdateRow(index, row);
  return kSuccess;
}

bool LCheckedListBox::IsItemChecked(std::int32_t index) const {
  return IsItem(index) && mChecked[static_cast<std::size_t>(index)] != 0;
}

void LCheckedListBox::ShowCheckBoxes(bool show) {
  mShowCheckBoxes = show;
  for (const RCPtr<LListBoxItem>& row : mRows) {
    if (const RCPtr<LCheckedListBoxItem> checked(row); checked) checked->ShowCheckBox(show);
  }
}

RCPtr<LListBoxItem> LCheckedListBox::AddRow() {
  const RCPtr<LListBoxItem> row = LListBox::AddRow();
  if (const RCPtr<LCheckedListBoxItem> checked(row); checked) checked->ShowCheckBox(mShowCheckBoxes);
  return row;
}

TFRESULT LCheckedListBox::UpdateRow(std::int32_t index, std::int32_t& row) {
  const RCPtr<LControl> held(this);
  const TFRESULT result = LListBox::UpdateRow(index, row);
  if (row < 0 || row >= GetRowCount()) return result;
  const RCPtr<LCheckedListBoxItem> checked(mRows[static_cast<std::size_t>(row)]);
  if (checked) checked->SetChecked(IsItemChecked(index));
  return result;
}

TFRESULT LCheckedListBox::SwapItems(std::int32_t first, std::int32_t second) {
  const TFRESULT result = LListBox::SwapItems(first, second);
  if (!Failed(result))
    std::swap(mChecked[static_cast<std::size_t>(first)], mChecked[static_cast<std::size_t>(second)]);
  return result;
}

void LCheckedListBox::InsertRecord(std::int32_t index) {
  mChecked.insert(mChecked.begin() + index, 0);
  LListBox::InsertRecord(index);
}

void LCheckedListBox::EraseRecord(std::int32_t index) {
  LListBox::EraseRecord(index);
  mChecked.erase(mChecked.begin() + index);
}

}  // namespace TF
