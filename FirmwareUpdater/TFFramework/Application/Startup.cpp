#include "TFFramework/Application/Startup.h"

#include "Platform/Language.h"
#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/Application/SplashWindow.h"
#include "TFFramework/Application/Version.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

constexpr const char16_t* kSplashFile = u"/Splash.png";
constexpr std::int32_t kSplashSeconds = 8;

}  // namespace

LStartup::LStartup() = default;

LStartup::~LStartup() = default;

String LStartup::GetSplashPath() {
  const String path = GetApplicationFolder(kResourceFolderId) + kSplashFile;
  return File::FileExists(path) ? path : String();
}

void LStartup::ShowSplash() {
  const String path = GetSplashPath();
  if (path.IsEmpty() || mSplash) return;
  const RCPtr<LBitmap> picture = LBitmap::LoadBitmap(path);
  mSplash = std::make_unique<LSplashWindow>();
  mSplash->SetImage(picture);
  mSplash->Start();
  mSplash->RunProgress(0, 100, kSplashSeconds);
}

void LStartup::HideSplash() {
  if (!mSplash) return;
  mSplash->SetProgress(100);
  mSplash.reset();
}

void LStartup::MakeControlFactory() {
  mControlFactory = MakeRC<LControlFactory>(Version().GetProductName());
}

void LStartup::LoadProgramResources() {
  const TFRESULT result =
      mControlFactory->LoadResources(GetApplicationFolder(kResourceFolderId), Platform::UserLanguage());
  ThrowIfFailed(result, "TF::MFCFrameworkApp<class LApplication>::InitApplication");
}

void LStartup::FailStart(const char* why) {
  HideSplash();
  const auto findStrings = [this] {
    return mControlFactory ? mControlFactory->GetFrameworkStrings() : nullptr;
  };
  try {
    if (mControlFactory && !findStrings()) LoadProgramResources();
  } catch (const std::exception& exception) {
    LogRecord(exception.what());
  }
  // The texts come before the skin, which may be what cannot be read.
  LFrameworkApp::ReportStartupError(why, findStrings());
}

}  // namespace TF
