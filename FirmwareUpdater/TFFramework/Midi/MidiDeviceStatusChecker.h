#pragma once

#include <cstdint>

#include "TFFramework/Midi/MidiCommInterface.h"
#include "TFFramework/Utilities/Storage/Array.h"

namespace TF {

inline constexpr char16_t kMidiInputConnectionChangedName[] =
    u"NID_MIDI_INPUT_DEVICE_CONNECTION_STATUS_CHANGED";
inline constexpr char16_t kMidiOutputConnectionChangedName[] =
    u"NID_MIDI_OUTPUT_DEVICE_CONNECTION_STATUS_CHANGED";

// Finds out whether devices are there by opening their ports, and posts one notification on
// the application's center for each that came or went since the last check. Payload:
// LMidiDeviceConnectionStatusChangedNotification.
//
// Threads: a checker belongs to the thread that polls it.
class LMidiDeviceStatusChecker : public virtual LRefCountedObject {
 public:
  // Without a service no device is ever connected.
  static RCPtr<LMidiDeviceStatusChecker> Create(const RCPtr<LMidiCommInterface>& comm);

  // Each device is checked at once; its first state is posted to nobody.
  void AddInputDevices(const IIterable<String>& names);
  void AddOutputDevices(const IIterable<String>& names);

  // True when every device is connected. While an input is missing the outputs are not looked at.
  bool CheckDevices();

 private:
  struct DeviceInfo {
    String mName;
    bool mConnected = false;
  };
  using Probe = bool (LMidiDeviceStatusChecker::*)(const String& name) const;

  explicit LMidiDeviceStatusChecker(const RCPtr<LMidiCommInterface>& comm) : mComm(comm) {}

  bool IsInputConnected(const String& name) const;
  bool IsOutputConnected(const String& name) const;
  void AddDevices(Array<DeviceInfo>& devices, const IIterable<String>& names, Probe isConnected) const;
  bool CheckList(Array<DeviceInfo>& devices, Probe isConnected, const char16_t* notificationName) const;

  const RCPtr<LMidiCommInterface> mComm;
  Array<DeviceInfo> mInputDevices;
  Array<DeviceInfo> mOutputDevices;
};

}  // namespace TF
