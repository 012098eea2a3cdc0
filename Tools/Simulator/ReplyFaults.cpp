#include "Tools/Simulator/ReplyFaults.h"

#include <algorithm>
#include <utility>

namespace Simulator {
namespace {

constexpr std::size_t kCodeOffset = 8;                // Of the reply code in an envelope's data.
constexpr std::size_t kValueOffset = 9;               // Of the first argument.
constexpr std::size_t kRegionIndexOffset = 13;        // Of the second argument of BL_REPLY_REGION.
constexpr std::uint8_t kWrongType = 0x74;             // In place of a message type.
constexpr std::uint32_t kDefaultFlood = 1024 * 1024;  // Bytes.
constexpr std::uint8_t kClock = 0xF8;
constexpr std::uint8_t kActiveSensing = 0xFE;

bool IsCode(const Reply& reply, std::uint8_t code) {
  return reply.mType == kTypeBootloader && reply.mData.size() > kCodeOffset &&
         reply.mData[kCodeOffset] == code;
}

void Overwrite(Reply& reply, std::size_t offset, std::uint32_t value) {
  Bytes bytes;
  AppendLittleEndian(bytes, value);
  if (reply.mData.size() < offset + bytes.size()) return;
  std::copy(bytes.begin(), bytes.end(), reply.mData.begin() + static_cast<std::ptrdiff_t>(offset));
}

void MakeWrongCode(Reply& reply, std::optional<std::uint32_t> code) {
  if (reply.mType != kTypeBootloader) {
    reply.mType = kWrongType;
    return;
  }
  if (reply.mData.size() <= kCodeOffset) return;
  const std::uint8_t other = IsCode(reply, kReplyValue) ? kReplyError : kReplyValue;
  reply.mData[kCodeOffset] = static_cast<std::uint8_t>(code.value_or(other));
}

void ChangeReply(Reply& reply, const Fault& fault) {
  switch (fault.mKind) {
    case FaultKind::kWrongReply:
      MakeWrongCode(reply, fault.mArgument);
      break;
    case FaultKind::kWrongCrc:
      if (IsCode(reply, kReplyValue) && reply.mData.size() >= kValueOffset + sizeof(std::uint32_t))
        Overwrite(reply, kValueOffset, ~ReadLittleEndian(std::span(reply.mData).subspan(kValueOffset)));
      break;
    case FaultKind::kWrongRegion:
      if (IsCode(reply, kReplyRegion) && reply.mData.size() >= kRegionIndexOffset + sizeof(std::uint32_t))
        Overwrite(reply, kRegionIndexOffset,
                  ReadLittleEndian(std::span(reply.mData).subspan(kRegionIndexOffset)) + 1);
      break;
    case FaultKind::kWrongHardware:
      if (IsCode(reply, kReplyRegion)) Overwrite(reply, kValueOffset, fault.mArgument.value_or(kAnyId));
      break;
    case FaultKind::kShortReply:
      reply.mData.resize(reply.mData.size() -
                         std::min<std::size_t>(reply.mData.size(), fault.mArgument.value_or(1)));
      break;
    default:
      break;
  }
}

// Real-time bytes behind the first byte, in the middle and ahead of the last one.
Bytes WithRealTimeInside(const Bytes& message) {
  Bytes noisy;
  for (std::size_t index = 0; index < message.size(); ++index) {
    if (index == 1 || index == message.size() / 2) noisy.push_back(kClock);
    if (index + 1 == message.size()) noisy.push_back(kActiveSensing);
    noisy.push_back(message[index]);
  }
  return noisy;
}

// A clock tick, another maker's message, notes with running status, half a message of ours.
Bytes NoiseBefore() {
  return {kClock, 0xF0, 0x7D, 0x01, 0x02, 0xF7, 0x90, 0x3C, 0x40,
          0x3C,   0x00, 0xF0, 0x00, 0x00, 0x17, 0x73, 0x01};
}

Bytes NoiseAfter() {
  return {kActiveSensing, 0xC0, 0x05, 0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7};
}

Bytes Flood(std::uint32_t size) {
  Bytes bytes = FrameMessage(kTypeBootloader, {});
  bytes.pop_back();
  bytes.resize(std::max<std::size_t>(bytes.size(), size), 0);
  return bytes;
}

}  // namespace

const Fault* FindFault(std::span<const Fault> faults, FaultKind kind) {
  const auto found =
      std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) { return fault.mKind == kind; });
  return found == faults.end() ? nullptr : &*found;
}

std::vector<Transmission> Transmit(std::optional<Reply> reply, std::span<const Fault> faults,
                                   const Reply& errorReply) {
  std::vector<Transmission> out;
  if (const Fault* error = FindFault(faults, FaultKind::kErrorReply)) {
    reply = errorReply;
    Overwrite(*reply, kValueOffset, error->mArgument.value_or(0));
  }
  if (FindFault(faults, FaultKind::kLoseReply) != nullptr) reply.reset();
  const Fault* const late = FindFault(faults, FaultKind::kLateReply);
  const std::chrono::milliseconds delay(late != nullptr ? *late->mArgument : 0);
  const bool noisy = FindFault(faults, FaultKind::kNoise) != nullptr;
  if (noisy) out.push_back({delay, NoiseBefore()});
  if (const Fault* flood = FindFault(faults, FaultKind::kFlood))
    out.push_back({delay, Flood(flood->mArgument.value_or(kDefaultFlood))});
  if (reply) {
    for (const Fault& fault : faults) ChangeReply(*reply, fault);
    Bytes message = FrameMessage(reply->mType, reply->mData);
    if (noisy) message = WithRealTimeInside(message);
    if (FindFault(faults, FaultKind::kHalfReply) != nullptr) message.resize(message.size() / 2);
    const int times = FindFault(faults, FaultKind::kDuplicateReply) != nullptr ? 2 : 1;
    for (int time = 0; time < times; ++time) out.push_back({delay, message});
  }
  if (noisy) out.push_back({delay, NoiseAfter()});
  return out;
}

}  // namespace Simulator
