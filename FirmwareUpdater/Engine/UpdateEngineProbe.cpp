#include <fmt/format.h>

#include "Engine/BootloaderMessages.h"
#include "Engine/UpdateEngine.h"
#include "TFFramework/Midi/MidiDeviceStatusChecker.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/StringArray.h"

using namespace TF;

namespace {

StringArray OneName(const String& name) {
  StringArray names;
  names.Add(name);
  return names;
}

}  // namespace

// A new service sees the ports as they are now.
bool LUpdateEngine::IsDevicePresent(const String& capturePortName, const String& renderPortName) {
  ReplaceMidiComm();
  const RCPtr<LMidiDeviceStatusChecker> checker = LMidiDeviceStatusChecker::Create(GetMidiComm());
  checker->AddInputDevices(OneName(capturePortName));
  checker->AddOutputDevices(OneName(renderPortName));
  return checker->CheckDevices();
}

TFRESULT LUpdateEngine::QueryDeviceVersion(DeviceDefinitionEx&, const RCPtr<LMidiCapturePort>&,
                                           const RCPtr<LMidiRenderPort>& render) {
  mVersionLight.SetRed();
  Array<char> query;
  for (std::int32_t attempt = 0; attempt < mProbeLimits.mVersionAttempts && !IsExitRequested(); ++attempt) {
    BuildVersionQuery(query);
    SendMessage(query, render);
    if (mVersionLight.Wait(mProbeLimits.mVersionReplyMs) == kWaitSignalled) {
      return IsExitRequested() ? kFailure : kSuccess;
    }
  }
  return kFailure;
}

// Whether the normal firmware answers. Replies of the bootloader leave its ids in the record.
bool LUpdateEngine::ProbeFirmware(DeviceDefinitionEx& device) {
  if (!IsDevicePresent(device.mCapturePortName, device.mRenderPortName)) {
    LogRecord(fmt::format("Probe: no port named {}", ToUtf8(device.mCapturePortName)));
    return false;
  }
  device.mInUpdateMode = false;
  device.mCannotUpdateReason = REASON_NONE;
  {
    const MutexLock lock(mProbeMutex);
    mProbeRecord = device;
  }
  RCPtr<LMidiCapturePort> capture;
  RCPtr<LMidiRenderPort> render;
  OpenPorts(device.mCapturePortName, device.mRenderPortName, capture, render);
  const TFRESULT result = QueryDeviceVersion(device, capture, render);
  const MutexLock lock(mProbeMutex);
  device = mProbeRecord;
  return !Failed(result);
}

bool LUpdateEngine::ProbeBootloader(const String& capturePortName, const String& renderPortName) {
  const bool first = IsDevicePresent(capturePortName, renderPortName);
  RCPtr<LMidiCapturePort> capture;
  RCPtr<LMidiRenderPort> render;
  if (!IsDevicePresent(capturePortName, renderPortName) ||
      !OpenPorts(capturePortName, renderPortName, capture, render)) {
    // The port was just there and is going: only a device that switches modes does that, and
    // the transfer will not begin without the bootloader's own acknowledgement.
    if (first)
      LogRecord("Probe: the ports went away during the probe; update mode is assumed without an answer.");
    return first;
  }
  mBootloaderLight.SetRed();
  Array<char> query;
  BuildVersionQuery(query);
  SendMessage(query, render);
  return mBootloaderLight.Wait(mProbeLimits.mBootloaderReplyMs) == kWaitSignalled && !IsExitRequested();
}

TFRESULT LUpdateEngine::ProbeDevice(DeviceDefinitionEx& device) {
  {
    const MutexLock lock(mProbeMutex);
    mProbeRecord = device;
  }
  if (ProbeFirmware(device)) {
    LogRecord(fmt::format("Probe: the device runs firmware {}, hardware id {:08X}, secondary id {:08X}",
                          ToUtf8(device.mVersion.mText), device.mHardwareId, device.mSecondaryId));
    return kSuccess;
  }
  if (IsExitRequested() || !ProbeBootloader(device.mUpdateCapturePortName, device.mUpdateRenderPortName)) {
    LogRecord("Probe: no device answers.");
    return kFailure;
  }
  {
    // With differing port names for the two modes the ids arrive only now.
    const MutexLock lock(mProbeMutex);
    device.mHardwareId = mProbeRecord.mHardwareId;
    device.mSecondaryId = mProbeRecord.mSecondaryId;
  }
  // A device in update mode is older than any file: no number of its last firmware may stay.
  device.mVersion = FirmwareVersionInfo{0, 0, 0, 0, u"Unknown"};
  device.mInUpdateMode = true;
  device.mCannotUpdateReason = REASON_NONE;
  LogRecord(fmt::format("Probe: the device is in update mode, hardware id {:08X}, secondary id {:08X}",
                        device.mHardwareId, device.mSecondaryId));
  return kSuccess;
}

TFRESULT LUpdateEngine::RefreshDeviceList() {
  mFoundDevices.Clear();
  for (std::int32_t i = 0; i < mDeviceDefinitions.GetCount(); ++i) {
    DeviceDefinitionEx device(mDeviceDefinitions.GetAt(i));
    if (!Failed(ProbeDevice(device))) mFoundDevices.Add(device);
  }
  return kSuccess;
}

TFRESULT LUpdateEngine::RefreshDeviceState() {
  // While the worker has the device nobody else may open its ports.
  if (mUpdateResult == UPDATE_RUNNING || mDeviceState < DEVICE_CANNOT_BE_UPDATED || !HasSelectedDevice()) {
    return kFailure;
  }
  DeviceDefinitionEx& device = mFoundDevices.GetAt(mSelectedDevice);
  MoveStateAfterProbe(device, !Failed(ProbeDevice(device)));
  return kSuccess;
}

void LUpdateEngine::MoveStateAfterProbe(DeviceDefinitionEx& device, bool answered) {
  if (mDeviceState == TRANSITIONING_TO_UPDATE_MODE) {
    if (answered && device.mInUpdateMode) SetDeviceState(DEVICE_IN_UPDATE_MODE);
  } else if (!answered) {
    device.mCannotUpdateReason = REASON_DEVICE_ACCESS_FAILURE;
    SetDeviceState(DEVICE_CANNOT_BE_UPDATED);
  } else {
    SetDeviceState(device.mInUpdateMode ? DEVICE_IN_UPDATE_MODE : DEVICE_NOT_IN_UPDATE_MODE);
  }
}
