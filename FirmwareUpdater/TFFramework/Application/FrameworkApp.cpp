#include "TFFramework/Application/FrameworkApp.h"

#include <fmt/format.h>

#include <exception>
#include <iostream>

#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr const char* kStartupErrorText =
    "The application encountered problems during startup and will now close.";
constexpr const char* kStartupErrorCaption = "Error";

std::atomic<LFrameworkApp*> instance{nullptr};

NarrowString Narrow(const String& text) {
  return NarrowString(ToUtf8(text));
}

}  // namespace

LFrameworkApp::LFrameworkApp(const String& commandLine)
    : mCommandLine(Narrow(commandLine)),
      mApplicationCenter(LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName)) {
  instance = this;
}

LFrameworkApp::~LFrameworkApp() {
  instance = nullptr;
  LNotification::SetCacheEnabled(false);
}

LFrameworkApp* LFrameworkApp::GetInstance() {
  return instance;
}

void LFrameworkApp::OnNotification(const RCPtr<LNotificationDistributor>&,
                                   const RCPtr<LNotification>& notification) {
  if (notification && notification->GetId() == GetNotificationID(kAppExitRequest)) mExitRequested = true;
}

void LFrameworkApp::OnStartup(const String&) {}

void LFrameworkApp::OnStarted(const String&) {}

void LFrameworkApp::OnSecondInstance(const String&) {}

TFRESULT LFrameworkApp::Run() {
  OnBeforeMessageLoop();
  ProcessNotifications(true);
  try {
    RunMessageLoop();
  } catch (const std::exception& exception) {
    ReportStartupError(exception.what());
    mApplicationCenter->Post(LNotification::Create(kAppExitRequest, nullptr));
  } catch (...) {
    ReportStartupError("an exception of unknown kind");
    mApplicationCenter->Post(LNotification::Create(kAppExitRequest, nullptr));
  }
  ProcessNotifications(true);
  return kSuccess;
}

bool LFrameworkApp::IsExitRequested() {
  return mExitRequested;
}

String LFrameworkApp::GetSettingsVersion() {
  return u"1_0_0";
}

String LFrameworkApp::GetApplicationName() {
  return GetProductName();
}

String LFrameworkApp::GetMainControlName() {
  return u"mainControl";
}

RCPtr<LRenderer> LFrameworkApp::GetRenderer() {
  return nullptr;
}

String LFrameworkApp::GetFolder(std::int32_t id) {
  return GetApplicationFolder(id, GetCompanyName(), GetProductName());
}

bool LFrameworkApp::ProcessNotifications(bool sendIdle) {
  return LNotificationCenterManager::GetInstance()->ProcessAll(sendIdle);
}

void LFrameworkApp::OnBeforeMessageLoop() {}

TFRESULT LFrameworkApp::Shutdown() {
  UnregisterAll();
  return kSuccess;
}

TFRESULT LFrameworkApp::RunApplicationStartup() {
  try {
    LNotification::SetCacheEnabled(true);
    return kSuccess;
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
    return kFailure;
  }
}

void LFrameworkApp::ReportStartupError(const char* why) {
  LogRecord(why);
  std::cerr << kStartupErrorCaption << ": " << kStartupErrorText << std::endl;
}

}  // namespace TF
