#include "TFFramework/Notification/NotificationClient.h"

namespace TF {

// Counts are brought up to date after the fact, each by what the call itself has added or
// removed. So they come out right whatever other threads register and unregister meanwhile,
// without a lock across calls into a distributor. The client holds itself throughout, and so
// is never taken for one without outside holders while the counts lag behind.

NotificationId LNotificationClient::Register(const RCPtr<LNotificationDistributor>& distributor,
                                             const char16_t* name, std::uint32_t flags) {
  const NotificationId id = GetNotificationID(name);
  if (!distributor || id == nullptr) return nullptr;
  const RCPtr<LNotificationReceiver> self(this);
  if (distributor->RegisterClient(self, id, flags) == kSuccess) {
    AddInternalReferences();
    ++mRegistrationCount;
    CountRegistrations(distributor.Get(), 1);
  }
  return id;
}

TFRESULT LNotificationClient::Unregister(const RCPtr<LNotificationDistributor>& distributor,
                                         NotificationId id) {
  if (mRegistrationCount == 0) return kNothingDone;
  if (!distributor || id == nullptr) return kInvalidArgument;
  const RCPtr<LNotificationReceiver> self(this);
  // The caller's pointer may be a field that a distributor's end empties.
  const RCPtr<LNotificationDistributor> held(distributor.Get());
  const TFRESULT result = held->UnregisterClient(self, id);
  if (result == kSuccess) {
    DropInternalReferences();
    --mRegistrationCount;
    CountRegistrations(held.Get(), -1);
  }
  return result;
}

std::int32_t LNotificationClient::UnregisterAll() {
  const std::int32_t expected = mRegistrationCount.exchange(0);
  if (expected == 0) return 0;
  // At once: with the references gone one by one and still counted as internal, this client
  // would seem to have no outside holder.
  DropInternalReferences(expected);
  const RCPtr<LNotificationReceiver> self(this);
  std::int32_t removed = 0;
  for (const RCPtr<LNotificationDistributor>& distributor : GetDistributors()) {
    const std::int32_t count = distributor->UnregisterClientFromAll(self);
    CountRegistrations(distributor.Get(), -count);
    removed += count;
  }
  // Other threads have added or removed the difference and count it themselves.
  AddInternalReferences(expected - removed);
  mRegistrationCount += expected - removed;
  return removed;
}

void LNotificationClient::OnNotification(const RCPtr<LNotificationDistributor>&,
                                         const RCPtr<LNotification>&) {}

TFRESULT LNotificationClient::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender,
                                                   NotificationId id) {
  return Unregister(sender, id);
}

TFRESULT LNotificationClient::ReleaseInternalReferences() {
  UnregisterAll();
  return LRefCountedObject::ReleaseInternalReferences();
}

// An entry may be missing or negative for a moment, when another thread removes a registration
// that its own thread has not counted yet.
void LNotificationClient::CountRegistrations(LNotificationDistributor* distributor, std::int32_t change) {
  const LightMutexLock lock(mDistributorsMutex);
  std::int32_t index = mDistributors.GetCount() - 1;
  while (index >= 0 && mDistributors.GetAt(index).mDistributor != distributor) --index;
  if (index < 0) {
    index = mDistributors.GetCount();
    mDistributors.Add({distributor, 0});
  }
  mDistributors.GetAt(index).mCount += change;
  if (mDistributors.GetAt(index).mCount == 0) mDistributors.RemoveItems(index, 1);
}

std::vector<RCPtr<LNotificationDistributor>> LNotificationClient::GetDistributors() const {
  const LightMutexLock lock(mDistributorsMutex);
  std::vector<RCPtr<LNotificationDistributor>> distributors;
  for (std::int32_t index = mDistributors.GetCount() - 1; index >= 0; --index) {
    distributors.emplace_back(mDistributors.GetAt(index).mDistributor);
  }
  return distributors;
}

}  // namespace TF
