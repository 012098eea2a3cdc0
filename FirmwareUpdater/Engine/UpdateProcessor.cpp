#include "Engine/UpdateProcessor.h"

#include <utility>

#include "Engine/CommandLineOptions.h"
#include "Engine/ExitStatus.h"
#include "Engine/UpdateEngine.h"
#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

using namespace TF;

namespace {

constexpr const char16_t* kPortName = u"Tessel";
constexpr const char16_t* kDefaultImageName = u"ProductionApp.vbin";

// Longest silent run: a transfer of the largest firmware takes a few minutes.
constexpr std::uint32_t kUpdateTimeoutMs = 600000;

}  // namespace

LUpdateProcessor::LUpdateProcessor() : LUpdateProcessor(MakeRC<LUpdateEngine>()) {}

LUpdateProcessor::LUpdateProcessor(RCPtr<LUpdateEngineInterface> engine) : mUpdateEngine(std::move(engine)) {}

LUpdateProcessor::~LUpdateProcessor() {
  mUpdateEngine->Shutdown();
}

bool LUpdateProcessor::HasOption(const char16_t* option) const {
  String value;
  return FindOption(mCommandLine, option, value);
}

TFRESULT LUpdateProcessor::Initialize(const String& commandLine) {
  if (mCommandLine.IsEmpty()) {
    mCommandLine = commandLine;
    if (HasOption(CommandLineOption::kAlwaysUpdate)) mAllowDowngrade = true;
  }
  const TFRESULT result = mUpdateEngine->Initialize(commandLine);
  if (Failed(result)) {
    Throw<FailedResultException>(ResultText(result), "LUpdateProcessor::Initialize");
  }
  mUpdateEngine->GetUpdateResult(true);
  if (mUpdateEngine->GetDeviceState() == DEVICE_CANNOT_BE_UPDATED) {
    if (!HasOption(CommandLineOption::kReturnUpdateModeStatus)) return result;
    SetExitStatus(kExitNoDevice);
    return kRunSettled;
  }
  ResolveFirmwareFile();
  if (mUpdateEngine->GetDeviceState() == NO_DEVICE_DEFINED) DefineDevices();
  if (mUpdateEngine->GetDeviceState() == NO_DEVICE_FOUND) mUpdateEngine->ScanForDevice();
  // What an interrupted scan found is no answer.
  if (mUpdateEngine->IsExitRequested()) return kRunSettled;
  if (HasOption(CommandLineOption::kReturnUpdateModeStatus)) return ReportStatus();
  if (mUpdateEngine->GetDeviceState() <= DEVICE_CANNOT_BE_UPDATED) return kSuccess;
  if (mUpdateEngine->GetFirmwareFileState() != FILE_FOUND_VERSION_KNOWN) return kSuccess;
  return StartWhatIsWanted();
}

TFRESULT LUpdateProcessor::ReportStatus() {
  const bool newer = mUpdateEngine->IsFirmwareFileNewer();
  switch (mUpdateEngine->GetDeviceState()) {
    case NO_DEVICE_FOUND:
      SetExitStatus(kExitNoDevice);
      break;
    case DEVICE_IN_UPDATE_MODE:
      SetExitStatus(newer ? kExitUpdateModeFileNewer : kExitUpdateModeFileNotNewer);
      break;
    case DEVICE_NOT_IN_UPDATE_MODE:
      SetExitStatus(newer ? kExitNormalFirmwareFileNewer : kExitNormalFirmwareFileNotNewer);
      break;
    default:
      break;
  }
  return kRunSettled;
}

TFRESULT LUpdateProcessor::StartWhatIsWanted() {
  const bool wanted = mUpdateEngine->IsFirmwareFileNewer() || mAllowDowngrade;
  if (!wanted && HasOption(CommandLineOption::kSilentIfUpdateNotNeeded)) return kRunSettled;
  const bool silent = HasOption(CommandLineOption::kSilent);
  if (wanted) {
    if (!silent && !HasOption(CommandLineOption::kStartUpdateAutomatically)) return kSuccess;
    StartUpdate();
  }
  if (!silent) return kSuccess;
  if (Failed(mUpdateEngine->WaitForUpdateCompletion(kUpdateTimeoutMs))) {
    LogRecord("The run ends although the transfer has not: it took longer than a silent run waits.");
  }
  return kRunSettled;
}

// A device with normal firmware is only switched, as a rule: the next run finds it in update
// mode and starts the transfer.
void LUpdateProcessor::StartUpdate() {
  if (mUpdateEngine->GetDeviceState() == DEVICE_NOT_IN_UPDATE_MODE) {
    mUpdateEngine->EnterUpdateMode();
    if (mUpdateEngine->GetDeviceState() != DEVICE_IN_UPDATE_MODE) return;
  }
  mUpdateEngine->StartUpdate();
}

void LUpdateProcessor::ResolveFirmwareFile() {
  String path;
  if (!FindOption(mCommandLine, CommandLineOption::kAbsoluteFirmwareFilePath, path)) {
    String name;
    if (!FindOption(mCommandLine, CommandLineOption::kFirmwareImageName, name)) name = kDefaultImageName;
    path = GetApplicationFolder(kProgramFolderId) + u"\\" + name;
  }
  if (!path.IsEmpty()) mUpdateEngine->SetFirmwareFile(path);
}

// One port name serves both modes: the device is told apart by what it answers.
void LUpdateProcessor::DefineDevices() {
  LUpdateEngineInterface::DeviceDefinition definition;
  definition.mCapturePortName = kPortName;
  definition.mUpdateCapturePortName = kPortName;
  definition.mRenderPortName = kPortName;
  definition.mUpdateRenderPortName = kPortName;
  Array<LUpdateEngineInterface::DeviceDefinition> definitions;
  definitions.Add(definition);
  mUpdateEngine->SetDeviceDefinitions(definitions);
}

void LUpdateProcessor::Reinitialize() {
  Initialize(mCommandLine);
}

RCPtr<LUpdateEngineInterface>& LUpdateProcessor::GetUpdateEngine(RCPtr<LUpdateEngineInterface>& out) {
  out = mUpdateEngine;
  return out;
}

bool LUpdateProcessor::GetAllowDowngrade() {
  return mAllowDowngrade;
}

TFRESULT LUpdateProcessor::SetAllowDowngrade(bool allow) {
  if (mAllowDowngrade == allow) return kNothingDone;
  mAllowDowngrade = allow;
  return kSuccess;
}

bool LUpdateProcessor::IsExitAllowed() {
  return mUpdateEngine->GetDeviceState() != UPDATE_IN_PROGRESS;
}

bool LUpdateProcessor::RequestExit() {
  return mUpdateEngine->RequestExit();
}
