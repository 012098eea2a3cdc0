#include "TFFramework/ControlBase/VisualPartDescriptor.h"

#include "TFFramework/ControlBase/VisualPart.h"

namespace TF {

LVisualPartDescriptor::LVisualPartDescriptor() = default;

LVisualPartDescriptor::~LVisualPartDescriptor() = default;

}  // namespace TF
