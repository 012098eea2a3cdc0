#include "TFFramework/ControlBase/Control.h"

namespace TF {

void LControl::TakeHotKeys() {
  mHotKeys.clear();
}

void LControl::KeyDown(const RCPtr<LKeyParam>&) {}

TFRESULT LControl::OnKeyDown(const RCPtr<LKeyParam>&) {
  return kNothingDone;
}

TFRESULT LControl::OnSiblingKey(const RCPtr<LKeyParam>&) {
  return kNothingDone;
}

void LControl::OnChildKeyDown(const RCPtr<LKeyParam>&) {}
void LControl::OnChildTabKey(const RCPtr<LKeyParam>&) {}

void LControl::CollectKeyClients(const RCPtr<LKeyParam>&, RCPtrArray<LNotificationReceiver>&,
                                 std::vector<std::int32_t>&) {}

TFRESULT LControl::HandleSiblingKey(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  return kNothingDone;
}

}  // namespace TF
