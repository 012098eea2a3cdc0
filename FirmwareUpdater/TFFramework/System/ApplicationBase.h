#pragma once

#include <cstdint>
#include <string>

#include "Platform/Clock.h"
#include "Platform/Desktop.h"
#include "Platform/Language.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Application/Version.h"
#include "TFFramework/ControlBase/GlobalHotKeyManager.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/System/MainWindow.h"
#include "TFFramework/System/MessageLoop.h"
#include "TFFramework/System/SecondInstance.h"

namespace TF {

// Binds the application object to the operating system: clock, windows, loop and the road out. T is
// the program's own application class, derived from this.
//
// Threads: as in the base; QuitMessageLoop and TakeCommandLine on any.
template <class T>
class LApplicationBase : public LFrameworkApp {
 public:
  using LFrameworkApp::LFrameworkApp;

  // What the system knows the program's windows by; a program of another name has one of its own.
  static constexpr const char* kWindowClassName = "Varnok_DEVICE_FAMILY_NAME_String_FirmwareUpdater";

  // Asks for fine sleeps, which stay until Shutdown.
  TFRESULT Initialize() override {
    Platform::SetTimerResolution(true);
    if (Failed(RunApplicationStartup())) return kFailure;
    Register(GetApplicationCenter(), kAppExitRequest, 0);
    return kSuccess;
  }

  TFRESULT Shutdown() override {
    // After a failed start, too.
    CloseWindows(*this);
    mMainWindow = nullptr;
    const TFRESULT result = LFrameworkApp::Shutdown();
    Platform::SetTimerResolution(false);
    return result;
  }

  // Those of the version block.
  String GetCompanyName() override { return Version(GetStringTable()).GetCompanyName(); }
  String GetProductName() override { return Version(GetStringTable()).GetProductName(); }
  String GetProductVersion() override { return Version(GetStringTable()).GetProductVersion(); }
  std::uint32_t GetLanguage() override { return Platform::UserLanguage(); }

  // Finds the display that windows open on. Throws runtime_error, whose text names it, without one.
  virtual void StartDisplay() { UseDisplay(Platform::GetDesktop().GetWindowSystem()); }

  // The main window with its top-level control, shown.
  virtual TFRESULT OpenScreen() {
    BindExitKey();
    if (Failed(CreateMainWindow(GetRendererType()))) return kFailure;
    const RCPtr<LRootWindow> root = mMainWindow->GetRootWindow();
    if (Failed(root->SetTopControlByName(GetMainControlName()))) return kFailure;
    ShowMainWindow(*mMainWindow, *this, T::kWindowClassName);
    mMainWindow->BringToTop();
    mSecondInstance.SetWindow(mMainWindow);
    return kSuccess;
  }

  TFRESULT CreateMainWindow(std::int32_t rendererType) override {
    mMainWindow = MakeControlWindow(*this, mMessageLoop, OSWindow::Role::kMain, nullptr, GetMainControlName(),
                                    rendererType);
    return mMainWindow ? kSuccess : kFailure;
  }

  TFRESULT OpenRootWindow(const String& name) override { return OpenChildRootWindow(name, nullptr); }

  TFRESULT OpenChildRootWindow(const String& name, const RCPtr<LRootWindow>& parent) override {
    return OpenFurtherWindow(*this, mMessageLoop, name, parent);
  }

  // A later start hands its command line over: true when there is a window that takes it.
  bool TakeCommandLine(const std::string& commandLine) {
    if (!mSecondInstance.Take(commandLine)) return false;
    mMessageLoop.Wake();
    return true;
  }

  // An exit request that is not allowed at the moment is dropped.
  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const bool exitRequest = notification && notification->GetId() == GetNotificationID(kAppExitRequest);
    if (exitRequest && !IsExitAllowed()) return;
    LFrameworkApp::OnNotification(sender, notification);
    if (exitRequest) QuitMessageLoop();
  }

  // All windows are gone when it returns, the main window last.
  std::int32_t RunMessageLoop() override {
    const std::int32_t status = mMessageLoop.Run();
    mSecondInstance.SetWindow(nullptr);
    CloseWindows(*this);
    mMainWindow = nullptr;
    return status;
  }

  double GetTime() override {
    const std::uint32_t now = Platform::MillisecondTicks();
    mRunningSeconds += (now - mLastTicks) / 1000.0;
    mLastTicks = now;
    return mRunningSeconds;
  }

  std::uint32_t GetTickCount() override { return Platform::MillisecondTicks(); }

 protected:
  void UseDisplay(Platform::WindowSystem& windowSystem) {
    StartWindowSystem(windowSystem);
    mMessageLoop.SetWindowSystem(windowSystem, [this] { PostExitRequest(); });
  }
  void QuitMessageLoop() { mMessageLoop.PostQuit(0); }
  void PostExitRequest() { GetApplicationCenter()->Post(LNotification::Create(kAppExitRequest, nullptr)); }

 private:
  // One idle period drains the queues at most this often before the loop goes on.
  static constexpr std::int32_t kIdlePasses = 3;

  bool OnIdle(std::int32_t count) {
    if (IsExitRequested()) return false;
    DeliverCommandLines();
    return ProcessNotifications(count == 0) && count < kIdlePasses - 1;
  }

  // Unless the application's texts give the key to something else.
  void BindExitKey() {
    const KeyCode key = KeyCodeFromName(u"Alt+VKEY_F4");
    if (!GetHotKeys()->HasKey(key)) GetHotKeys()->Bind(kAppExitRequest, key);
  }

  void DeliverCommandLines() {
    for (const String& commandLine : mSecondInstance.Deliver()) OnSecondInstance(commandLine);
  }

  RCPtr<OSWindow> mMainWindow;
  SecondInstance mSecondInstance;
  MessageLoop mMessageLoop{[this](std::int32_t count) { return OnIdle(count); }};
  std::uint32_t mLastTicks = Platform::MillisecondTicks();
  double mRunningSeconds = 0;
};

}  // namespace TF
