#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Simulator {

// Puts system-exclusive messages together from a MIDI byte stream that is cut anywhere. Real-time
// bytes inside a message are taken out; any other status byte breaks it off; what is no
// system-exclusive data is skipped.
class MessageStream {
 public:
  static constexpr std::size_t kMaxMessage = 65536;  // Bytes; a longer message is dropped.

  // The whole messages, 0xF0 through 0xF7, that bytes complete.
  std::vector<std::vector<std::uint8_t>> Feed(std::span<const std::uint8_t> bytes);

  // Forgets a message that has begun.
  void Reset() { mMessage.clear(); }

 private:
  std::vector<std::uint8_t> mMessage;  // Empty outside of a message.
};

}  // namespace Simulator
