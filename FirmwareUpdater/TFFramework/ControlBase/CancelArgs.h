#pragma once

#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// Travels with a notification that asks before something happens.
class LCancelArgs : public virtual LRefCountedObject {
 public:
  bool mCancel = false;  // A receiver that is against it sets true.
};

}  // namespace TF
