#include "TFFramework/Application/FrameworkApp.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <iostream>

#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/Application/CursorTable.h"
#include "TFFramework/ControlBase/Clipboard.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ControlBase/GlobalHotKeyManager.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/ControlBase/WaitCursor.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/FontRenderer/Font.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr const char16_t* kStartupErrorText =
    u"The application encountered problems during startup and will now close.";
constexpr const char16_t* kStartupErrorCaption = u"Error";

// Whatever desktop there is, its own name for this font resolves to a readable one.
constexpr const char16_t* kSystemFontName = u"Sans";
constexpr float kSystemFontSize = 9;  // Points.
constexpr std::int32_t kRegularStyle = 0;

std::atomic<LFrameworkApp*> instance{nullptr};

NarrowString Narrow(const String& text) {
  return NarrowString(ToUtf8(text));
}

}  // namespace

LFrameworkApp::LFrameworkApp(const String& commandLine) : LFrameworkApp(nullptr, commandLine) {}

LFrameworkApp::LFrameworkApp(const RCPtr<LControlFactory>& controlFactory, const String& commandLine)
    : mControlFactory(controlFactory),
      mCommandLine(Narrow(commandLine)),
      mApplicationCenter(LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName)),
      mRootWindows(std::make_unique<RootWindowArray>()) {
  mHotKeys = MakeRC<LGlobalHotKeyManager>(mApplicationCenter);
  mClipboard = MakeRC<LClipboard>();
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

// What is thrown anywhere in here is told to the user, and the program then ends as soon as it may: what
// an exit request finds in progress goes on in the loop.
TFRESULT LFrameworkApp::Run() {
  if (mRootWindows->GetCount() > 0) (*mRootWindows)[0]->InvalidateAll();
  OnBeforeMessageLoop();
  const auto attempt = [this](auto step) {
    try {
      step();
      return true;
    } catch (const std::exception& exception) {
      ReportFault(exception.what());
    } catch (...) {
      ReportFault("an exception of unknown kind");
    }
    return false;
  };
  attempt([this] { ProcessNotifications(true); });
  while (!attempt([this] { RunMessageLoop(); })) {
  }
  attempt([this] { ProcessNotifications(true); });
  return kSuccess;
}

void LFrameworkApp::ReportFault(const char* what) {
  ReportStartupError(what, mStringTable);
  mApplicationCenter->Post(LNotification::Create(kAppExitRequest, nullptr));
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

String LFrameworkApp::GetFolder(std::int32_t id) {
  return GetApplicationFolder(id, GetCompanyName(), GetProductName());
}

TFRESULT LFrameworkApp::GetSystemFont(String& name, float& size, std::int32_t& style) {
  name = kSystemFontName;
  size = kSystemFontSize;
  style = kRegularStyle;
  return kSuccess;
}

RCPtr<LRenderer> LFrameworkApp::GetRenderer() {
  return mRootWindows->GetCount() > 0 ? (*mRootWindows)[0]->GetRenderer() : RCPtr<LRenderer>();
}

std::int32_t LFrameworkApp::GetCurrentSkinIndex() {
  return 0;
}

TFRESULT LFrameworkApp::SetSkin(std::int32_t index) {
  if (!mControlFactory) return kFailure;
  String name;
  float size = 0;
  std::int32_t style = 0;
  ThrowIfFailed(GetSystemFont(name, size, style), "TF::LFrameworkApp::SetSkin");
  mControlFactory->SetCurrentSkin(index);
  mControlFactory->GetSkinFont(name, size, style);
  mDefaultFont = LFont::Get(name, size, style);
  ApplySkinToWindows();
  return kSuccess;
}

void LFrameworkApp::ApplySkinToWindows() {
  for (std::int32_t index = 0; index < mRootWindows->GetCount(); ++index) {
    const RCPtr<LRootWindow> window = (*mRootWindows)[index];
    const LWaitCursor wait(u"Loading Skin...");
    const RCPtr<LControl> top = window->GetTopControl();
    if (!top) continue;
    mControlFactory->ApplySkin(top);
    window->RefreshFrame();
    if (top->RestoresWindowFrame() == 1) window->RestoreFrame();
    window->InvalidateAll();
  }
}

TFRESULT LFrameworkApp::GetLocalTime(Platform::LocalTime& time) {
  time = Platform::GetLocalTime();
  return kSuccess;
}

RCPtr<LControl> LFrameworkApp::CreateControl(const String& name) {
  return mControlFactory ? mControlFactory->CreateControl(name, nullptr) : nullptr;
}

std::int32_t LFrameworkApp::GetRendererType() {
  return static_cast<std::int32_t>(RendererType::kGdi);
}

bool LFrameworkApp::ProcessNotifications(bool sendIdle) {
  bool remaining = LNotificationCenterManager::GetInstance()->ProcessAll(sendIdle);
  // A window may end meanwhile, and others with it.
  for (std::int32_t index = mRootWindows->GetCount(); --index >= 0;) {
    if (index >= mRootWindows->GetCount()) continue;
    const RCPtr<LRootWindow> window = (*mRootWindows)[index];
    if (window->ProcessKeyQueue(sendIdle)) remaining = true;
  }
  return remaining;
}

void LFrameworkApp::OnBeforeMessageLoop() {}

TFRESULT LFrameworkApp::Shutdown() {
  UnregisterAll();
  mControlFactory = nullptr;
  mHotKeys = nullptr;
  mClipboard = nullptr;
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

TFRESULT LFrameworkApp::TakeDocuments() {
  if (!mControlFactory) return kFailure;
  try {
    mStringTable = mControlFactory->GetFrameworkStrings();
    mAppStrings = mControlFactory->GetApplicationStrings();
    if (mAppStrings) mHotKeys->Add(ReadHotKeys(*mAppStrings, u"GHK"));
    ThrowIfFailed(mClipboard->Initialize(), "TF::LFrameworkApp::RunApplicationStartup");
    ChooseSkin();
    return kSuccess;
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
    return kFailure;
  }
}

// The stored index may come from a program with more skins.
void LFrameworkApp::ChooseSkin() {
  const auto skins = static_cast<std::int32_t>(mControlFactory->GetSkinCount());
  if (skins == 0)
    Throw<std::runtime_error>("The skin document has no skin", "TF::LFrameworkApp::RunApplicationStartup");
  SetSkin(std::clamp(GetCurrentSkinIndex(), 0, skins - 1));
}

void LFrameworkApp::ReportStartupError(const char* why, const RCPtr<LStringTable>& strings) {
  LogRecord(why);
  String text = kStartupErrorText;
  String caption = kStartupErrorCaption;
  if (strings) {
    strings->GetString(u"STARTUP_ERROR", text);
    strings->GetString(u"STARTUP_ERROR_CAPTION", caption);
  }
  LFrameworkApp* const application = instance;
  if (application)
    application->MessageBox(text, caption, MessageBoxFlag::kIconError);
  else
    WriteMessage(text, caption);
}

void LFrameworkApp::WriteMessage(const String& text, const String& caption) {
  std::cerr << ToUtf8(caption) << ": " << ToUtf8(text) << std::endl;
}

String GetApplicationString(const String& key) {
  String text;
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (application && application->GetApplicationStrings())
    application->GetApplicationStrings()->GetString(key, text);
  return text;
}

}  // namespace TF
