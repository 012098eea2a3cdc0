#include "TFFramework/Notification/NotificationDistributor.h"

#include <utility>

namespace TF {

namespace {

// Every distributor with a client. The list keeps them alive. Its lock is a leaf.
struct ActiveDistributors {
  Mutex mMutex;
  RCPtrArray<LNotificationDistributor, 1, 0> mDistributors;
};

ActiveDistributors& GetActive() {
  static ActiveDistributors& active = *new ActiveDistributors;
  return active;
}

void AddActive(LNotificationDistributor* distributor) {
  ActiveDistributors& active = GetActive();
  const MutexLock lock(active.mMutex);
  active.mDistributors.Add(RCPtr<LNotificationDistributor>(distributor));
}

RCPtr<LNotificationDistributor> RemoveActive(const LNotificationDistributor* distributor) {
  RCPtr<LNotificationDistributor> removed;
  ActiveDistributors& active = GetActive();
  const MutexLock lock(active.mMutex);
  for (std::int32_t index = active.mDistributors.GetCount() - 1; index >= 0; --index) {
    if (active.mDistributors.GetAt(index) != distributor) continue;
    active.mDistributors.RemoveItem(index, removed);
    break;
  }
  return removed;
}

}  // namespace

LNotificationDistributor::LNotificationDistributor() = default;
LNotificationDistributor::~LNotificationDistributor() = default;

TFRESULT LNotificationDistributor::Send(const RCPtr<LNotification>& notification) {
  if (!notification) return kInvalidArgument;
  LNotificationClientPool* pool = PoolOf(notification->GetId());
  if (pool == nullptr) return kNothingDone;
  // A receiver may drop the distributor, which has the pool, or empty the caller's pointer.
  return pool->Deliver(RCPtr<LNotificationDistributor>(this), RCPtr<LNotification>(notification));
}

TFRESULT LNotificationDistributor::RegisterClient(const RCPtr<LNotificationReceiver>& client,
                                                  const char16_t* name, std::uint32_t flags) {
  if (!client) return kInvalidArgument;
  const NotificationId id = GetNotificationID(name);
  if (id == nullptr) return kNothingDone;
  const MutexLock lock(mMutex);
  if (!PoolFor(id).Add(client, flags)) return kNothingDone;
  CountClient();
  return kSuccess;
}

TFRESULT LNotificationDistributor::UnregisterClient(const RCPtr<LNotificationReceiver>& client,
                                                    NotificationId id) {
  if (!client || id == nullptr) return kInvalidArgument;
  // What may end here, ends after the lock has gone.
  const RCPtr<LNotificationDistributor> self(this);
  RCPtr<LNotificationRegisteredClientInfo> removed;
  const MutexLock lock(mMutex);
  LNotificationClientPool* pool = PoolOf(id);
  if (pool != nullptr) removed = RemoveClient(client, *pool);
  return removed ? kSuccess : kNothingDone;
}

std::int32_t LNotificationDistributor::UnregisterClientFromAll(const RCPtr<LNotificationReceiver>& client) {
  if (!client) return 0;
  const RCPtr<LNotificationDistributor> self(this);
  std::vector<RCPtr<LNotificationRegisteredClientInfo>> removed;
  const MutexLock lock(mMutex);
  for (std::int32_t index = mPools.GetCount() - 1; index >= 0; --index) {
    RCPtr<LNotificationRegisteredClientInfo> entry = RemoveClient(client, *mPools.GetAt(index));
    if (entry) removed.push_back(std::move(entry));
  }
  return static_cast<std::int32_t>(removed.size());
}

bool LNotificationDistributor::IsRegistered(const RCPtr<LNotificationReceiver>& client) const {
  const MutexLock lock(mMutex);
  for (std::int32_t index = mPools.GetCount() - 1; index >= 0; --index) {
    if (mPools.GetAt(index)->Find(client.Get())) return true;
  }
  return false;
}

TFRESULT LNotificationDistributor::GetRegisteredFlags(const RCPtr<LNotificationReceiver>& client,
                                                      const char16_t* name, std::uint32_t& flags) const {
  const RCPtr<LNotificationClientPool> pool = FindPool(GetNotificationID(name));
  return pool && pool->GetFlags(client.Get(), flags) ? kSuccess : kFailure;
}

void LNotificationDistributor::NotifyClosing() {
  const RCPtr<LNotificationDistributor> self(this);
  std::vector<std::vector<RCPtr<LNotificationRegisteredClientInfo>>> called;
  const MutexLock lock(mMutex);
  for (std::int32_t index = mPools.GetCount() - 1; index >= 0; --index) {
    called.push_back(mPools.GetAt(index)->NotifyClosing(self));
  }
}

RCPtr<LNotificationClientPool> LNotificationDistributor::FindPool(NotificationId id) const {
  return RCPtr<LNotificationClientPool>(PoolOf(id));
}

std::vector<RCPtr<LNotificationDistributor>> LNotificationDistributor::GetActiveDistributors() {
  ActiveDistributors& active = GetActive();
  std::vector<RCPtr<LNotificationDistributor>> distributors;
  const MutexLock lock(active.mMutex);
  distributors.reserve(static_cast<std::size_t>(active.mDistributors.GetCount()));
  for (std::int32_t index = 0; index < active.mDistributors.GetCount(); ++index) {
    distributors.push_back(active.mDistributors.GetAt(index));
  }
  return distributors;
}

// Pools stay until the distributor goes, so the plain pointer holds beyond the lock.
LNotificationClientPool* LNotificationDistributor::PoolOf(NotificationId id) const {
  const MutexLock lock(mMutex);
  for (std::int32_t index = mPools.GetCount() - 1; index >= 0; --index) {
    LNotificationClientPool* pool = mPools.GetAt(index).Get();
    if (pool->GetId() == id) return pool;
  }
  return nullptr;
}

LNotificationClientPool& LNotificationDistributor::PoolFor(NotificationId id) {
  LNotificationClientPool* pool = PoolOf(id);
  if (pool == nullptr) {
    pool = new LNotificationClientPool(id);
    mPools.Add(RCPtr<LNotificationClientPool>(pool));
  }
  return *pool;
}

// For callers that hold the lock and this distributor.
RCPtr<LNotificationRegisteredClientInfo> LNotificationDistributor::RemoveClient(
    const RCPtr<LNotificationReceiver>& client, LNotificationClientPool& pool) {
  RCPtr<LNotificationRegisteredClientInfo> removed = pool.Remove(client.Get());
  if (removed) UncountClient();
  return removed;
}

// Each entry has one reference to its distributor, and the list of active distributors one
// more. A reference is taken before it counts as internal and stops to count before it goes,
// so that nobody takes an outside holder for the last one meanwhile.
void LNotificationDistributor::CountClient() {
  AddRef();
  AddInternalReferences();
  if (++mClientCount != 1) return;
  AddActive(this);
  AddInternalReferences();
}

void LNotificationDistributor::UncountClient() {
  if (--mClientCount == 0) {
    DropInternalReferences();
    RemoveActive(this);
  }
  DropInternalReferences();
  Release();
}

}  // namespace TF
