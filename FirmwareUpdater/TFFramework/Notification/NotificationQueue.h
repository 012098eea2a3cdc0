#pragma once

#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/Utilities/Storage/RCPtrQueue.h"

namespace TF {

// Stores posted notifications until its owner, on its own thread, sends them through a
// distributor. Order is kept and nothing is dropped.
//
// Threads: Post runs on any thread; Process and Discard run on the owner's thread only.
class LNotificationQueue : public virtual LRefCountedObject {
 public:
  LNotificationQueue();
  ~LNotificationQueue() override;

  // kInvalidArgument for a null notification, or for one that is in a queue already; kFailure
  // without a distributor. A client with kNotifyLatestPostedOnly takes only the notification
  // of an id that was posted last.
  TFRESULT Post(const RCPtr<LNotification>& notification);

  // Sends what is stored at this moment. What a receiver posts meanwhile waits for the next
  // Process, and a Process from within a receiver sends nothing of it. With sendIdle it then
  // sends "NID_IDLE". True when notifications remain. An exception from a receiver goes
  // through; the notifications behind the one it was for stay in the queue.
  bool Process(bool sendIdle);

  // Lets go of everything stored without sending it. True when destructors have posted anew.
  bool Discard();

  // Through which stored notifications are sent; once only. kFailure when there is one
  // already, or after the end of the queue. A null pointer changes nothing.
  TFRESULT SetDistributor(const RCPtr<LNotificationDistributor>& distributor);

  // A receiver that posts a copy of every notification it gets to this queue, for whoever
  // wants to hear another distributor here: register it there, and take it out again with
  // UnregisterClient. It does not unregister itself. Null after the end of the queue.
  RCPtr<LNotificationReceiver> GetPostingReceiver() const;

  TFRESULT ReleaseInternalReferences() override;

 protected:
  // Ends the queue: discards, drops the distributor and the posting receiver. False when that
  // was done before.
  bool Shutdown();

 private:
  class LPostingReceiver;

  RCPtr<LNotificationDistributor> GetDistributor() const;
  void Drain(LNotificationDistributor& distributor);

  // Both on the owner's thread only.
  bool mDraining = false;
  RCPtr<LNotification> mIdleNotification;

  // The lock of all queues guards the ring and these two pointers.
  RCPtrQueue<LNotification, 256, Mutex> mQueue;
  RCPtr<LNotificationDistributor> mDistributor;
  RCPtr<LPostingReceiver> mPostingReceiver;
};

}  // namespace TF
