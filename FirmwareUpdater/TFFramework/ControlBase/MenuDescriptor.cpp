#include "TFFramework/ControlBase/MenuDescriptor.h"

namespace TF {

LMenuDescriptor::LMenuDescriptor() = default;

LMenuDescriptor::~LMenuDescriptor() {
  Clear();
}

// Somebody else may hold an item longer than its menu lives.
void LMenuDescriptor::Clear() {
  for (const RCPtr<LMenuItemDescriptor>& item : mItems) item->mParentMenu = nullptr;
  mItems.SetCount(0);
}

TFRESULT LMenuDescriptor::AddItem(std::int32_t index, const RCPtr<LMenuItemDescriptor>& item) {
  if (!item || item->mParentMenu) return kInvalidArgument;
  for (const LMenuDescriptor* above = this; above; above = above->mParentMenu) {
    if (item.Get() == above) return kInvalidArgument;
  }
  if (index < 0 || index >= mItems.GetCount()) {
    mItems.Add(item);
  } else {
    mItems.InsertAt(index, item);
  }
  item->mParentMenu = this;
  return kSuccess;
}

TFRESULT LMenuDescriptor::AddItem(std::int32_t index, const String& text, const String& identifier,
                                  bool enabled, bool checked) {
  const auto item = MakeRC<LMenuItemDescriptor>();
  item->mText = text;
  item->mIdentifier = identifier;
  item->mEnabled = enabled;
  item->mChecked = checked;
  return AddItem(index, item);
}

TFRESULT LMenuDescriptor::AddSeparator(std::int32_t index) {
  const auto item = MakeRC<LMenuItemDescriptor>();
  item->mSeparator = true;
  return AddItem(index, item);
}

TFRESULT LMenuDescriptor::GetItemState(std::int32_t index, LMenuItemState& state) const {
  state = LMenuItemState();
  const RCPtr<LMenuItemDescriptor> item = GetItem(index);
  if (!item) return kInvalidArgument;
  state = {item->mEnabled, item->mChecked, item->mText};
  return kSuccess;
}

RCPtr<LMenuItemDescriptor> LMenuDescriptor::GetItem(std::int32_t index) const {
  return index >= 0 && index < mItems.GetCount() ? mItems[index] : RCPtr<LMenuItemDescriptor>();
}

void LMenuDescriptor::CopyFrom(const LMenuDescriptor& menu) {
  if (&menu == this) return;
  RCPtrArray<LMenuItemDescriptor, 1, 0> copies;
  for (const RCPtr<LMenuItemDescriptor>& item : menu.mItems) {
    const auto copy = MakeRC<LMenuItemDescriptor>();
    copy->mText = item->mText;
    copy->mHotKeyText = item->mHotKeyText;
    copy->mToolTip = item->mToolTip;
    copy->mIdentifier = item->mIdentifier;
    copy->mEnabled = item->mEnabled;
    copy->mChecked = item->mChecked;
    copy->mSeparator = item->mSeparator;
    copy->CopyFrom(*item);
    copies.Add(copy);
  }
  Clear();
  for (const RCPtr<LMenuItemDescriptor>& copy : copies) AddItem(-1, copy);
}

}  // namespace TF
