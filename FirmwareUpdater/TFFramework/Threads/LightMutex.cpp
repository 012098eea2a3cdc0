#include "TFFramework/Threads/LightMutex.h"

namespace TF {

// Lock has stored kHeld already and may thereby have wiped out the mark of a waiter. That
// waiter is not lost: this thread marks the lock as contended before it sleeps or enters, so
// its own unlocking wakes the next one.
void LightMutex::LockContended() {
  while (mState.exchange(kHeldWithWaiters, std::memory_order_acquire) != kFree) {
    mState.wait(kHeldWithWaiters, std::memory_order_relaxed);
  }
}

}  // namespace TF
