#pragma once

#include "Platform/Clock.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/System/MessageLoop.h"

namespace TF {

// Binds the application object to the operating system: clock, loop and the road out. T is
// the program's own application class, derived from this.
//
// Threads: as in the base; QuitMessageLoop on any.
template <class T>
class LApplicationBase : public LFrameworkApp {
 public:
  using LFrameworkApp::LFrameworkApp;

  // Asks for fine sleeps, which stay until Shutdown.
  TFRESULT Initialize() override {
    Platform::SetTimerResolution(true);
    if (Failed(RunApplicationStartup())) return kFailure;
    Register(GetApplicationCenter(), kAppExitRequest, 0);
    return kSuccess;
  }

  TFRESULT Shutdown() override {
    const TFRESULT result = LFrameworkApp::Shutdown();
    Platform::SetTimerResolution(false);
    return result;
  }

  // An exit request that is not allowed at the moment is dropped.
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const bool exitRequest = notification && notification->GetId() == GetNotificationID(kAppExitRequest);
    if (exitRequest && !IsExitAllowed()) return;
    LFrameworkApp::OnNotification(sender, notification);
    if (exitRequest) QuitMessageLoop();
  }

  std::int32_t RunMessageLoop() override { return mMessageLoop.Run(); }

  double GetTime() override {
    const std::uint32_t now = Platform::MillisecondTicks();
    mRunningSeconds += (now - mLastTicks) / 1000.0;
    mLastTicks = now;
    return mRunningSeconds;
  }

  std::uint32_t GetTickCount() override { return Platform::MillisecondTicks(); }

 protected:
  void QuitMessageLoop() { mMessageLoop.PostQuit(0); }

 private:
  // One idle period drains the queues at most this often before the loop goes on.
  static constexpr std::int32_t kIdlePasses = 3;

  bool OnIdle(std::int32_t count) {
    if (IsExitRequested()) return false;
    return ProcessNotifications(count == 0) && count < kIdlePasses - 1;
  }

  MessageLoop mMessageLoop{[this](std::int32_t count) { return OnIdle(count); }};
  std::uint32_t mLastTicks = Platform::MillisecondTicks();
  double mRunningSeconds = 0;
};

}  // namespace TF
