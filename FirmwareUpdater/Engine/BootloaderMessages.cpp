#include "Engine/BootloaderMessages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "Engine/SevenBitPacking.h"
#include "TFFramework/ObjectBase/Exception.h"

namespace {

constexpr std::array<unsigned char, 4> kVendorHeader = {kMessageStart, 0x00, 0x00, 0x17};
constexpr std::size_t kTypeOffset = kVendorHeader.size();
constexpr std::size_t kPackedOffset = kTypeOffset + 1;
constexpr std::size_t kFramingBytes = kPackedOffset + 1;

constexpr std::size_t kIdBytes = 8;  // Both ids, ahead of a command or reply code.
constexpr std::size_t kWriteArgumentBytes = 5;
constexpr std::size_t kMaxCommandBytes = 1 + kWriteArgumentBytes + kMaxWriteBytes;
constexpr std::size_t kRegionCommandBytes = 5;
constexpr std::size_t kRegionHeaderCommandBytes = 25;

constexpr std::size_t kVersionReplyBytes = 48;
constexpr std::size_t kVersionReplyHardwareId = 0;
constexpr std::size_t kVersionReplyBuild = 12;
constexpr std::size_t kVersionReplyPatch = 13;
constexpr std::size_t kVersionReplyMinor = 14;
constexpr std::size_t kVersionReplyMajor = 15;
constexpr std::size_t kVersionReplySecondaryId = 16;

constexpr std::size_t kReplyCode = kIdBytes;
constexpr std::size_t kReplyArgument = kReplyCode + 1;
constexpr std::size_t kReplySecondArgument = kReplyArgument + 4;
constexpr std::size_t kMaxReplyBytes = kReplySecondArgument + 4;  // Bytes behind these are never read.

// The open message is the only envelope of a fixed size that the engine builds itself.
static_assert(kFramingBytes + PackedSize(kIdBytes + 1) == 17);

using VersionReplyData = std::array<unsigned char, kVersionReplyBytes>;

void PutWord(std::uint32_t value, unsigned char* out) {
  for (int byte = 0; byte < 4; ++byte) out[byte] = static_cast<unsigned char>(value >> 8 * byte);
}

std::uint32_t GetWord(const unsigned char* data) {
  return data[0] | std::uint32_t{data[1]} << 8 | std::uint32_t{data[2]} << 16 | std::uint32_t{data[3]} << 24;
}

const unsigned char* BytesOf(const TF::IArray<char>& message) {
  return reinterpret_cast<const unsigned char*>(message.GetBuffer());
}

std::size_t SizeOf(const TF::IArray<char>& message) {
  return static_cast<std::size_t>(message.GetCount());
}

bool HasType(const TF::IArray<char>& message, MessageType type) {
  return IsVendorMessage(message) && SizeOf(message) > kTypeOffset &&
         BytesOf(message)[kTypeOffset] == static_cast<unsigned char>(type);
}

// Of the data between the first five bytes and the last.
std::size_t DataSizeOf(const TF::IArray<char>& message) {
  const std::size_t size = SizeOf(message);
  return size > kPackedOffset ? UnpackedSize(size - kFramingBytes) : 0;
}

TFRESULT SetBytes(std::initializer_list<unsigned char> bytes, TF::Array<char>& out) {
  out.SetCount(static_cast<int>(bytes.size()));
  std::copy(bytes.begin(), bytes.end(), reinterpret_cast<unsigned char*>(out.GetBuffer()));
  return TF::kSuccess;
}

TFRESULT BuildWithoutData(MessageType type, TF::Array<char>& out) {
  return SetBytes({kVendorHeader[0], kVendorHeader[1], kVendorHeader[2], kVendorHeader[3],
                   static_cast<unsigned char>(type), kMessageEnd},
                  out);
}

void Frame(MessageType type, const unsigned char* data, std::size_t size, TF::Array<char>& out) {
  const std::size_t packedSize = PackedSize(size);
  out.SetCount(static_cast<int>(kFramingBytes + packedSize));
  auto* bytes = reinterpret_cast<unsigned char*>(out.GetBuffer());
  std::copy(kVendorHeader.begin(), kVendorHeader.end(), bytes);
  bytes[kTypeOffset] = static_cast<unsigned char>(type);
  PackSevenBit(data, size, bytes + kPackedOffset);
  bytes[kPackedOffset + packedSize] = kMessageEnd;
}

std::optional<VersionReplyData> ReadVersionReply(const TF::IArray<char>& message) {
  if (!HasType(message, MessageType::kVersionReply)) return std::nullopt;
  if (DataSizeOf(message) != kVersionReplyBytes) return std::nullopt;
  VersionReplyData data;
  UnpackSevenBit(BytesOf(message) + kPackedOffset, data.size(), data.data());
  return data;
}

bool IsVersionZero(const VersionReplyData& data) {
  return (data[kVersionReplyMajor] | data[kVersionReplyMinor] | data[kVersionReplyPatch] |
          data[kVersionReplyBuild]) == 0;
}

}  // namespace

