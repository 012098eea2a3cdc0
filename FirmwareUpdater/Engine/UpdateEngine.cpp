#include "Engine/UpdateEngine.h"

#include <fmt/format.h>

#include "Engine/BootloaderMessages.h"
#include "TFFramework/Midi/MidiCaptureNotificationData.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

using namespace TF;

namespace {

constexpr std::uint16_t kPacketSize = 256;
constexpr std::uint16_t kPacketDelayMs = 60;

}  // namespace

LUpdateEngine::LUpdateEngine() = default;

LUpdateEngine::~LUpdateEngine() = default;

void LUpdateEngine::SetLimits(const ProbeLimits& probe, const TransferLimits& transfer) {
  mProbeLimits = probe;
  mTransferLimits = transfer;
}

TFRESULT LUpdateEngine::Initialize(const String& commandLine) {
  const TFRESULT result = LUpdateEngineInterface::Initialize(commandLine);
  mPacketSize = kPacketSize;
  mPacketDelay = kPacketDelayMs;
  if (mUpdateResult == UPDATE_RUNNING) {
    LogRecord("The engine cannot start afresh: an update is running.");
    return kFailure;
  }
  DropMidiComm();
  mNotificationHandler = MakeRC<LNotificationHandler<LUpdateEngine>>(this);
  const TFRESULT registered = ReplaceMidiComm();
  return Failed(registered) ? kFailure : result;
}

void LUpdateEngine::Shutdown() {
  LUpdateEngineInterface::Shutdown();
  DropMidiComm();
}

void LUpdateEngine::OnExitRequested() {
  mVersionLight.SetGreen();
  mBootloaderLight.SetGreen();
}

RCPtr<LMidiCommInterface> LUpdateEngine::GetMidiComm() {
  const MutexLock lock(mMidiCommMutex);
  return mMidiComm;
}

TFRESULT LUpdateEngine::RegisterHandler() {
  const RCPtr<LMidiCommInterface> comm = GetMidiComm();
  if (!comm) return kFailure;
  return mNotificationHandler->AddHandler(&LUpdateEngine::OnMidiDataCaptured, comm, kMidiDataCapturedName, 0);
}

// The map entry goes with the registration: a later service may get the same address.
void LUpdateEngine::UnregisterHandler() {
  const RCPtr<LMidiCommInterface> comm = GetMidiComm();
  if (!comm || !mNotificationHandler) return;
  const NotificationId id = GetNotificationID(kMidiDataCapturedName);
  mNotificationHandler->RemoveHandler(comm, id);
  Unregister(comm, id);
}

void LUpdateEngine::DropMidiComm() {
  UnregisterHandler();
  RCPtr<LMidiCommInterface> old;
  {
    const MutexLock lock(mMidiCommMutex);
    old = std::move(mMidiComm);
    mMidiComm = nullptr;
  }
  if (old) old->Shutdown();
}

TFRESULT LUpdateEngine::ReplaceMidiComm() {
  DropMidiComm();
  {
    RCPtr<LMidiCommInterface> fresh = LMidiCommInterface::Create();
    const MutexLock lock(mMidiCommMutex);
    mMidiComm = std::move(fresh);
  }
  return RegisterHandler();
}

void LUpdateEngine::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                                   const RCPtr<LNotification>& notification) {
  if (mNotificationHandler) mNotificationHandler->Dispatch(sender, notification);
}

TFRESULT LUpdateEngine::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender,
                                             NotificationId id) {
  if (mNotificationHandler) mNotificationHandler->RemoveHandler(sender, id);
  return LNotificationClient::OnDistributorClosing(sender, id);
}

TFRESULT LUpdateEngine::OnMidiDataCaptured(const RCPtr<LNotificationDistributor>& sender,
                                           const RCPtr<LNotification>& notification) {
  if (sender != GetMidiComm()) return kSuccess;
  const RCPtr<LMidiCaptureNotificationData> captured = notification->GetData();
  if (!captured) return kSuccess;
  const IArray<char>& message = captured->mData;
  if (IsFirmwareVersionReply(message)) TakeFirmwareVersionReply(message);
  if (IsAckMessage(message)) mAckLight.SetGreen();
  if (IsBootloaderVersionReply(message)) TakeBootloaderVersionReply(message);
  return kSuccess;
}

void LUpdateEngine::TakeFirmwareVersionReply(const IArray<char>& message) {
  {
    const MutexLock lock(mProbeMutex);
    ParseVersionReply(message, mProbeRecord.mVersion);
    ParseDeviceIds(message, mProbeRecord.mSecondaryId, mProbeRecord.mHardwareId);
  }
  mVersionLight.SetGreen();
}

void LUpdateEngine::TakeBootloaderVersionReply(const IArray<char>& message) {
  {
    const MutexLock lock(mProbeMutex);
    ParseDeviceIds(message, mProbeRecord.mSecondaryId, mProbeRecord.mHardwareId);
  }
  mBootloaderLight.SetGreen();
}

