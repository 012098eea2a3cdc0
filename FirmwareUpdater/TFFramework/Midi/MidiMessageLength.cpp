#include "TFFramework/Midi/MidiMessageLength.h"

#include <array>

namespace TF {

namespace {

constexpr int kStatusKinds = 16;

// By the high half of the status byte.
constexpr std::array<std::int8_t, kStatusKinds> kCaptured = {1, 1, 1, 1, 1, 1, 1, 1, 3, 3, 3, 3, 2, 2, 3, 1};
constexpr std::array<std::int8_t, kStatusKinds> kSent = {0, 0, 0, 0, 0, 0, 0, 0, 3, 3, 3, 3, 2, 2, 3, 0};
// By the low half of a system message. 0xF0 and 0xF7 belong to system-exclusive data.
constexpr std::array<std::int8_t, kStatusKinds> kSentSystem = {0, 2, 3, 2, 2, 2, 1, 0,
                                                               1, 1, 1, 1, 1, 1, 1, 1};

constexpr std::uint8_t kSystemKind = 0xF;

}  // namespace

std::int32_t CapturedMessageLength(std::uint8_t status) {
  return kCaptured[status >> 4];
}

bool IsShortMessage(std::uint8_t first) {
  return SentMessageLength(first) != 0;
}

std::int32_t SentMessageLength(std::uint8_t status) {
  return status >> 4 == kSystemKind ? kSentSystem[status & 0x0F] : kSent[status >> 4];
}

}  // namespace TF
