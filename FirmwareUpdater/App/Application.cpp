#include "App/Application.h"

#include <iostream>

#include "TFFramework/Controls/FrameworkControls.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

using namespace TF;

LApplication::LApplication(const RCPtr<LControlFactory>& controlFactory, const String& commandLine)
    : LApplicationBase<LApplication>(controlFactory, commandLine), mLine(commandLine) {}

LApplication::~LApplication() = default;

TFRESULT LApplication::Initialize() {
  TFRESULT result = LApplicationBase<LApplication>::Initialize();
  if (!Failed(result)) result = RegisterFrameworkControls(*GetControlFactory());
  if (Failed(result)) return result;
  {
    auto processor = MakeRC<LUpdateProcessor>();
    const MutexLock lock(mProcessorMutex);
    mUpdateProcessor = std::move(processor);
    if (mExitRequestedEarly) mUpdateProcessor->RequestExit();
  }
  const TFRESULT settled = mUpdateProcessor->Initialize(mLine);
  if (Failed(settled)) return settled;
  mUpdateProcessor->SetAllowDowngrade(true);
  return kSuccess;
}

TFRESULT LApplication::Shutdown() {
  const TFRESULT result = LApplicationBase<LApplication>::Shutdown();
  RCPtr<LUpdateProcessor> processor;
  {
    const MutexLock lock(mProcessorMutex);
    processor = std::move(mUpdateProcessor);
  }
  return result;
}

bool LApplication::IsExitAllowed() {
  return !mUpdateProcessor || mUpdateProcessor->IsExitAllowed();
}

TFRESULT LApplication::OpenScreen() {
  std::cerr
      << "This version has no screen yet. Run it with -SILENT or -RETURN_UPDATE_MODE_STATUS; --help lists "
         "the options."
      << std::endl;
  return kSuccess;
}

void LApplication::OnBeforeMessageLoop() {
  Register(GetApplicationCenter(), kFirmwareUpdateCompletedName, 0);
  RCPtr<LUpdateEngineInterface> engine;
  if (mUpdateProcessor->GetUpdateEngine(engine)->GetUpdateResult(false) != UPDATE_RUNNING) QuitMessageLoop();
}

void LApplication::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                                  const RCPtr<LNotification>& notification) {
  LApplicationBase<LApplication>::OnNotification(sender, notification);
  if (notification && notification->GetId() == GetNotificationID(kFirmwareUpdateCompletedName))
    QuitMessageLoop();
}

void LApplication::RequestExit() {
  const MutexLock lock(mProcessorMutex);
  mExitRequestedEarly = !mUpdateProcessor;
  if (mUpdateProcessor && !mUpdateProcessor->RequestExit()) {
    LogRecord("The request to end is dropped: an update is in progress.");
    return;
  }
  PostExitRequest();
}
