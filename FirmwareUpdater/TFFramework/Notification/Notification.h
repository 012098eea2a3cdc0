#pragma once

#include <atomic>
#include <cstdint>

#include "TFFramework/Notification/NotificationId.h"
#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

// A message with an id and one optional payload. The receiver converts the payload to the
// class that it expects for the id.
//
// With the cache on, a notification that loses its last holder is kept for the next Create,
// so that a steady stream of notifications takes nothing from the heap. Operations may run on
// any thread; id and payload do not change while somebody holds the notification.
class LNotification : public virtual LRefCountedObject {
 public:
  // A notification with the id of this name, or with this id. Null for a null or empty name.
  static RCPtr<LNotification> Create(const char16_t* nameOrId,
                                     const RCPtr<LRefCountedObject>& data = nullptr);

  // Off at first. Switching it off frees what is kept.
  static void SetCacheEnabled(bool enabled);

  NotificationId GetId() const { return mId; }
  const RCPtr<LRefCountedObject>& GetData() const { return mData; }

  // True from Post until the queue has delivered or discarded it; it cannot be posted again
  // meanwhile.
  bool IsPosted() const { return mPosted.load(std::memory_order_acquire); }

  std::int32_t Release() override;

 private:
  friend class LNotificationQueue;

  LNotification(NotificationId id, const RCPtr<LRefCountedObject>& data) : mId(id), mData(data) {}

  // False when the notification is in a queue already.
  bool MarkPosted() { return !mPosted.exchange(true, std::memory_order_acq_rel); }
  void ClearPosted() { mPosted.store(false, std::memory_order_release); }

  void Recycle();

  NotificationId mId;
  RCPtr<LRefCountedObject> mData;
  std::atomic<bool> mPosted{false};
  std::atomic<bool> mRecycling{false};
};

}  // namespace TF
