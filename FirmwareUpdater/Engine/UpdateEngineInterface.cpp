#include "Engine/UpdateEngineInterface.h"

#include <fmt/format.h>

#include <utility>

#include "Engine/FirmwareFileName.h"
#include "Platform/Clock.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

using namespace TF;

namespace {

constexpr std::int32_t kNormalPriority = 0;
constexpr const char16_t* kNotAvailable = u"N/A";

// Files carry no readable version: this one stands for every firmware file that exists.
const FirmwareVersionInfo& VersionOfEveryFile() {
  static const FirmwareVersionInfo version{1, 6, 0, 47, u"1.6.0.47"};
  return version;
}

}  // namespace

LUpdateEngineInterface::LUpdateEngineInterface() : mThreader(String()), mWorkDoneEvent(MakeRC<LEvent>()) {}

LUpdateEngineInterface::~LUpdateEngineInterface() = default;

void LUpdateEngineInterface::Shutdown() {
  mThreader.Stop();
}

TFRESULT LUpdateEngineInterface::Initialize(const String&) {
  return kSuccess;
}

std::int32_t LUpdateEngineInterface::GetDeviceState() {
  return mDeviceState;
}

TFRESULT LUpdateEngineInterface::Reserved(unsigned) {
  return kSuccess;
}

bool LUpdateEngineInterface::IsBusyState() const {
  const std::int32_t state = mDeviceState;
  return state == SCANNING_FOR_DEVICE || state == TRANSITIONING_TO_UPDATE_MODE || state == UPDATE_IN_PROGRESS;
}

bool LUpdateEngineInterface::HasSelectedDevice() {
  const std::int32_t index = mSelectedDevice;
  return index >= 0 && static_cast<std::uint32_t>(index) < GetDeviceCount();
}

TFRESULT LUpdateEngineInterface::SetDeviceDefinitions(const Array<DeviceDefinition>& definitions) {
  if (IsBusyState()) return kFailure;
  mDeviceDefinitions = definitions;
  mSelectedDevice = kNoDeviceSelected;
  SetDeviceState(NO_DEVICE_FOUND);
  return kSuccess;
}

TFRESULT LUpdateEngineInterface::ScanForDevice() {
  if (IsBusyState()) return kFailure;
  mSelectedDevice = kNoDeviceSelected;
  const TFRESULT result = RefreshDeviceList();
  const std::uint32_t count = GetDeviceCount();
  if (count == 0 || Failed(result)) {
    SetDeviceState(NO_DEVICE_FOUND);
  } else if (count == 1) {
    // Stored without a notification: the screen goes straight to the selected device.
    mDeviceState = DEVICES_AVAILABLE_NONE_SELECTED;
    SelectDevice(0);
  } else {
    SetDeviceState(DEVICES_AVAILABLE_NONE_SELECTED);
  }
  return result;
}

TFRESULT LUpdateEngineInterface::SelectDevice(std::int32_t index) {
  if (mDeviceState < DEVICES_AVAILABLE_NONE_SELECTED || IsBusyState()) return kFailure;
  mSelectedDevice = kNoDeviceSelected;
  if (index < 0 || static_cast<std::uint32_t>(index) >= GetDeviceCount()) {
    SetDeviceState(DEVICES_AVAILABLE_NONE_SELECTED);
    return kInvalidArgument;
  }
  mSelectedDevice = index;
  std::int32_t reason = REASON_NONE;
  const auto device = static_cast<std::uint32_t>(index);
  if (Failed(GetDeviceStatus(device, reason)) || reason != REASON_NONE) {
    SetDeviceState(DEVICE_CANNOT_BE_UPDATED);
  } else {
    SetDeviceState(IsDeviceInUpdateMode(device) ? DEVICE_IN_UPDATE_MODE : DEVICE_NOT_IN_UPDATE_MODE);
  }
  return kSuccess;
}

std::int32_t LUpdateEngineInterface::GetSelectedDevice() {
  return mSelectedDevice;
}

TFRESULT LUpdateEngineInterface::GetCannotUpdateReason(std::int32_t& reason) {
  reason = REASON_NONE;
  if (mDeviceState != DEVICE_CANNOT_BE_UPDATED) return kFailure;
  return GetDeviceStatus(static_cast<std::uint32_t>(mSelectedDevice.load()), reason);
}

TFRESULT LUpdateEngineInterface::GetDeviceFirmwareVersion(String& out) {
  out = kNotAvailable;
  if (mDeviceState < DEVICE_CANNOT_BE_UPDATED) return kFailure;
  FirmwareVersionInfo version;
  if (Failed(GetDeviceVersion(static_cast<std::uint32_t>(mSelectedDevice.load()), version))) return kFailure;
  out = version.mText;
  return kSuccess;
}

