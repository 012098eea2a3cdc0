#pragma once

#include <chrono>
#include <optional>

#include "Platform/EventHandle.h"

namespace Platform {

enum class Readiness {
  kReady,  // The descriptor can be read or written.
  kGone,   // Its other side has hung up and nothing is left to read, or it is broken.
  kWoken,  // The event is set; takes precedence.
  kTimeout,
};

using MidiDeadline = std::optional<std::chrono::steady_clock::time_point>;

// Wait for a device's descriptor until another thread sets the event, which stays set.
// Without a deadline they wait for ever. kGone also when the system refuses the wait.
Readiness AwaitReadable(const EventHandle& wake, int descriptor, MidiDeadline deadline = std::nullopt);
Readiness AwaitWritable(const EventHandle& wake, int descriptor, MidiDeadline deadline = std::nullopt);

}  // namespace Platform
