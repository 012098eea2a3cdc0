#include "TFFramework/Midi/MidiDeviceStatusChecker.h"

#include "TFFramework/Midi/MidiDeviceConnectionStatusChangedNotification.h"
#include "TFFramework/Notification/NotificationCenterManager.h"

namespace TF {

namespace {

void PostChange(const char16_t* notificationName, const String& deviceName, bool disconnected) {
  const auto data = MakeRC<LMidiDeviceConnectionStatusChangedNotification>(deviceName, disconnected);
  const RCPtr<LNotificationCenter> center =
      LNotificationCenterManager::GetInstance()->GetCenter(kApplicationCenterName);
  center->Post(LNotification::Create(notificationName, data));
}

}  // namespace

RCPtr<LMidiDeviceStatusChecker> LMidiDeviceStatusChecker::Create(const RCPtr<LMidiCommInterface>& comm) {
  return RCPtr<LMidiDeviceStatusChecker>(new LMidiDeviceStatusChecker(comm));
}

void LMidiDeviceStatusChecker::AddInputDevices(const IIterable<String>& names) {
  AddDevices(mInputDevices, names, &LMidiDeviceStatusChecker::IsInputConnected);
}

void LMidiDeviceStatusChecker::AddOutputDevices(const IIterable<String>& names) {
  AddDevices(mOutputDevices, names, &LMidiDeviceStatusChecker::IsOutputConnected);
}

bool LMidiDeviceStatusChecker::CheckDevices() {
  return CheckList(mInputDevices, &LMidiDeviceStatusChecker::IsInputConnected,
                   kMidiInputConnectionChangedName) &&
         CheckList(mOutputDevices, &LMidiDeviceStatusChecker::IsOutputConnected,
                   kMidiOutputConnectionChangedName);
}

// In both, the port that opened closes again on return, unless a client holds it.
bool LMidiDeviceStatusChecker::IsInputConnected(const String& name) const {
  RCPtr<LRefCountedObject> port;
  return mComm && !Failed(mComm->OpenCapturePort(name, port)) && port;
}

bool LMidiDeviceStatusChecker::IsOutputConnected(const String& name) const {
  RCPtr<LRefCountedObject> port;
  return mComm && !Failed(mComm->OpenRenderPort(name, port)) && port;
}

void LMidiDeviceStatusChecker::AddDevices(Array<DeviceInfo>& devices, const IIterable<String>& names,
                                          Probe isConnected) const {
  for (const String& name : names) devices.Add({name, (this->*isConnected)(name)});
}

bool LMidiDeviceStatusChecker::CheckList(Array<DeviceInfo>& devices, Probe isConnected,
                                         const char16_t* notificationName) const {
  bool allConnected = true;
  for (DeviceInfo& device : devices) {
    const bool connected = (this->*isConnected)(device.mName);
    if (connected != device.mConnected) {
      device.mConnected = connected;
      PostChange(notificationName, device.mName, !connected);
    }
    allConnected = allConnected && device.mConnected;
  }
  return allConnected;
}

}  // namespace TF
