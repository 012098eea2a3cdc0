#include "TFFramework/Notification/Notification.h"

#include <exception>

#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

namespace {

// Grows and shrinks in steps of so many notifications, so that the array under a steady
// stream stays where it is.
constexpr int kCacheStep = 256;
using CacheArray = RCPtrArray<LNotification, kCacheStep, kCacheStep>;

// Notifications that nobody holds, under the notification mutex. The switch is also read
// without it, where a stale answer costs one object at most.
struct NotificationCache {
  std::atomic<bool> mEnabled{false};
  CacheArray mFree;
};

NotificationCache& GetCache() {
  static NotificationCache& cache = *new NotificationCache;
  return cache;
}

RCPtr<LNotification> TakeFromCache() {
  RCPtr<LNotification> taken;
  CacheArray& free = GetCache().mFree;
  if (free.GetCount() > 0) free.RemoveLast(taken);
  return taken;
}

}  // namespace

RCPtr<LNotification> LNotification::Create(const char16_t* nameOrId, const RCPtr<LRefCountedObject>& data) {
  RCPtr<LNotification> notification;
  NotificationId id = nullptr;
  {
    const MutexLock lock(GetNotificationMutex());
    id = GetNotificationID(nameOrId);
    if (id == nullptr) return nullptr;
    notification = TakeFromCache();
  }
  if (!notification) return RCPtr<LNotification>(new LNotification(id, data));
  notification->mId = id;
  notification->mData = data;
  return notification;
}

void LNotification::SetCacheEnabled(bool enabled) {
  CacheArray freed;
  const MutexLock lock(GetNotificationMutex());
  GetCache().mEnabled.store(enabled, std::memory_order_relaxed);
  if (enabled) return;
  RCPtr<LNotification> taken;
  while ((taken = TakeFromCache())) freed.Add(taken);
}

std::int32_t LNotification::Release() {
  if (GetRefCount() == 1 && !IsPosted() && !mRecycling.exchange(true, std::memory_order_acq_rel)) {
    Recycle();
    mRecycling.store(false, std::memory_order_release);
  }
  return LRefCountedObject::Release();
}

// Runs for the last holder. The cache's reference keeps the object alive through the release
// that follows.
void LNotification::Recycle() {
  mData = nullptr;
  try {
    NotificationCache& cache = GetCache();
    if (!cache.mEnabled.load(std::memory_order_relaxed)) return;
    const MutexLock lock(GetNotificationMutex());
    if (cache.mEnabled.load(std::memory_order_relaxed)) cache.mFree.Add(RCPtr<LNotification>(this));
  } catch (const std::exception&) {
    // Without memory for its slot the notification ends like any other object: a release
    // cannot fail.
    return;
  }
}

}  // namespace TF
