#include "TFFramework/Application/MessageLoop.h"

namespace TF {

std::int32_t MessageLoop::Run(const IdleFunction& onIdle) {
  while (!mQuit) {
    for (std::int32_t count = 0; !mQuit && onIdle(count); ++count) {
    }
    if (!mQuit) mWake.Wait(kTimerIntervalMs);
  }
  return mStatus;
}

void MessageLoop::PostQuit(std::int32_t status) {
  mStatus = status;
  mQuit = true;
  Wake();
}

void MessageLoop::Wake() {
  mWake.Set();
}

}  // namespace TF