TFRESULT BuildVersionQuery(TF::Array<char>& out) {
  return BuildWithoutData(MessageType::kVersionQuery, out);
}

TFRESULT BuildEnterUpdateMode(TF::Array<char>& out) {
  return BuildWithoutData(MessageType::kEnterUpdateMode, out);
}

TFRESULT BuildOpenMessage(TF::Array<char>& out, unsigned hardwareId, unsigned secondaryId) {
  std::array<unsigned char, kIdBytes + 1> data;
  PutWord(hardwareId, data.data());
  PutWord(secondaryId, data.data() + 4);
  data[kIdBytes] = BL_CMD_OPEN;
  Frame(MessageType::kBootloader, data.data(), data.size(), out);
  return TF::kSuccess;
}

TFRESULT BuildIdentityRequest(TF::Array<char>& out) {
  return SetBytes({kMessageStart, 0x7E, 0x7F, 0x06, 0x01, kMessageEnd}, out);
}

TFRESULT BuildFramedMessage(const TF::IArray<unsigned char>& data, TF::Array<char>& out) {
  const auto size = static_cast<std::size_t>(data.GetCount());
  out.SetCount(static_cast<int>(size + 2));
  auto* bytes = reinterpret_cast<unsigned char*>(out.GetBuffer());
  bytes[0] = kMessageStart;
  std::copy_n(data.GetBuffer(), size, bytes + 1);
  bytes[size + 1] = kMessageEnd;
  return TF::kSuccess;
}

void BuildCommand(BootloaderCommand code, TF::Array<unsigned char>& out) {
  out.SetCount(1);
  out.GetBuffer()[0] = code;
}

void BuildRegionCommand(BootloaderCommand code, std::uint32_t regionIndex, TF::Array<unsigned char>& out) {
  out.SetCount(kRegionCommandBytes);
  unsigned char* bytes = out.GetBuffer();
  bytes[0] = code;
  PutWord(regionIndex, bytes + 1);
}

void BuildRegionHeaderCommand(const VarnokFileRegionHeader& header, TF::Array<unsigned char>& out) {
  out.SetCount(kRegionHeaderCommandBytes);
  unsigned char* bytes = out.GetBuffer();
  bytes[0] = BL_CMD_REGION_HEADER;
  PutWord(header.mHardwareId, bytes + 1);
  PutWord(header.mRegionIndex, bytes + 5);
  std::memcpy(bytes + 9, header.mAttributes, sizeof header.mAttributes);
  PutWord(header.mParameter, bytes + 13);
  PutWord(header.mDataSize, bytes + 17);
  PutWord(header.mRegionCrc, bytes + 21);
}

void BuildWriteCommand(BootloaderCommand code, std::uint32_t address, const unsigned char* data,
                       std::size_t size, TF::Array<unsigned char>& out) {
  if (size > kMaxWriteBytes) TF::Throw<std::invalid_argument>("Too much data.", "BuildWriteCommand");
  out.SetCount(static_cast<int>(1 + kWriteArgumentBytes + size));
  unsigned char* bytes = out.GetBuffer();
  bytes[0] = code;
  PutWord(address, bytes + 1);
  bytes[5] = static_cast<unsigned char>(size);
  std::memcpy(bytes + 6, data, size);
}