std::int32_t LUpdateEngineInterface::GetDeviceTransitionMode() {
  return TRANSITION_AWAITED_BEFORE_TRANSFER;
}

TFRESULT LUpdateEngineInterface::EnterUpdateMode() {
  if (!IsTransferAutomatic()) return SwitchDeviceToUpdateMode();
  mAbortRequested = false;
  SetDeviceState(TRANSITIONING_TO_UPDATE_MODE);
  return RetriggerWorker(TASK_ENTER_UPDATE_MODE);
}

TFRESULT LUpdateEngineInterface::RetriggerWorker(ThreadWorkerTask task) {
  return mThreader.Retrigger(RCPtr<LThreadWorker>(this), MakeRC<LHolder<ThreadWorkerTask>>(task),
                             mWorkDoneEvent, kNormalPriority);
}

bool LUpdateEngineInterface::IsFirmwareFileNewer() {
  if (mFirmwareFileState < FILE_FOUND_VERSION_KNOWN || mDeviceState < DEVICE_CANNOT_BE_UPDATED) return false;
  if (!HasSelectedDevice()) return false;
  FirmwareVersionInfo device;
  if (Failed(GetDeviceVersion(static_cast<std::uint32_t>(mSelectedDevice.load()), device))) return false;
  return CompareVersions(mFirmwareVersion, device, VersionDepth::kPatch) > 0;
}

bool LUpdateEngineInterface::IsUpdateSupported() {
  return true;
}

TFRESULT LUpdateEngineInterface::StartUpdate() {
  if (mFirmwareFileState < FILE_FOUND_VERSION_UNKNOWN || mDeviceState != DEVICE_IN_UPDATE_MODE)
    return kFailure;
  if (!mThreader.IsThreadRunning()) {
    LogRecord("The update cannot start: the system has granted no thread for it.");
    return kFailure;
  }
  const MutexLock lock(mExitMutex);
  return mExitRequested ? kFailure : StartTransfer();
}

TFRESULT LUpdateEngineInterface::StartTransfer() {
  mAbortRequested = false;
  // Set here, so that a wait right after this call does not pass before the worker begins.
  const std::int32_t before = mUpdateResult.exchange(UPDATE_RUNNING);
  SetDeviceState(UPDATE_IN_PROGRESS);
  const TFRESULT result = RetriggerWorker(TASK_PERFORM_UPDATE);
  if (Failed(result)) {
    LogRecord("The update cannot start: its thread is still busy or stopping.");
    mUpdateResult = before;
    SetDeviceState(DEVICE_IN_UPDATE_MODE);
  }
  return result;
}

bool LUpdateEngineInterface::RequestExit() {
  {
    const MutexLock lock(mExitMutex);
    if (mDeviceState == UPDATE_IN_PROGRESS) return false;
    mExitRequested = true;
  }
  OnExitRequested();
  return true;
}

TFRESULT LUpdateEngineInterface::WaitForUpdateCompletion(std::uint32_t timeoutMs) {
  const std::uint32_t start = Platform::MillisecondTicks();
  // The event may still be set by an earlier task, so the result decides.
  while (mUpdateResult == UPDATE_RUNNING) {
    const std::uint32_t elapsed = Platform::MillisecondTicks() - start;
    if (elapsed >= timeoutMs) return kFailure;
    mWorkDoneEvent->Wait(timeoutMs - elapsed);
  }
  return kSuccess;
}

std::int32_t LUpdateEngineInterface::GetUpdateResult(bool clearIfDone) {
  std::int32_t result = mUpdateResult;
  if (clearIfDone && result >= UPDATE_FAILED) mUpdateResult.compare_exchange_strong(result, UPDATE_NONE);
  return result;
}

std::int32_t LUpdateEngineInterface::GetFirmwareFileState() {
  return mFirmwareFileState;
}

TFRESULT LUpdateEngineInterface::SetFirmwareFileAndVersion(const String& path,
                                                           const FirmwareVersionInfo& version) {
  mFirmwareFilePath = path;
  mFirmwareVersion = version;
  const bool exists = !path.IsEmpty() && File::FileExists(path);
  SetFirmwareFileState(exists ? FILE_FOUND_VERSION_KNOWN : FILE_INVALID);
  return exists ? kSuccess : kFailure;
}

