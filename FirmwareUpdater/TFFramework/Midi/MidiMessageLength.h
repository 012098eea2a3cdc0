#pragma once

#include <cstdint>

namespace TF {

inline constexpr std::uint8_t kMidiStatusBit = 0x80;
inline constexpr std::uint8_t kMidiSystemExclusive = 0xF0;
inline constexpr std::uint8_t kMidiEndOfExclusive = 0xF7;

// Bytes, status byte included, of a short message that a driver packed for capture. System
// messages count as one byte there, whatever they carry.
std::int32_t CapturedMessageLength(std::uint8_t status);

// True when a message with this first byte goes to the driver as one packed word. All others,
// a lone data byte among them, go as a block of bytes.
bool IsShortMessage(std::uint8_t first);

// Bytes of a short message to send, status byte included; 0 when it is no short message.
std::int32_t SentMessageLength(std::uint8_t status);

}  // namespace TF
