#pragma once

#include <atomic>
#include <cstdint>

namespace TF {

// A small lock, not recursive: one atomic exchange to take and one to give back as long as
// no other thread wants it, and no object of the system.
class LightMutex {
 public:
  LightMutex() = default;
  LightMutex(const LightMutex&) = delete;
  LightMutex& operator=(const LightMutex&) = delete;

  void Lock() {
    if (mState.exchange(kHeld, std::memory_order_acquire) != kFree) LockContended();
  }
  void Unlock() {
    if (mState.exchange(kFree, std::memory_order_release) == kHeldWithWaiters) mState.notify_one();
  }

 private:
  enum State : std::int32_t { kFree, kHeld, kHeldWithWaiters };

  void LockContended();

  std::atomic<std::int32_t> mState{kFree};
};

// Holds a LightMutex for the length of a scope; with a null pointer it does nothing.
class LightMutexLock {
 public:
  explicit LightMutexLock(LightMutex* mutex) : mMutex(mutex) {
    if (mMutex) mMutex->Lock();
  }
  explicit LightMutexLock(LightMutex& mutex) : LightMutexLock(&mutex) {}
  LightMutexLock(const LightMutexLock&) = delete;
  LightMutexLock& operator=(const LightMutexLock&) = delete;
  ~LightMutexLock() {
    if (mMutex) mMutex->Unlock();
  }

 private:
  LightMutex* mMutex;
};

}  // namespace TF
