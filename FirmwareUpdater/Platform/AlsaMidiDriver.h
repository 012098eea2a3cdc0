#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "Platform/MidiPortDriver.h"

namespace Platform {

// MIDI over ALSA's raw ports: they wait when the device's buffer is full, where the sequencer
// would drop bytes, and tell when all bytes have left. Every rawmidi subdevice is a device,
// named as ALSA names it; one without a name of its own takes that of its device. The two
// directions of a device are opened apart. Without a sound system there are no devices.
class AlsaMidiDriver : public MidiPortDriver {
 public:
  AlsaMidiDriver();  // Silences ALSA's own messages on standard error, process-wide.

 private:
  std::vector<Device> ListDevices(Direction direction) override;
  Connection Connect(Direction direction, const Device& device) override;
  void ReportForbiddenCards();

  std::mutex mReportMutex;
  std::string mReportedCards;  // The last answer of ForbiddenCards that was told.
};

// What a developer should read about an open that ALSA refused with this error (errno).
std::string AlsaRefusal(int error);

}  // namespace Platform
