#pragma once

#include <poll.h>

#include <cstdint>
#include <span>
#include <vector>

namespace Simulator {

// The device's end of a cable. Never blocks, but for Open and Close. One thread at a time.
class DevicePort {
 public:
  virtual ~DevicePort() = default;

  // Plugs the device in. Harmless while it is plugged in. Throws std::runtime_error with a
  // sentence when that fails, and std::invalid_argument for a port that cannot be.
  virtual void Open() = 0;
  // Pulls the cable; what is unsent is lost.
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;

  // What has to be waited for until Receive can do something.
  virtual void AppendTo(std::vector<pollfd>& descriptors) const = 0;
  // Sends what had to wait, and gives the bytes that have come.
  virtual std::vector<std::uint8_t> Receive() = 0;
  // Sends at once, or as soon as the other side takes it.
  virtual void Send(std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace Simulator
