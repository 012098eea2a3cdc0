#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Notification/NotificationReceiver.h"
#include "TFFramework/Threads/LightMutex.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// One client of one id. The receiver never changes; the rest belongs to the pool's lock.
class LNotificationRegisteredClientInfo : public LRefCountedObject {
 public:
  LNotificationRegisteredClientInfo(const RCPtr<LNotificationReceiver>& receiver, std::uint32_t flags)
      : mReceiver(receiver), mFlags(flags) {}

  const RCPtr<LNotificationReceiver> mReceiver;
  // The notification posted last, for a client that takes no other.
  RCPtr<LNotification> mPending;
  std::uint32_t mFlags;
};

// The clients of one id of a distributor, in the order of their registration, and the place
// where a delivery to them stands. The guarantees of the distributor are kept here. All
// operations may run on any thread; no lock is held while a receiver runs.
class LNotificationClientPool : public LRefCountedObject {
 public:
  explicit LNotificationClientPool(NotificationId id) : mId(id) {}

  NotificationId GetId() const { return mId; }
  std::int32_t GetCount() const;
  // Null for an index out of range.
  RCPtr<LNotificationReceiver> GetReceiverAt(std::int32_t index) const;

  // True for a new entry; a client that has one only gets the new flags.
  bool Add(const RCPtr<LNotificationReceiver>& client, std::uint32_t flags);
  // Null when the client has no entry. The caller lets go of the entry outside all locks.
  RCPtr<LNotificationRegisteredClientInfo> Remove(const LNotificationReceiver* client);
  // Null when the client has no entry.
  RCPtr<LNotificationRegisteredClientInfo> Find(const LNotificationReceiver* client) const;
  bool GetFlags(const LNotificationReceiver* client, std::uint32_t& flags) const;

  // Serves all clients from the last to the first; kNothingDone when there is none.
  TFRESULT Deliver(const RCPtr<LNotificationDistributor>& sender, const RCPtr<LNotification>& notification);

  // Serves the one client at index and gives back the index to go on from, which differs when
  // entries went away meanwhile; the walk goes on with the index below. Gives back index when
  // the client does not take the notification, and the count for an index beyond it.
  std::int32_t SendToClientAt(const RCPtr<LNotificationDistributor>& sender, std::int32_t index,
                              const RCPtr<LNotification>& notification);

  // Makes this the one notification that clients with kNotifyLatestPostedOnly take.
  void SetPending(const RCPtr<LNotification>& notification);

  // Tells every client that its distributor closes. Gives back the entries that it held for
  // that, which the caller lets go outside all locks.
  std::vector<RCPtr<LNotificationRegisteredClientInfo>> NotifyClosing(
      const RCPtr<LNotificationDistributor>& sender);

 private:
  std::int32_t IndexOf(const LNotificationReceiver* client) const;
  RCPtr<LNotificationReceiver> TakeBelow(std::int32_t index, const LNotification* notification);
  void UpdateFlagsMask();

  mutable LightMutex mMutex;
  std::uint32_t mFlagsMask = 0;
  const NotificationId mId;
  RCPtrArray<LNotificationRegisteredClientInfo, 1, 0> mClients;
  std::int32_t mCurrentIndex = 0;
};

}  // namespace TF