bool LUpdateEngine::OpenPorts(const String& captureName, const String& renderName,
                              RCPtr<LMidiCapturePort>& capture, RCPtr<LMidiRenderPort>& render) {
  capture = nullptr;
  render = nullptr;
  const RCPtr<LMidiCommInterface> comm = GetMidiComm();
  if (!comm) return false;
  RCPtr<LRefCountedObject> port;
  comm->OpenCapturePort(captureName, port);
  capture = port;
  comm->OpenRenderPort(renderName, port);
  render = port;
  return capture && render;
}

TFRESULT LUpdateEngine::SendMessage(const Array<char>& message, const RCPtr<LMidiRenderPort>& render) {
  const RCPtr<LMidiCommInterface> comm = GetMidiComm();
  return comm && render ? comm->Send(render, message) : kFailure;
}

TFRESULT LUpdateEngine::GetFoundDevices(Array<DeviceDefinition>& out) {
  out.Clear();
  for (std::int32_t i = 0; i < mFoundDevices.GetCount(); ++i) out.Add(mFoundDevices.GetAt(i));
  return kSuccess;
}

std::uint32_t LUpdateEngine::GetDeviceCount() {
  return static_cast<std::uint32_t>(mFoundDevices.GetCount());
}

bool LUpdateEngine::IsDeviceInUpdateMode(std::uint32_t index) {
  return index < GetDeviceCount() && mFoundDevices.GetAt(static_cast<std::int32_t>(index)).mInUpdateMode;
}

TFRESULT LUpdateEngine::GetDeviceStatus(std::uint32_t index, std::int32_t& reason) {
  reason = REASON_NONE;
  if (index >= GetDeviceCount()) return kFailure;
  reason = mFoundDevices.GetAt(static_cast<std::int32_t>(index)).mCannotUpdateReason;
  return kSuccess;
}

TFRESULT LUpdateEngine::GetDeviceVersion(std::uint32_t index, FirmwareVersionInfo& out) {
  if (index >= GetDeviceCount()) return kFailure;
  out = mFoundDevices.GetAt(static_cast<std::int32_t>(index)).mVersion;
  return kSuccess;
}

TFRESULT LUpdateEngine::GetDeviceHardwareId(unsigned& out) {
  if (!HasSelectedDevice()) return kFailure;
  out = mFoundDevices.GetAt(mSelectedDevice).mHardwareId;
  return kSuccess;
}

TFRESULT LUpdateEngine::GetDeviceSecondaryId(unsigned& out) {
  if (!HasSelectedDevice()) return kFailure;
  out = mFoundDevices.GetAt(mSelectedDevice).mSecondaryId;
  return kSuccess;
}

bool LUpdateEngine::IsFirmwareFileNewer() {
  if (mFirmwareFileState < FILE_FOUND_VERSION_KNOWN || mDeviceState < DEVICE_CANNOT_BE_UPDATED) return false;
  if (!HasSelectedDevice()) return false;
  FirmwareVersionInfo device;
  if (Failed(GetDeviceVersion(static_cast<std::uint32_t>(mSelectedDevice.load()), device))) return false;
  return CompareVersions(mFirmwareVersion, device, VersionDepth::kBuild) > 0;
}

TFRESULT LUpdateEngine::AbortUpdate() {
  if (mDeviceState != UPDATE_IN_PROGRESS) return kFailure;
  mAbortRequested = true;
  LogRecord("Abort requested: the transfer runs to its end and then counts as aborted.");
  return kSuccess;
}

TFRESULT LUpdateEngine::SwitchDeviceToUpdateMode() {
  if (mDeviceState == DEVICE_IN_UPDATE_MODE) return kNothingDone;
  if (mDeviceState != DEVICE_NOT_IN_UPDATE_MODE && mDeviceState != TRANSITIONING_TO_UPDATE_MODE)
    return kFailure;
  if (!HasSelectedDevice() || IsExitRequested()) return kFailure;
  DeviceDefinitionEx& device = mFoundDevices.GetAt(mSelectedDevice);
  SetDeviceState(TRANSITIONING_TO_UPDATE_MODE);
  RCPtr<LMidiCapturePort> capture;
  RCPtr<LMidiRenderPort> render;
  OpenPorts(device.mCapturePortName, device.mRenderPortName, capture, render);
  Array<char> message;
  const TFRESULT built = BuildEnterUpdateMode(message);
  if (Failed(built)) return kFailure;
  const TFRESULT sent = SendMessage(message, render);
  if (Failed(sent)) {
    LogRecord("The device could not be told to switch to update mode: sending failed.");
    device.mCannotUpdateReason = REASON_DEVICE_ACCESS_FAILURE;
    SetDeviceState(DEVICE_CANNOT_BE_UPDATED);
  } else {
    LogRecord("The device was told to switch to update mode.");
  }
  return sent;
}
