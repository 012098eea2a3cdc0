#include <cstdlib>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

TFRESULT LControl::SetFocus(bool) {
  return kFailure;
}

void LControl::SetNotFocusable(bool notFocusable) {
  mNotFocusable = notFocusable;
}

bool LControl::HasFocusableChild() {
  return false;
}

bool LControl::CanTakeFocus() {
  return false;
}

bool LControl::CanLoseFocus() {
  return true;
}

void LControl::LoseFocus() {}

RCPtr<LControl> LControl::GetNextInTabOrder(const RCPtr<LControl>&, bool) {
  return nullptr;
}

}  // namespace TF
