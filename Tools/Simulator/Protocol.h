#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/Simulator/Fault.h"

// The device's view of the system-exclusive protocol: framing, 7-bit packing, what the
// computer asks and what the device answers. Pure functions, callable from any thread.
namespace Simulator {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint8_t kSysExStart = 0xF0;
inline constexpr std::uint8_t kSysExEnd = 0xF7;
inline constexpr std::array<std::uint8_t, 3> kManufacturerId{0x00, 0x00, 0x17};

inline constexpr std::uint8_t kTypeVersionQuery = 0x70;
inline constexpr std::uint8_t kTypeVersionReply = 0x71;
inline constexpr std::uint8_t kTypeEnterUpdateMode = 0x72;
inline constexpr std::uint8_t kTypeBootloader = 0x73;

inline constexpr std::uint8_t kCommandOpen = 0xC0;
inline constexpr std::uint8_t kCommandFinish = 0xC1;
inline constexpr std::uint8_t kCommandStart = 0xC2;
inline constexpr std::uint8_t kCommandSelectRegion = 0xC4;
inline constexpr std::uint8_t kCommandRegionHeader = 0xC5;
inline constexpr std::uint8_t kCommandWriteAcked = 0xC6;
inline constexpr std::uint8_t kCommandWrite = 0xC7;
inline constexpr std::uint8_t kCommandVerifyRegion = 0xC8;

inline constexpr std::uint8_t kReplyAck = 0x80;
inline constexpr std::uint8_t kReplyValue = 0x81;
inline constexpr std::uint8_t kReplyError = 0x82;
inline constexpr std::uint8_t kReplyRegion = 0x83;
inline constexpr std::uint8_t kReplyReady = 0x84;

inline constexpr std::uint32_t kAnyId = 0xFFFFFFFF;  // The computer does not know the id yet.
inline constexpr std::uint32_t kDefaultHardwareId = 0x31534C54;
inline constexpr std::uint32_t kDefaultSecondaryId = 0x00000100;

inline constexpr std::size_t kVersionReplySize = 48;  // Data bytes of a version reply.
inline constexpr std::size_t kMaxWriteSize = 240;     // Data bytes of one write command.

struct FirmwareVersion {
  std::uint8_t mMajor = 0;
  std::uint8_t mMinor = 0;
  std::uint8_t mPatch = 0;
  std::uint8_t mBuild = 0;
  auto operator<=>(const FirmwareVersion& other) const = default;
};

// "1.5.0.9"; throws std::invalid_argument for anything but four numbers from 0 to 255.
FirmwareVersion ParseVersion(std::string_view text);
std::string ToText(const FirmwareVersion& version);

Bytes PackSevenBit(std::span<const std::uint8_t> data);

// Empty for bytes that PackSevenBit does not produce.
std::optional<Bytes> UnpackSevenBit(std::span<const std::uint8_t> packed);

// The whole message of a type around packed data; no data gives the six-byte form.
Bytes FrameMessage(std::uint8_t type, std::span<const std::uint8_t> data);

// A message from the computer, taken apart.
struct Request {
  MessageName mName = MessageName::kOther;
  std::uint32_t mHardwareId = 0;   // Of the envelope.
  std::uint32_t mSecondaryId = 0;  // Of the envelope.
  std::uint8_t mCommand = 0;       // Of the envelope.
  Bytes mArguments;                // Behind the command.
  std::string mFault;              // Why the message is malformed; empty for a sound one.
};

// Empty for a message of another maker.
std::optional<Request> ParseRequest(std::span<const std::uint8_t> message);

// An answer of the device before packing.
struct Reply {
  std::uint8_t mType = kTypeBootloader;
  Bytes mData;
};

// The envelope of a bootloader reply; arguments follow the code.
Reply MakeReply(std::uint32_t hardwareId, std::uint32_t secondaryId, std::uint8_t code,
                std::span<const std::uint8_t> arguments);

void AppendLittleEndian(Bytes& out, std::uint32_t value);
std::uint32_t ReadLittleEndian(std::span<const std::uint8_t> bytes);  // Of the first four.

}  // namespace Simulator
