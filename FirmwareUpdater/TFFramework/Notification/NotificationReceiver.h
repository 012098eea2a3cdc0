#pragma once

#include "TFFramework/Notification/NotificationId.h"
#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

class LNotification;
class LNotificationDistributor;

// Takes the notifications of the distributors that it is registered with. Whoever calls an
// operation here holds this receiver and both arguments for as long as the call takes.
class LNotificationReceiver : public virtual LRefCountedObject {
 public:
  // Runs on the thread that sends.
  virtual void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                              const RCPtr<LNotification>& notification) = 0;

  // The distributor comes to its end. Called once for each registration; a receiver
  // unregisters itself here, as the distributor lives on as long as it has registrations.
  virtual TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) = 0;
};

}  // namespace TF
