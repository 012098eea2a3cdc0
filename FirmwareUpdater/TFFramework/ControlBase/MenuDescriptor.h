#pragma once

#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// What a menu holds.
class LMenuDescriptor : public virtual LRefCountedObject {};

}  // namespace TF
