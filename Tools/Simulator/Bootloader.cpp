#include "Tools/Simulator/Bootloader.h"

#include <fmt/format.h>

#include <utility>

namespace Simulator {
namespace {

constexpr std::size_t kIndexSize = 4;    // Arguments of a command that names a region.
constexpr std::size_t kHeaderSize = 24;  // Arguments of BL_CMD_REGION_HEADER.
constexpr std::size_t kHeaderIndexOffset = 4;
constexpr std::size_t kHeaderCrcOffset = 20;
constexpr std::size_t kWriteCountOffset = 4;  // Arguments of the write commands.
constexpr std::size_t kWriteDataOffset = 5;
constexpr std::uint8_t kReady = 0;  // Argument of BL_REPLY_READY.

}  // namespace

Bootloader::Bootloader(std::uint32_t hardwareId, std::uint32_t secondaryId)
    : mHardwareId(hardwareId), mSecondaryId(secondaryId) {}

std::optional<Reply> Bootloader::Execute(const Request& request) {
  const bool forMe = (request.mHardwareId == mHardwareId || request.mHardwareId == kAnyId) &&
                     (request.mSecondaryId == mSecondaryId || request.mSecondaryId == kAnyId);
  if (!forMe) {
    mViolations.push_back(fmt::format("{} is for the ids 0x{:08X}, 0x{:08X}", NameOf(request.mName),
                                      request.mHardwareId, request.mSecondaryId));
    return {};
  }
  switch (request.mCommand) {
    case kCommandOpen:
      return request.mArguments.empty() ? Answer(kReplyAck) : Refuse(kErrorMalformed, "open has arguments");
    case kCommandStart:
      return request.mArguments.empty() ? Start() : Refuse(kErrorMalformed, "start has arguments");
    case kCommandFinish:
      return RequestFinish(request);
    case kCommandSelectRegion:
      return SelectRegion(request);
    case kCommandRegionHeader:
      return TakeHeader(request);
    case kCommandWriteAcked:
    case kCommandWrite:
      return Write(request);
    case kCommandVerifyRegion:
      return VerifyRegion(request);
    default:
      break;
  }
  return Refuse(kErrorUnknownCommand, fmt::format("command 0x{:02X} is unknown", request.mCommand));
}

bool Bootloader::TakeFinish() {
  return std::exchange(mFinishing, false);
}

UpdateOutcome Bootloader::Finish() {
  if (!mUnverified.empty()) return UpdateOutcome::kIncomplete;
  return std::exchange(mVerifiedAny, false) ? UpdateOutcome::kComplete : UpdateOutcome::kNothingWritten;
}

void Bootloader::Reset() {
  mStarted = false;
  mSelected.reset();
  mHeaderTaken = false;
}

std::vector<std::string> Bootloader::TakeViolations() {
  return std::exchange(mViolations, {});
}

Reply Bootloader::Answer(std::uint8_t code, std::span<const std::uint8_t> arguments) const {
  return MakeReply(mHardwareId, mSecondaryId, code, arguments);
}

Reply Bootloader::Value(std::uint32_t value) const {
  Bytes arguments;
  AppendLittleEndian(arguments, value);
  return Answer(kReplyValue, arguments);
}

Reply Bootloader::Refuse(std::uint32_t error, std::string violation) {
  mViolations.push_back(std::move(violation));
  Bytes arguments;
  AppendLittleEndian(arguments, error);
  return Answer(kReplyError, arguments);
}

Reply Bootloader::Start() {
  Reset();
  mVerified.clear();
  mStarted = true;
  return Answer(kReplyReady, std::span(&kReady, 1));
}

// Never answered: neither the obeyed command nor a wrong one.
std::optional<Reply> Bootloader::RequestFinish(const Request& request) {
  if (!request.mArguments.empty()) {
    mViolations.push_back("finish has arguments");
  } else if (!mStarted) {
    mViolations.push_back("finish before start");
  } else {
    mFinishing = true;
  }
  return {};
}

Reply Bootloader::SelectRegion(const Request& request) {
  if (request.mArguments.size() != kIndexSize) return Refuse(kErrorMalformed, "select has the wrong size");
  if (!mStarted) return Refuse(kErrorNotStarted, "select before start");
  mSelected = ReadLittleEndian(request.mArguments);
  mHeaderTaken = false;
  Bytes arguments;
  AppendLittleEndian(arguments, mHardwareId);
  AppendLittleEndian(arguments, *mSelected);
  return Answer(kReplyRegion, arguments);
}

// Acknowledged with a value: the computer does not take BL_REPLY_ACK during a transfer.
Reply Bootloader::TakeHeader(const Request& request) {
  const std::span<const std::uint8_t> arguments(request.mArguments);
  if (arguments.size() != kHeaderSize) return Refuse(kErrorMalformed, "header has the wrong size");
  if (!mStarted) return Refuse(kErrorNotStarted, "header before start");
  const std::uint32_t index = ReadLittleEndian(arguments.subspan(kHeaderIndexOffset));
  if (mSelected != index)
    return Refuse(kErrorWrongRegion, fmt::format("header of region {}, not selected", index));
  if (ReadLittleEndian(arguments) != mHardwareId)
    return Refuse(kErrorWrongHardware, fmt::format("header of region {} for other hardware", index));
  mExpectedCrc = ReadLittleEndian(arguments.subspan(kHeaderCrcOffset));
  mHeaderTaken = true;
  mCrc = 0;
  BeginRegion();
  return Value(0);
}

void Bootloader::BeginRegion() {
  mUnverified.insert(*mSelected);
  mVerified.erase(*mSelected);
}

std::optional<Reply> Bootloader::Write(const Request& request) {
  const bool acknowledged = request.mCommand == kCommandWriteAcked;
  const auto refuse = [&](std::uint32_t error, const char* violation) {
    const Reply reply = Refuse(error, violation);
    return acknowledged ? std::optional<Reply>(reply) : std::nullopt;
  };
  const std::span<const std::uint8_t> arguments(request.mArguments);
  if (arguments.size() <= kWriteDataOffset) return refuse(kErrorMalformed, "write without data");
  const auto data = arguments.subspan(kWriteDataOffset);
  if (data.size() != arguments[kWriteCountOffset] || data.size() > kMaxWriteSize)
    return refuse(kErrorMalformed, "write with a wrong count");
  if (!mHeaderTaken) return refuse(kErrorNoHeader, "write before the region's header");
  if (!mFlash.Write(ReadLittleEndian(arguments), data))
    return refuse(kErrorAddress, "write passes the last address");
  mCrc = Vbin::Crc32(data, mCrc);
  BeginRegion();  // Also of a region that was verified before.
  if (!acknowledged) return {};
  return Value(Vbin::Crc32(data));
}

Reply Bootloader::VerifyRegion(const Request& request) {
  if (request.mArguments.size() != kIndexSize) return Refuse(kErrorMalformed, "verify has the wrong size");
  const std::uint32_t index = ReadLittleEndian(request.mArguments);
  if (mSelected != index)
    return Refuse(kErrorWrongRegion, fmt::format("verify of region {}, not selected", index));
  if (!mHeaderTaken) return Refuse(kErrorNoHeader, "verify before the region's header");
  if (mCrc == mExpectedCrc) {
    mUnverified.erase(index);
    mVerified.insert(index);
    mVerifiedAny = true;
  }
  return Value(mCrc);
}

}  // namespace Simulator
