#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

class LControl;

// Asks the control that answers for the items of a menu how one is to be shown.
//
// Threads: main thread.
class LMenuItemUpdater : public virtual LRefCountedObject {
 public:
  explicit LMenuItemUpdater(LControl& control) : mControl(&control) {}

  // kNothingDone when nobody has anything to say; state is what is to be shown then, too.
  TFRESULT Update(const RCPtr<LMenuDescriptor>& menu, std::int32_t index, const String& identifier,
                  LMenuItemState& state);
  // The control goes.
  void Forget() { mControl = nullptr; }

 private:
  LControl* mControl;
};

}  // namespace TF
