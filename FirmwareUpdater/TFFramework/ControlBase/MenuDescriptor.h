#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LMenuItemDescriptor;

// How an item is to be shown at the moment.
struct LMenuItemState {
  bool mEnabled = false;
  bool mChecked = false;
  String mText;
};

// What a menu holds. Menus are data: a popup shows them. index counts from 0; where items are added, one that
// is not in the list stands for its end.
//
// Threads: main thread.
class LMenuDescriptor : public virtual LTaggableObject {
 public:
  LMenuDescriptor();
  ~LMenuDescriptor() override;

  // kInvalidArgument for null, or for what has a menu already.
  TFRESULT AddItem(std::int32_t index, const RCPtr<LMenuItemDescriptor>& item);
  TFRESULT AddItem(std::int32_t index, const String& text, const String& identifier, bool enabled,
                   bool checked);
  TFRESULT AddSeparator(std::int32_t index);
  // kInvalidArgument for an item that is not there, whose state is off and empty.
  TFRESULT GetItemState(std::int32_t index, LMenuItemState& state) const;
  // Null for one that is not there.
  RCPtr<LMenuItemDescriptor> GetItem(std::int32_t index) const;
  std::int32_t GetItemCount() const { return mItems.GetCount(); }
  // Takes over copies of all items and what is below them, in place of its own.
  void CopyFrom(const LMenuDescriptor& menu);
  // The menu that holds this one; null for a top menu, or when that has gone.
  LMenuDescriptor* GetParentMenu() const { return mParentMenu; }

 private:
  void Clear();

  RCPtrArray<LMenuItemDescriptor, 1, 0> mItems;
  LMenuDescriptor* mParentMenu = nullptr;
};

// An item, or with items of its own a submenu.
class LMenuItemDescriptor : public LMenuDescriptor {
 public:
  String mText;
  String mHotKeyText;  // At the far edge; empty for none.
  String mToolTip;     // For the status bar; empty for none.
  String mIdentifier;  // Of the notification that choosing it sends.
  bool mEnabled = true;
  bool mChecked = false;
  bool mSeparator = false;
};

}  // namespace TF
