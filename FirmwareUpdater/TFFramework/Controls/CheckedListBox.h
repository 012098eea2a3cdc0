#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Controls/ListBox.h"

namespace TF {

// A list whose rows show a check mark each.
//
// Threads: main thread.
class LCheckedListBox : public LListBox {
 public:
  using LListBox::LListBox;

  TFRESULT SetItemChecked(std::int32_t index, bool checked);
  bool IsItemChecked(std::int32_t index) const;
  // Without them the rows leave their boxes out.
  void ShowCheckBoxes(bool show);

  RCPtr<LListBoxItem> AddRow() override;
  TFRESULT UpdateRow(std::int32_t index, std::int32_t& row) override;

 protected:
  TFRESULT SwapItems(std::int32_t first, std::int32_t second) override;
  void InsertRecord(std::int32_t index) override;
  void EraseRecord(std::int32_t index) override;

  bool mShowCheckBoxes = true;

 private:
  std::vector<std::uint8_t> mChecked;  // One for each record.
};

}  // namespace TF
