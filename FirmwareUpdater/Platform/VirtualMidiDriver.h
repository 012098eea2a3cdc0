#pragma once

#include <string>
#include <vector>

#include "Platform/MidiPortDriver.h"

namespace Platform {

// MIDI over Unix stream sockets: the input NAME is the listening socket FOLDER/NAME.in, the
// output NAME is FOLDER/NAME.out. Opening a port connects, raw MIDI bytes flow, closing
// disconnects. A device has gone when it has removed its socket or ended the connection.
// Names are file names in UTF-8; their order, byte by byte, is that of the devices.
class VirtualMidiDriver : public MidiPortDriver {
 public:
  // A folder that cannot be read has no devices.
  explicit VirtualMidiDriver(std::string folder);

 private:
  std::vector<Device> ListDevices(Direction direction) override;
  Connection Connect(Direction direction, const Device& device) override;

  const std::string mFolder;
};

}  // namespace Platform
