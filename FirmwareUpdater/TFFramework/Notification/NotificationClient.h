#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/Threads/LightMutex.h"
#include "TFFramework/Utilities/Storage/Array.h"

namespace TF {

// The normal base of a class that wants notifications: a receiver that knows where it is
// registered and gives its registrations up when its last outside holder goes, so that they do
// not keep it alive.
//
// Threads: all operations may run on any thread, also while another thread delivers. A client
// that unregisters on one thread may get a call that another thread has begun.
class LNotificationClient : public LNotificationReceiver {
 public:
  // Registers this client, which must be held by somebody. Gives the id of the name, or null
  // when the distributor or the name is empty. A second registration for one id only brings
  // the flags up to date.
  NotificationId Register(const RCPtr<LNotificationDistributor>& distributor, const char16_t* name,
                          std::uint32_t flags = 0);
  // kSuccess when removed; kNothingDone when this client has no such registration, or none at
  // all; kInvalidArgument for null arguments.
  TFRESULT Unregister(const RCPtr<LNotificationDistributor>& distributor, NotificationId id);
  // Number of registrations removed.
  std::int32_t UnregisterAll();

  // Registrations with all distributors.
  std::int32_t GetRegistrationCount() const { return mRegistrationCount.load(); }

  // Does nothing.
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override;
  // Unregisters.
  TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) override;

  TFRESULT ReleaseInternalReferences() override;

 private:
  // Where this client is registered. The pointer is good as long as the entry is there: each
  // registration holds its distributor, and who adds or removes one holds it meanwhile.
  struct RegisteredDistributor {
    LNotificationDistributor* mDistributor = nullptr;
    std::int32_t mCount = 0;
  };

  void CountRegistrations(LNotificationDistributor* distributor, std::int32_t change);
  std::vector<RCPtr<LNotificationDistributor>> GetDistributors() const;

  std::atomic<std::int32_t> mRegistrationCount{0};
  // Guards mDistributors. A leaf: distributors call in here with their own lock held.
  mutable LightMutex mDistributorsMutex;
  Array<RegisteredDistributor> mDistributors;
};

}  // namespace TF
