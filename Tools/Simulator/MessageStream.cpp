#include "Tools/Simulator/MessageStream.h"

namespace Simulator {
namespace {

constexpr std::uint8_t kStart = 0xF0;
constexpr std::uint8_t kEnd = 0xF7;
constexpr std::uint8_t kFirstRealTime = 0xF8;
constexpr std::uint8_t kStatusBit = 0x80;

}  // namespace

std::vector<std::vector<std::uint8_t>> MessageStream::Feed(std::span<const std::uint8_t> bytes) {
  std::vector<std::vector<std::uint8_t>> messages;
  for (const std::uint8_t byte : bytes) {
    if (byte >= kFirstRealTime) continue;
    if (byte == kStart) {
      mMessage.assign(1, byte);
    } else if (mMessage.empty()) {
      continue;
    } else if (byte == kEnd) {
      mMessage.push_back(byte);
      messages.push_back(std::move(mMessage));
      mMessage.clear();
    } else if ((byte & kStatusBit) != 0 || mMessage.size() + 1 >= kMaxMessage) {
      mMessage.clear();
    } else {
      mMessage.push_back(byte);
    }
  }
  return messages;
}

}  // namespace Simulator
