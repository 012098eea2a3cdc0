#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

// A row of a list: shows whichever record its list puts into it, by one of fourteen looks. The value tells
// whether the record is selected. Never has the focus.
//
// Threads: main thread.
class LListBoxItem : public LControl {
 public:
  using LControl::LControl;

  TFRESULT OnDescriptorApplied() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  void OnValueChange() override;

  // The looks of a record that leads on, such as one with a submenu.
  void SetHighlighted(bool highlighted);
  // Shows no text and cannot be told from the background by more than its look.
  void SetSeparator(bool separator);
  bool IsSeparator() const { return mSeparator; }
  void SetSelectOnHover(bool selects) { mSelectOnHover = selects; }

  // The slot for the present state.
  std::int32_t GetItemLook() const;

 protected:
  // Shows the look of the present state.
  virtual void UpdateLook();

  bool mHighlighted = false;
  bool mSelectOnHover = false;
  bool mSeparator = false;
};

// A row with a box that shows a check mark.
class LCheckedListBoxItem : public LListBoxItem {
 public:
  using LListBoxItem::LListBoxItem;

  TFRESULT Initialize() override;
  TFRESULT OnDescriptorApplied() override;
  void Destroy() override;
  // The child "checkBox"; null without one.
  const RCPtr<LControl>& GetCheckBox() const { return mCheckBox; }

  void SetChecked(bool checked);
  bool IsChecked() const { return mChecked; }
  void ShowCheckBox(bool show);

 protected:
  void UpdateLook() override;

  RCPtr<LControl> mCheckBox;
  bool mChecked = false;
};

// A row of a menu: with a text at its far edge that tells the key for it.
class LMenuListBoxItem : public LCheckedListBoxItem {
 public:
  using LCheckedListBoxItem::LCheckedListBoxItem;

  TFRESULT Initialize() override;
  void Destroy() override;
  // The child "hotKeyLabel"; null without one.
  const RCPtr<LControl>& GetHotKeyLabel() const { return mHotKeyLabel; }
  void SetHotKeyText(const String& text);

 protected:
  void UpdateLook() override;

  RCPtr<LControl> mHotKeyLabel;
};

}  // namespace TF
