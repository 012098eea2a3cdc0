#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace Simulator {

// A message from the computer, as faults and traces name it.
enum class MessageName : std::uint8_t {
  kVersion,     // "version"
  kSwitch,      // "switch"
  kOpen,        // "open"
  kFinish,      // "finish"
  kStart,       // "start"
  kSelect,      // "select"
  kHeader,      // "header"
  kWriteAcked,  // "write-acked"
  kWrite,       // "write"
  kVerify,      // "verify"
  kOther,       // "other": a message of the device's maker that fits nothing above
};
inline constexpr std::size_t kMessageNameCount = 11;

std::string_view NameOf(MessageName name);

enum class FaultKind : std::uint8_t {
  kLoseReply,    // "lose-reply": the message is taken, its reply never sent
  kLateReply,    // "late-reply:MS": the reply comes MS milliseconds late
  kWrongReply,   // "wrong-reply[:CODE]": the reply's code is CODE, by default 0x81, or 0x82 in place of 0x81
  kErrorReply,   // "error-reply[:VALUE]": BL_REPLY_ERROR in place of the reply, also where none is due
  kWrongCrc,     // "wrong-crc": the value of BL_REPLY_VALUE is inverted
  kWrongRegion,  // "wrong-region": the index of BL_REPLY_REGION is one too high
  kWrongHardware,   // "wrong-hardware[:ID]": BL_REPLY_REGION carries another hardware id
  kShortReply,      // "short-reply[:COUNT]": the reply's data lacks its last COUNT bytes, by default 1
  kHalfReply,       // "half-reply": the reply breaks off in the middle, without its end
  kNoise,           // "noise": other bytes around the reply and real-time bytes inside it
  kFlood,           // "flood[:BYTES]": a message of BYTES bytes, by default 1 MiB, that never ends
  kUnplug,          // "unplug[:MS]": the port goes, the message is lost; back after MS milliseconds, or never
  kSilent,          // "silent": dead from this message on, until the device is unplugged
  kIgnoreMessage,   // "ignore-message": as if the message had never come
  kDuplicateReply,  // "duplicate-reply": the reply comes twice
};

inline constexpr std::uint32_t kEveryOccurrence = std::numeric_limits<std::uint32_t>::max();

// One thing that goes wrong, and where. Without a name, messages are counted that arrive in
// update mode, the first being 1. With a name, messages of that name are counted in both
// modes. The fault strikes from occurrence mFirst through mLast.
struct Fault {
  FaultKind mKind = FaultKind::kLoseReply;
  std::optional<MessageName> mMessage;
  std::uint32_t mFirst = 1;
  std::uint32_t mLast = 1;
  std::optional<std::uint32_t> mArgument;
};

// Reads KIND@WHERE[:ARGUMENT], where WHERE is N, N-M, *, NAME (the first), NAME#N, NAME#N-M
// or NAME#*. Throws std::invalid_argument with a sentence that names what is wrong.
Fault ParseFault(std::string_view text);

// Counts messages and tells which faults strike.
class FaultPlan {
 public:
  explicit FaultPlan(std::vector<Fault> faults);

  // The faults for the next message, in the order in which they were given.
  std::vector<Fault> Next(MessageName name, bool inUpdateMode);

 private:
  std::vector<Fault> mFaults;
  std::uint32_t mUpdateModeMessages = 0;
  std::array<std::uint32_t, kMessageNameCount> mOccurrences{};
};

}  // namespace Simulator
