#include "TFFramework/Notification/NotificationCenterManager.h"

#include <utility>

namespace TF {

namespace {

// Never destroyed, so that a thread that posts late finds it.
struct Instance {
  Mutex mMutex;
  RCPtr<LNotificationCenterManager> mManager;
};

Instance& GetGlobal() {
  static Instance& instance = *new Instance;
  return instance;
}

}  // namespace

RCPtr<LNotificationCenterManager> LNotificationCenterManager::GetInstance() {
  Instance& global = GetGlobal();
  const MutexLock lock(global.mMutex);
  if (!global.mManager) global.mManager = MakeRC<LNotificationCenterManager>();
  return global.mManager;
}

void LNotificationCenterManager::ReleaseInstance() {
  RCPtr<LNotificationCenterManager> released;
  Instance& global = GetGlobal();
  const MutexLock lock(global.mMutex);
  released = std::move(global.mManager);
}

RCPtr<LNotificationCenter> LNotificationCenterManager::GetCenter(const char16_t* name) {
  if (name == nullptr || *name == u'\0') return nullptr;
  const MutexLock lock(mMutex);
  for (std::int32_t index = 0; index < mCenters.GetCount(); ++index) {
    const RCPtr<LNotificationCenter>& center = mCenters.GetAt(index);
    if (center->GetName().GetText() == name || center->GetName() == name) return center;
  }
  RCPtr<LNotificationCenter> center = MakeRC<LNotificationCenter>(name);
  mCenters.Add(center);
  return center;
}

bool LNotificationCenterManager::ProcessAll(bool sendIdle) {
  std::int32_t index = 0;
  {
    const MutexLock lock(mMutex);
    index = mCenters.GetCount();
  }
  bool remaining = false;
  while (--index >= 0) {
    const RCPtr<LNotificationCenter> center = FindCenter(index);
    if (center && center->Process(sendIdle)) remaining = true;
  }
  return remaining;
}

RCPtr<LNotificationCenter> LNotificationCenterManager::FindCenter(std::int32_t index) const {
  const MutexLock lock(mMutex);
  return mCenters.GetAt(index);
}

}  // namespace TF
