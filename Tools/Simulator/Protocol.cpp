#include "Tools/Simulator/Protocol.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "Tools/Support/Number.h"

namespace Simulator {
namespace {

constexpr std::size_t kGroupSize = 7;        // Data bytes of a packed group at most.
constexpr std::size_t kTypeOffset = 4;       // Of the type in a message.
constexpr std::size_t kDataOffset = 5;       // Of the packed data in a message.
constexpr std::size_t kEnvelopeSize = 9;     // The two ids and the command.
constexpr std::size_t kSecondaryOffset = 4;  // In the envelope.
constexpr std::size_t kCommandOffset = 8;    // In the envelope.

struct NamedCommand {
  std::uint8_t mCode;
  MessageName mName;
};

constexpr std::array<NamedCommand, 8> kCommands{{{kCommandOpen, MessageName::kOpen},
                                                 {kCommandFinish, MessageName::kFinish},
                                                 {kCommandStart, MessageName::kStart},
                                                 {kCommandSelectRegion, MessageName::kSelect},
                                                 {kCommandRegionHeader, MessageName::kHeader},
                                                 {kCommandWriteAcked, MessageName::kWriteAcked},
                                                 {kCommandWrite, MessageName::kWrite},
                                                 {kCommandVerifyRegion, MessageName::kVerify}}};

MessageName NameOfCommand(std::uint8_t code) {
  for (const NamedCommand& command : kCommands) {
    if (command.mCode == code) return command.mName;
  }
  return MessageName::kOther;
}

Request ParseShort(MessageName name, std::span<const std::uint8_t> packed) {
  Request request;
  request.mName = name;
  if (!packed.empty())
    request.mFault = fmt::format("{} carries {} bytes of data", NameOf(name), packed.size());
  return request;
}

Request ParseEnvelope(std::span<const std::uint8_t> packed) {
  Request request;
  const std::optional<Bytes> data = UnpackSevenBit(packed);
  if (!data) {
    request.mFault = "an envelope is packed wrongly";
  } else if (data->size() < kEnvelopeSize) {
    request.mFault = fmt::format("an envelope of {} bytes has no command", data->size());
  } else {
    const std::span<const std::uint8_t> bytes(*data);
    request.mHardwareId = ReadLittleEndian(bytes);
    request.mSecondaryId = ReadLittleEndian(bytes.subspan(kSecondaryOffset));
    request.mCommand = bytes[kCommandOffset];
    request.mName = NameOfCommand(request.mCommand);
    request.mArguments.assign(data->begin() + kEnvelopeSize, data->end());
  }
  return request;
}

}  // namespace

FirmwareVersion ParseVersion(std::string_view text) {
  std::array<std::uint8_t, 4> numbers{};
  std::string_view rest = text;
  for (std::size_t index = 0; index < numbers.size(); ++index) {
    const bool last = index + 1 == numbers.size();
    const std::size_t end = last ? rest.size() : rest.find('.');
    if (end == std::string_view::npos)
      throw std::invalid_argument(fmt::format("\"{}\" is not MAJOR.MINOR.PATCH.BUILD", text));
    numbers[index] =
        static_cast<std::uint8_t>(Tools::ParseNumber(rest.substr(0, end), "version number", 0xFF));
    rest.remove_prefix(last ? end : end + 1);
  }
  return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

std::string ToText(const FirmwareVersion& version) {
  return fmt::format("{}.{}.{}.{}", version.mMajor, version.mMinor, version.mPatch, version.mBuild);
}

Bytes PackSevenBit(std::span<const std::uint8_t> data) {
  Bytes packed;
  packed.reserve((8 * data.size() + 6) / kGroupSize);
  for (std::size_t start = 0; start < data.size(); start += kGroupSize) {
    const auto group = data.subspan(start, std::min(kGroupSize, data.size() - start));
    std::uint8_t highBits = 0;
    for (std::size_t index = 0; index < group.size(); ++index) {
      highBits = static_cast<std::uint8_t>(highBits | (group[index] >> 7) << index);
    }
    packed.push_back(highBits);
    for (const std::uint8_t byte : group) packed.push_back(byte & 0x7F);
  }
  return packed;
}

std::optional<Bytes> UnpackSevenBit(std::span<const std::uint8_t> packed) {
  Bytes data;
  for (std::size_t start = 0; start < packed.size(); start += kGroupSize + 1) {
    const auto group = packed.subspan(start, std::min(kGroupSize + 1, packed.size() - start));
    for (std::size_t index = 1; index < group.size(); ++index) {
      data.push_back(static_cast<std::uint8_t>(group[index] | ((group[0] >> (index - 1)) & 1) << 7));
    }
  }
  // Bytes with bit 7, high bits of data that is not there and a group without data all fail here.
  const Bytes again = PackSevenBit(data);
  if (!std::equal(again.begin(), again.end(), packed.begin(), packed.end())) return {};
  return data;
}

Bytes FrameMessage(std::uint8_t type, std::span<const std::uint8_t> data) {
  const Bytes packed = PackSevenBit(data);
  Bytes message;
  message.reserve(packed.size() + kManufacturerId.size() + 3);
  message.push_back(kSysExStart);
  for (const std::uint8_t byte : kManufacturerId) message.push_back(byte);
  message.push_back(type);
  message.insert(message.end(), packed.begin(), packed.end());
  message.push_back(kSysExEnd);
  return message;
}

std::optional<Request> ParseRequest(std::span<const std::uint8_t> message) {
  const bool ours = message.size() > kDataOffset && message.front() == kSysExStart &&
                    message.back() == kSysExEnd &&
                    std::equal(kManufacturerId.begin(), kManufacturerId.end(), message.begin() + 1);
  if (!ours) return {};
  const auto packed = message.subspan(kDataOffset, message.size() - kDataOffset - 1);
  switch (message[kTypeOffset]) {
    case kTypeVersionQuery:
      return ParseShort(MessageName::kVersion, packed);
    case kTypeEnterUpdateMode:
      return ParseShort(MessageName::kSwitch, packed);
    case kTypeBootloader:
      return ParseEnvelope(packed);
    default:
      break;
  }
  Request request;
  request.mFault = fmt::format("message type 0x{:02X} is unknown", message[kTypeOffset]);
  return request;
}

Reply MakeReply(std::uint32_t hardwareId, std::uint32_t secondaryId, std::uint8_t code,
                std::span<const std::uint8_t> arguments) {
  Reply reply;
  AppendLittleEndian(reply.mData, hardwareId);
  AppendLittleEndian(reply.mData, secondaryId);
  reply.mData.push_back(code);
  reply.mData.insert(reply.mData.end(), arguments.begin(), arguments.end());
  return reply;
}

void AppendLittleEndian(Bytes& out, std::uint32_t value) {
  for (int byte = 0; byte < 4; ++byte) out.push_back(static_cast<std::uint8_t>(value >> (8 * byte)));
}

std::uint32_t ReadLittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) value |= static_cast<std::uint32_t>(bytes[byte]) << (8 * byte);
  return value;
}

}  // namespace Simulator
