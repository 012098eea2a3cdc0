#include "TFFramework/Notification/NotificationCenter.h"

namespace TF {

// The queue's own reference keeps the object while the temporary pointer comes and goes.
LNotificationCenter::LNotificationCenter(const char16_t* name) : mName(name) {
  SetDistributor(RCPtr<LNotificationDistributor>(this));
  AddInternalReferences();
}

TFRESULT LNotificationCenter::ReleaseInternalReferences() {
  NotifyClosing();
  if (Shutdown()) DropInternalReferences();
  return LNotificationQueue::ReleaseInternalReferences();
}

}  // namespace TF