TFRESULT LUpdateEngineInterface::SetFirmwareFile(const String& path) {
  mFirmwareFilePath = path;
  if (!File::FileExists(path)) {
    LogRecord(fmt::format("There is no firmware file {}", ToUtf8(path)));
    SetFirmwareFileState(FILE_INVALID);
    return kFailure;
  }
  mFirmwareVersion = VersionOfEveryFile();
  SetFirmwareFileState(FILE_FOUND_VERSION_KNOWN);
  return kSuccess;
}

void LUpdateEngineInterface::SetFirmwareVersion(const FirmwareVersionInfo& version) {
  mFirmwareVersion = version;
  if (mFirmwareFileState == FILE_FOUND_VERSION_UNKNOWN) SetFirmwareFileState(FILE_FOUND_VERSION_KNOWN);
}

TFRESULT LUpdateEngineInterface::GetFirmwareFilePath(String& out) {
  out = mFirmwareFilePath;
  return out.IsEmpty() ? kFailure : kSuccess;
}

TFRESULT LUpdateEngineInterface::GetFirmwareFileVersion(String& out) {
  out = kNotAvailable;
  if (mFirmwareFileState < FILE_FOUND_VERSION_KNOWN) return kFailure;
  out = mFirmwareVersion.mText;
  return kSuccess;
}

TFRESULT LUpdateEngineInterface::GetFirmwareVersion(FirmwareVersionInfo& out) {
  out = mFirmwareVersion;
  return mFirmwareFileState >= FILE_FOUND_VERSION_KNOWN ? kSuccess : kFailure;
}

bool LUpdateEngineInterface::ParseFirmwareVersionFromFileName() {
  String path;
  FirmwareVersionInfo version;
  if (Failed(GetFirmwareFilePath(path)) || !VersionFromFileName(File::GetNamePart(path), version))
    return false;
  SetFirmwareVersion(version);
  return true;
}

void LUpdateEngineInterface::SetDeviceState(std::int32_t state) {
  const std::int32_t before = mDeviceState.exchange(state);
  if (before != state) OnDeviceStateChanged(state, before);
}

bool LUpdateEngineInterface::IsTransferAutomatic() {
  return mTransferAutomatic;
}

void LUpdateEngineInterface::SetFirmwareFileState(std::int32_t state) {
  const std::int32_t before = mFirmwareFileState;
  if (before == state) return;
  mFirmwareFileState = state;
  OnFirmwareFileStateChanged(state, before);
}

TFRESULT LUpdateEngineInterface::Work(const RCPtr<LRefCountedObject>& data) {
  const RCPtr<LHolder<ThreadWorkerTask>> task = data;
  if (!task) return kFailure;
  switch (task->GetValue()) {
    case TASK_ENTER_UPDATE_MODE:
      return SwitchDeviceToUpdateMode();
    case TASK_PERFORM_UPDATE: {
      const TFRESULT result = ExecuteUpdate();
      OnUpdateCompleted(!Failed(result));
      return result;
    }
    default:
      return kFailure;
  }
}

void LUpdateEngineInterface::PostUpdateProgress(std::uint32_t stage, double progress,
                                                bool estimateTimeLocally, std::int32_t secondsRemaining,
                                                bool reservedFlag, String statusText) {
  if (!mNotificationsEnabled) return;
  PostFirmwareUpdateProgress(
      {stage, progress, secondsRemaining, estimateTimeLocally, reservedFlag, std::move(statusText)});
}

void LUpdateEngineInterface::OnDeviceStateChanged(std::int32_t newState, std::int32_t oldState) {
  LogRecord(fmt::format("Device state {} ({}), was {} ({})", newState, NameOfDeviceState(newState), oldState,
                        NameOfDeviceState(oldState)));
  if (mNotificationsEnabled) PostDeviceStateChange(newState, oldState);
}

void LUpdateEngineInterface::OnFirmwareFileStateChanged(std::int32_t newState, std::int32_t oldState) {
  LogRecord(fmt::format("Firmware file state {} ({}), was {} ({}): {}", newState,
                        NameOfFirmwareFileState(newState), oldState, NameOfFirmwareFileState(oldState),
                        ToUtf8(mFirmwareFilePath)));
  if (mNotificationsEnabled) PostFirmwareFileStateChange(newState, oldState);
}

void LUpdateEngineInterface::OnFoundDeviceListChanged() {
  if (mNotificationsEnabled) PostFoundDeviceListChange();
}

void LUpdateEngineInterface::OnUpdateCompleted(bool success) {
  if (mNotificationsEnabled) PostFirmwareUpdateCompleted(success);
}
