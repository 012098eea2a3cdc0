#pragma once

#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// A picture or a colour that looks are drawn from.
class LVisualPart : public virtual LRefCountedObject {};

}  // namespace TF
