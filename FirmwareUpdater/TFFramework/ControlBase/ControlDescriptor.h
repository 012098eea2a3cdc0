#pragma once

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/ControlBase/SkinDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"
#include "TFFramework/Utilities/Storage/StringTable.h"

namespace TF {

class LControl;
class LControlDescriptor;

// Makes a control of one class, fully built, its children included. The parent may be null.
using ControlCreateFunction = RCPtr<LControl> (*)(const RCPtr<LControl>& parent,
                                                  const RCPtr<LControlDescriptor>& descriptor);

// What a skin says of one control, or the node that holds the controls of a whole skin. Not changed
// after it was read, but for the create function, and for the visibility of a top-level control.
//
// Threads: main thread.
class LControlDescriptor : public virtual LRefCountedObject {
 public:
  LControlDescriptor() = default;
  ~LControlDescriptor() override;

  String mName;
  String mClass;
  LControlDescriptor* mParent = nullptr;  // The enclosing one, or null when there is none any more.
  RCPtrArray<LControlDescriptor, 1, 0> mSubControls;
  RCPtr<LSkinDescriptor> mSkin;                     // Null: neither looks nor a font.
  RCPtr<LLayoutDescriptor> mLayout;                 // Null for the node of a skin.
  RCPtr<LStringTable> mCreateParams;                // May be null.
  ControlCreateFunction mCreateFunction = nullptr;  // Null until it is first needed.
};

}  // namespace TF
