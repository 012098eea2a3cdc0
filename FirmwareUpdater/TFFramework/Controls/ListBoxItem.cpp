#include "TFFramework/Controls/ListBoxItem.h"

namespace TF {

namespace {

// The first of three slots: normal, with the mouse over it, pressed.
constexpr std::int32_t kPlain = 0;
constexpr std::int32_t kHighlighted = 3;
constexpr std::int32_t kDisabledItem = 6;
constexpr std::int32_t kSeparatorLook = 13;
// From a slot to the one for a selected record.
constexpr std::int32_t kSelectedOffset = 7;
// Of a check box.
constexpr std::int32_t kUnchecked = 0;
constexpr std::int32_t kChecked = 7;
constexpr std::int32_t kCheckedHover = 8;
constexpr double kSelectedValue = 0.5;

}  // namespace

TFRESULT LListBoxItem::OnDescriptorApplied() {
  SetNotFocusable(true);
  return LControl::OnDescriptorApplied();
}

void LListBoxItem::OnConditionChange(const RCPtr<LConditionsParam>& conditions) {
  LControl::OnConditionChange(conditions);
  UpdateLook();
}

void LListBoxItem::OnValueChange() {
  LControl::OnValueChange();
  UpdateLook();
}

void LListBoxItem::SetHighlighted(bool highlighted) {
  if (mHighlighted == highlighted) return;
  mHighlighted = highlighted;
  UpdateLook();
}

void LListBoxItem::SetSeparator(bool separator) {
  if (mSeparator == separator) return;
  mSeparator = separator;
  if (separator) SetText(String());
  UpdateLook();
  // The look of a separator may leave the text out, and the frame goes by that.
  Relayout();
}

std::int32_t LListBoxItem::GetItemLook() const {
  if (mSeparator) return kSeparatorLook;
  const std::int32_t selected = mValue >= kSelectedValue ? kSelectedOffset : 0;
  if (!IsEnabled(true)) return kDisabledItem + selected;
  const bool isOver = mHover || mChildHover;
  const bool isDragged = mHasCapture && mLeftDrag;
  std::int32_t state = 0;
  if (isDragged) {
    state = mHover ? 2 : 1;
  } else if (isOver && !mHasCapture) {
    state = 1;
  }
  return (mHighlighted ? kHighlighted : kPlain) + state + selected;
}

void LListBoxItem::UpdateLook() {
  SetActiveLook(GetItemLook(), true);
  InvalidateFrame();
}

TFRESULT LCheckedListBoxItem::Initialize() {
  const TFRESULT result = LListBoxItem::Initialize();
  if (Failed(result)) return result;
  mCheckBox = FindChild(u"checkBox");
  UpdateLook();
  return result;
}

TFRESULT LCheckedListBoxItem::OnDescriptorApplied() {
  if (mCheckBox) {
    mCheckBox->SetNotFocusable(true);
    mCheckBox->SetUseParentToolTip(true);
  }
  return LListBoxItem::OnDescriptorApplied();
}

void LCheckedListBoxItem::SetChecked(bool checked) {
  if (mChecked == checked) return;
  mChecked = checked;
  UpdateLook();
}

void LCheckedListBoxItem::ShowCheckBox(bool show) {
  if (mCheckBox) mCheckBox->SetVisible(show);
}

void LCheckedListBoxItem::UpdateLook() {
  LListBoxItem::UpdateLook();
  if (!mCheckBox) return;
  // A box that is a button goes by its value when its own conditions change.
  mCheckBox->SetValue(mChecked ? 1 : 0);
  const std::int32_t checked = mHover ? kCheckedHover : kChecked;
  mCheckBox->SetActiveLook(mChecked ? checked : kUnchecked, true);
}

void LCheckedListBoxItem::Destroy() {
  LListBoxItem::Destroy();
  mCheckBox = nullptr;
}

TFRESULT LMenuListBoxItem::Initialize() {
  mHotKeyLabel = FindChild(u"hotKeyLabel");
  return LCheckedListBoxItem::Initialize();
}

void LMenuListBoxItem::SetHotKeyText(const String& text) {
  if (mHotKeyLabel) mHotKeyLabel->SetText(text);
}

// The key has the colour of the text beside it.
void LMenuListBoxItem::UpdateLook() {
  LCheckedListBoxItem::UpdateLook();
  const RCPtr<LLook> own = GetLook(kActiveLook);
  const RCPtr<LLook> label = mHotKeyLabel ? mHotKeyLabel->GetLook(kActiveLook) : RCPtr<LLook>();
  if (!own || !label || !own->GetDescriptor().TextForegroundPart) return;
  label->SetTextForeground(own->GetDescriptor().TextForegroundPart);
  mHotKeyLabel->InvalidateFrame();
}

void LMenuListBoxItem::Destroy() {
  LCheckedListBoxItem::Destroy();
  mHotKeyLabel = nullptr;
}

}  // namespace TF
