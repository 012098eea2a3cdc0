#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Notification/NotificationClientPool.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// Registration flag: the client takes only the most recently posted notification of the id,
// and none that is sent without having been posted. For clients of ids that are posted on the
// thread that drains the queue.
inline constexpr std::uint32_t kNotifyLatestPostedOnly = 1;

// Delivers notifications to the clients registered for their id.
//
// Order: the client registered last is served first.
//
// Changes during a delivery, by a receiver or by another thread:
// - A client that is registered meanwhile does not get the running notification, but the next.
// - A client that is unregistered before its turn does not get it.
// - Whoever comes or goes, every other client gets it exactly once.
// - A receiver may drop the last reference to itself, to other clients and to the distributor.
//   Receiver, distributor and notification are held until its call has ended.
// - An exception from a receiver ends the delivery and goes on to the sender.
//
// Nested: a receiver may send again, on this distributor and id too. A nested delivery of the
// same id moves the place that both share: when it has ended, the outer one goes on below the
// client that the nested one served last, so clients further down miss the outer
// notification. No client gets the outer notification twice.
//
// Lifetime: every registration keeps distributor and receiver alive, and counts as an internal
// reference of both. The distributor goes when its last outside holder and its last
// registration have gone.
//
// Threads: all operations may run on any thread. Receivers run on the sender's thread, without
// a lock held, except that NotifyClosing holds the distributor's own (recursive) lock. One id
// of one distributor is to be sent by one thread at a time: two deliveries of one id at once
// are safe, but disturb each other like nested ones.
class LNotificationDistributor : public virtual LRefCountedObject {
 public:
  using LNotificationRegisteredClientInfo = TF::LNotificationRegisteredClientInfo;
  using LNotificationClientPool = TF::LNotificationClientPool;

  LNotificationDistributor();
  ~LNotificationDistributor() override;

  // kInvalidArgument for a null notification, kNothingDone when nobody is registered for its id.
  TFRESULT Send(const RCPtr<LNotification>& notification);

  // For receivers that are no LNotificationClient; clients go through their own Register and
  // Unregister, which keep their side of the count.
  //
  // RegisterClient: kInvalidArgument for a null client; kNothingDone for an empty name, or when
  // the client was registered already and only its flags were brought up to date.
  TFRESULT RegisterClient(const RCPtr<LNotificationReceiver>& client, const char16_t* name,
                          std::uint32_t flags);
  // kSuccess when removed, kNothingDone when not found, kInvalidArgument for null arguments.
  TFRESULT UnregisterClient(const RCPtr<LNotificationReceiver>& client, NotificationId id);
  // Number of ids from which the client was removed.
  std::int32_t UnregisterClientFromAll(const RCPtr<LNotificationReceiver>& client);

  // True when registered for any id.
  bool IsRegistered(const RCPtr<LNotificationReceiver>& client) const;
  // kFailure when the client is not registered for this name; flags stay as they are then.
  TFRESULT GetRegisteredFlags(const RCPtr<LNotificationReceiver>& client, const char16_t* name,
                              std::uint32_t& flags) const;

  // Calls OnDistributorClosing of every registered client, once for each of its registrations.
  void NotifyClosing();

  // The clients of one id, for a distributor that chooses its receivers one by one. Null when
  // nobody has ever registered for the id.
  RCPtr<LNotificationClientPool> FindPool(NotificationId id) const;

  // All distributors of the process that have a client at this moment.
  static std::vector<RCPtr<LNotificationDistributor>> GetActiveDistributors();

 private:
  LNotificationClientPool* PoolOf(NotificationId id) const;
  LNotificationClientPool& PoolFor(NotificationId id);
  RCPtr<LNotificationRegisteredClientInfo> RemoveClient(const RCPtr<LNotificationReceiver>& client,
                                                        LNotificationClientPool& pool);
  void CountClient();
  void UncountClient();

  mutable Mutex mMutex;
  RCPtrArray<LNotificationClientPool, 1, 0> mPools;
  std::int32_t mClientCount = 0;
};

}  // namespace TF
