#include "TFFramework/Notification/NotificationQueue.h"

#include <utility>

namespace TF {

namespace {

constexpr std::int32_t kFirstSlots = 256;

// One lock for all queues; a leaf. Its holders do nothing but array and index work.
Mutex& GetQueueMutex() {
  static Mutex& mutex = *new Mutex;
  return mutex;
}

// Keeps the mark up for a scope, however it ends.
class ScopedMark {
 public:
  explicit ScopedMark(bool& mark) : mMark(mark) { mMark = true; }
  ScopedMark(const ScopedMark&) = delete;
  ScopedMark& operator=(const ScopedMark&) = delete;
  ~ScopedMark() { mMark = false; }

 private:
  bool& mMark;
};

}  // namespace

// Turns every notification it gets into a posted one.
class LNotificationQueue::LPostingReceiver : public LNotificationReceiver {
 public:
  explicit LPostingReceiver(LNotificationQueue* queue) : mQueue(queue) {}

  void OnNotification(const RCPtr<LNotificationDistributor>&,
                      const RCPtr<LNotification>& notification) override {
    const RCPtr<LNotificationQueue> queue = GetQueue();
    if (queue) queue->Post(LNotification::Create(notification->GetId(), notification->GetData()));
  }
  TFRESULT OnDistributorClosing(const RCPtr<LNotificationDistributor>&, NotificationId) override {
    return kFailure;
  }

  // What the receiver held.
  RCPtr<LNotificationQueue> Detach() {
    const MutexLock lock(GetQueueMutex());
    return std::move(mQueue);
  }

 private:
  RCPtr<LNotificationQueue> GetQueue() const {
    const MutexLock lock(GetQueueMutex());
    return mQueue;
  }

  RCPtr<LNotificationQueue> mQueue;
};

// The posting receiver comes last: from there on, references to this object exist, and the
// count must not fall to 0 before the first outside holder comes.
LNotificationQueue::LNotificationQueue()
    : mIdleNotification(LNotification::Create(u"NID_IDLE")),
      mQueue(kFirstSlots, &GetQueueMutex()),
      mPostingReceiver(MakeRC<LPostingReceiver>(this)) {
  AddInternalReferences();
}

LNotificationQueue::~LNotificationQueue() {
  if (mPostingReceiver) {
    // The constructor of a derived class has failed. The own reference keeps those that now
    // go from being the last.
    DropInternalReferences(GetInternalRefCount());
    AddRef();
    AddInternalReferences();
    Shutdown();
  }
  Discard();
}

TFRESULT LNotificationQueue::Post(const RCPtr<LNotification>& notification) {
  if (!notification || notification->IsPosted()) return kInvalidArgument;
  const RCPtr<LNotificationDistributor> distributor = GetDistributor();
  if (!distributor) return kFailure;
  if (!notification->MarkPosted()) return kInvalidArgument;
  const RCPtr<LNotificationClientPool> pool = distributor->FindPool(notification->GetId());
  if (pool) pool->SetPending(notification);
  mQueue.Enqueue(notification);
  return kSuccess;
}

bool LNotificationQueue::Process(bool sendIdle) {
  // A receiver may drop the queue.
  const RCPtr<LNotificationQueue> self(this);
  const RCPtr<LNotificationDistributor> distributor = GetDistributor();
  if (distributor) {
    if (!mDraining) Drain(*distributor);
    if (sendIdle) distributor->Send(mIdleNotification);
  }
  return !mQueue.IsEmpty();
}

bool LNotificationQueue::Discard() {
  for (std::int32_t left = mQueue.GetCount(); left > 0 && !mQueue.IsEmpty(); --left) {
    mQueue.Dequeue()->ClearPosted();
  }
  return !mQueue.IsEmpty();
}

TFRESULT LNotificationQueue::SetDistributor(const RCPtr<LNotificationDistributor>& distributor) {
  const MutexLock lock(GetQueueMutex());
  if (mDistributor || !mPostingReceiver) return kFailure;
  mDistributor = distributor;
  return kSuccess;
}

RCPtr<LNotificationReceiver> LNotificationQueue::GetPostingReceiver() const {
  const MutexLock lock(GetQueueMutex());
  return mPostingReceiver;
}

TFRESULT LNotificationQueue::ReleaseInternalReferences() {
  Shutdown();
  return LRefCountedObject::ReleaseInternalReferences();
}

bool LNotificationQueue::Shutdown() {
  Discard();
  RCPtr<LNotificationDistributor> distributor;
  RCPtr<LPostingReceiver> receiver;
  {
    const MutexLock lock(GetQueueMutex());
    distributor = std::move(mDistributor);
    receiver = std::move(mPostingReceiver);
  }
  if (!receiver) return false;
  // Before the reference goes, so that no other holder is taken for the last one.
  DropInternalReferences();
  receiver->Detach();
  return true;
}

RCPtr<LNotificationDistributor> LNotificationQueue::GetDistributor() const {
  const MutexLock lock(GetQueueMutex());
  return mDistributor;
}

void LNotificationQueue::Drain(LNotificationDistributor& distributor) {
  // A notification is free to be posted again when it has been delivered, or has failed to be.
  struct Delivery {
    ~Delivery() { mNotification->ClearPosted(); }
    const RCPtr<LNotification> mNotification;
  };
  const ScopedMark draining(mDraining);
  // A receiver may have discarded the rest.
  for (std::int32_t left = mQueue.GetCount(); left > 0 && !mQueue.IsEmpty(); --left) {
    const Delivery delivery{mQueue.Dequeue()};
    distributor.Send(delivery.mNotification);
  }
}

}  // namespace TF
