#include "TFFramework/System/MessageLoop.h"

#include "Platform/Clock.h"

namespace TF {

void MessageLoop::SetWindowSystem(Platform::WindowSystem& windowSystem, std::function<void()> onQuitRequest) {
  mOnQuitRequest = std::move(onQuitRequest);
  mWindowSystem = &windowSystem;
}

std::int32_t MessageLoop::Run() {
  RunWhile([] { return true; });
  return mStatus;
}

bool MessageLoop::RunWhile(const std::function<bool()>& goesOn) {
  std::int32_t idleCount = 0;
  bool idles = true;
  mLastTimer = Platform::MillisecondTicks();
  while (!mQuit && goesOn()) {
    if (HandleEvents() || IsTimerDue()) {
      idleCount = 0;
      idles = true;
    }
    if (mQuit || !goesOn()) break;
    if (idles) {
      idles = mOnIdle(idleCount++);
    } else if (Sleep()) {
      idleCount = 0;
      idles = true;
    }
  }
  return !mQuit;
}

bool MessageLoop::HandleEvents() {
  Platform::WindowSystem* const windowSystem = mWindowSystem;
  if (!windowSystem) return false;
  const bool anyInput = windowSystem->DispatchInput();
  if (windowSystem->TakeQuitRequest()) mOnQuitRequest();
  windowSystem->DispatchPaints();
  return anyInput;
}

bool MessageLoop::IsTimerDue() {
  const std::uint32_t now = Platform::MillisecondTicks();
  if (now - mLastTimer < mTimerInterval) return false;
  mLastTimer = now;
  return true;
}

// True when Wake ended it; with a window system that counts as input, which is still to be handed out.
bool MessageLoop::Sleep() {
  const std::uint32_t passed = Platform::MillisecondTicks() - mLastTimer;
  const std::uint32_t left = passed < mTimerInterval ? mTimerInterval - passed : 0;
  Platform::WindowSystem* const windowSystem = mWindowSystem;
  if (!windowSystem) return mWake.Wait(left) == kWaitSignalled;
  windowSystem->Wait(left);
  return false;
}

void MessageLoop::PostQuit(std::int32_t status) {
  mStatus = status;
  mQuit = true;
  Wake();
}

void MessageLoop::Wake() {
  if (Platform::WindowSystem* const windowSystem = mWindowSystem) windowSystem->Wake();
  mWake.Set();
}

}  // namespace TF
