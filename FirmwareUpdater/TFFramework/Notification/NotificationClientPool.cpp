#include "TFFramework/Notification/NotificationClientPool.h"

#include <algorithm>
#include <utility>

#include "TFFramework/Notification/NotificationDistributor.h"

namespace TF {

using ClientInfo = LNotificationRegisteredClientInfo;
using Pool = LNotificationClientPool;

namespace {

// True when the client takes this notification. One that takes posted ones only takes each
// of them once.
bool Accept(ClientInfo& client, const LNotification* notification) {
  if ((client.mFlags & kNotifyLatestPostedOnly) == 0) return true;
  if (client.mPending != notification) return false;
  // The sender holds it too, so that nothing ends here, under the pool's lock.
  client.mPending = nullptr;
  return true;
}

}  // namespace

std::int32_t Pool::GetCount() const {
  const LightMutexLock lock(mMutex);
  return mClients.GetCount();
}

RCPtr<LNotificationReceiver> Pool::GetReceiverAt(std::int32_t index) const {
  const LightMutexLock lock(mMutex);
  if (index < 0 || index >= mClients.GetCount()) return nullptr;
  return mClients.GetAt(index)->mReceiver;
}

bool Pool::Add(const RCPtr<LNotificationReceiver>& client, std::uint32_t flags) {
  const LightMutexLock lock(mMutex);
  const std::int32_t index = IndexOf(client.Get());
  if (index < 0) {
    mClients.Add(MakeRC<ClientInfo>(client, flags));
    mFlagsMask |= flags;
    return true;
  }
  mClients.GetAt(index)->mFlags = flags;
  UpdateFlagsMask();
  return false;
}

RCPtr<ClientInfo> Pool::Remove(const LNotificationReceiver* client) {
  RCPtr<ClientInfo> removed;
  const LightMutexLock lock(mMutex);
  const std::int32_t index = IndexOf(client);
  if (index < 0) return removed;
  mClients.RemoveItem(index, removed);
  if (index < mCurrentIndex) --mCurrentIndex;
  UpdateFlagsMask();
  return removed;
}

RCPtr<ClientInfo> Pool::Find(const LNotificationReceiver* client) const {
  const LightMutexLock lock(mMutex);
  const std::int32_t index = IndexOf(client);
  return index < 0 ? RCPtr<ClientInfo>() : mClients.GetAt(index);
}

bool Pool::GetFlags(const LNotificationReceiver* client, std::uint32_t& flags) const {
  const LightMutexLock lock(mMutex);
  const std::int32_t index = IndexOf(client);
  if (index < 0) return false;
  flags = mClients.GetAt(index)->mFlags;
  return true;
}

TFRESULT Pool::Deliver(const RCPtr<LNotificationDistributor>& sender,
                       const RCPtr<LNotification>& notification) {
  RCPtr<LNotificationReceiver> receiver;
  std::int32_t index = 0;
  {
    const LightMutexLock lock(mMutex);
    if (mClients.GetCount() == 0) return kNothingDone;
    receiver = TakeBelow(mClients.GetCount(), notification.Get());
    index = mCurrentIndex;
  }
  while (receiver) {
    receiver->OnNotification(sender, notification);
    // Let go before the place is read again: the end of a receiver may unregister others.
    receiver = nullptr;
    const LightMutexLock lock(mMutex);
    // Never up again, when a nested delivery has ended early.
    receiver = TakeBelow(std::min(index, mCurrentIndex), notification.Get());
    index = mCurrentIndex;
  }
  return kSuccess;
}

std::int32_t Pool::SendToClientAt(const RCPtr<LNotificationDistributor>& sender, std::int32_t index,
                                  const RCPtr<LNotification>& notification) {
  RCPtr<LNotificationReceiver> receiver;
  {
    const LightMutexLock lock(mMutex);
    if (index < 0) return index;
    if (index >= mClients.GetCount()) return mClients.GetCount();
    ClientInfo& client = *mClients.GetAt(index);
    if (!Accept(client, notification.Get())) return index;
    mCurrentIndex = index;
    receiver = client.mReceiver;
  }
  receiver->OnNotification(sender, notification);
  receiver = nullptr;
  const LightMutexLock lock(mMutex);
  return mCurrentIndex;
}

void Pool::SetPending(const RCPtr<LNotification>& notification) {
  std::vector<RCPtr<LNotification>> superseded;
  const LightMutexLock lock(mMutex);
  if ((mFlagsMask & kNotifyLatestPostedOnly) == 0) return;
  for (std::int32_t index = mClients.GetCount() - 1; index >= 0; --index) {
    ClientInfo& client = *mClients.GetAt(index);
    if ((client.mFlags & kNotifyLatestPostedOnly) == 0) continue;
    superseded.push_back(std::exchange(client.mPending, notification));
  }
}

std::vector<RCPtr<ClientInfo>> Pool::NotifyClosing(const RCPtr<LNotificationDistributor>& sender) {
  std::vector<RCPtr<ClientInfo>> entries;
  {
    const LightMutexLock lock(mMutex);
    for (std::int32_t index = mClients.GetCount() - 1; index >= 0; --index) {
      entries.push_back(mClients.GetAt(index));
    }
  }
  for (const RCPtr<ClientInfo>& entry : entries) {
    // A client called before may have unregistered this one.
    if (Find(entry->mReceiver.Get()) == entry) entry->mReceiver->OnDistributorClosing(sender, mId);
  }
  return entries;
}

std::int32_t Pool::IndexOf(const LNotificationReceiver* client) const {
  std::int32_t index = mClients.GetCount() - 1;
  while (index >= 0 && mClients.GetAt(index)->mReceiver != client) --index;
  return index;
}

// The next client below index that takes the notification; the delivery then stands there.
// Finding it and moving the place are one step under the lock, so that a removal on another
// thread comes before or after it. Null at the end of the list.
RCPtr<LNotificationReceiver> Pool::TakeBelow(std::int32_t index, const LNotification* notification) {
  for (index = std::min(index, mClients.GetCount()) - 1; index >= 0; --index) {
    ClientInfo& client = *mClients.GetAt(index);
    if (!Accept(client, notification)) continue;
    mCurrentIndex = index;
    return client.mReceiver;
  }
  return nullptr;
}

void Pool::UpdateFlagsMask() {
  mFlagsMask = 0;
  for (std::int32_t index = 0; index < mClients.GetCount(); ++index) {
    mFlagsMask |= mClients.GetAt(index)->mFlags;
  }
}

}  // namespace TF
