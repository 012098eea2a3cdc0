#include "TFFramework/ControlBase/ControlDescriptor.h"

namespace TF {

LControlDescriptor::~LControlDescriptor() {
  for (const RCPtr<LControlDescriptor>& control : mSubControls) {
    if (control->mParent == this) control->mParent = nullptr;
  }
}

}  // namespace TF