void BuildEnvelope(const BootloaderAddress& address, const TF::Array<unsigned char>& command,
                   TF::Array<char>& out) {
  std::array<unsigned char, kIdBytes + kMaxCommandBytes> data;
  const auto size = static_cast<std::size_t>(command.GetCount());
  if (size > kMaxCommandBytes) TF::Throw<std::invalid_argument>("Command is too long.", "BuildEnvelope");
  PutWord(address.mHardwareId, data.data());
  PutWord(address.mSecondaryId, data.data() + 4);
  std::copy_n(command.GetBuffer(), size, data.data() + kIdBytes);
  Frame(MessageType::kBootloader, data.data(), kIdBytes + size, out);
}

void UnpackMessageData(const TF::IArray<char>& message, TF::Array<unsigned char>& out) {
  const std::size_t size = DataSizeOf(message);
  out.SetCount(static_cast<int>(size));
  if (size > 0) UnpackSevenBit(BytesOf(message) + kPackedOffset, size, out.GetBuffer());
}

bool IsVendorMessage(const TF::IArray<char>& message) {
  return SizeOf(message) >= kVendorHeader.size() &&
         std::equal(kVendorHeader.begin(), kVendorHeader.end(), BytesOf(message));
}

bool IsFirmwareVersionReply(const TF::IArray<char>& message) {
  const auto data = ReadVersionReply(message);
  return data && !IsVersionZero(*data);
}

bool IsBootloaderVersionReply(const TF::IArray<char>& message) {
  const auto data = ReadVersionReply(message);
  return data && IsVersionZero(*data);
}

bool IsAckMessage(const TF::IArray<char>& message) {
  if (DataSizeOf(message) != kIdBytes + 1) return false;
  std::array<unsigned char, kIdBytes + 1> data;
  UnpackSevenBit(BytesOf(message) + kPackedOffset, data.size(), data.data());
  return data[kReplyCode] == BL_REPLY_ACK;
}

TFRESULT ParseVersionReply(const TF::IArray<char>& message, FirmwareVersionInfo& out) {
  const auto data = ReadVersionReply(message);
  if (!data) return TF::kFailure;
  out.mMajor = (*data)[kVersionReplyMajor];
  out.mMinor = (*data)[kVersionReplyMinor];
  out.mPatch = (*data)[kVersionReplyPatch];
  out.mBuild = (*data)[kVersionReplyBuild];
  out.mText = TF::String::Format(u"%d.%d.%d.%d", out.mMajor, out.mMinor, out.mPatch, out.mBuild);
  return TF::kSuccess;
}

TFRESULT ParseDeviceIds(const TF::IArray<char>& message, unsigned& secondaryId, unsigned& hardwareId) {
  const auto data = ReadVersionReply(message);
  if (!data) return TF::kFailure;
  hardwareId = GetWord(data->data() + kVersionReplyHardwareId);
  secondaryId = GetWord(data->data() + kVersionReplySecondaryId);
  return TF::kSuccess;
}

TFRESULT ParseBootloaderReply(const TF::IArray<char>& message, BootloaderReply& out) {
  if (!HasType(message, MessageType::kBootloader)) return TF::kFailure;
  const std::size_t size = DataSizeOf(message);
  if (size <= kReplyCode) return TF::kFailure;
  std::array<unsigned char, kMaxReplyBytes> data{};
  UnpackSevenBit(BytesOf(message) + kPackedOffset, std::min(size, data.size()), data.data());
  if (data[kReplyCode] < BL_REPLY_ACK || data[kReplyCode] > BL_REPLY_READY) return TF::kFailure;

  out = {data[kReplyCode], GetWord(data.data() + kReplyArgument), 0};
  if (out.mCode == BL_REPLY_ACK) out.mValue = 0;
  if (out.mCode == BL_REPLY_READY) out.mValue = data[kReplyArgument];
  if (out.mCode == BL_REPLY_REGION) {
    out.mHardwareId = out.mValue;
    out.mValue = GetWord(data.data() + kReplySecondArgument);
  }
  return TF::kSuccess;
}
