#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "Tools/Simulator/Fault.h"
#include "Tools/Simulator/Protocol.h"

namespace Simulator {

// Bytes that the device sends, mDelay after the input that caused them.
struct Transmission {
  std::chrono::milliseconds mDelay{0};
  Bytes mBytes;
};

const Fault* FindFault(std::span<const Fault> faults, FaultKind kind);

// What goes out for a reply, or where none is due, under the faults that strike it; all of
// them together. errorReply is what BL_REPLY_ERROR looks like with the value 0. A fault that
// changes a part of the reply that is not there has no effect.
std::vector<Transmission> Transmit(std::optional<Reply> reply, std::span<const Fault> faults,
                                   const Reply& errorReply);

}  // namespace Simulator
