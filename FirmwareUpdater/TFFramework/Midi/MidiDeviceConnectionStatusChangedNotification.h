#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Payload of the two notifications that tell of a MIDI device that came or went.
class LMidiDeviceConnectionStatusChangedNotification : public virtual LRefCountedObject {
 public:
  LMidiDeviceConnectionStatusChangedNotification(const String& deviceName, bool disconnected)
      : mDeviceName(deviceName), mDisconnected(disconnected ? 1 : 0) {}

  const String mDeviceName;
  const std::uint32_t mDisconnected;  // 0: it has become available; 1: it has gone.
};

}  // namespace TF
