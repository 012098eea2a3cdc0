#include <algorithm>
#include <cstdlib>

#include "Engine/BootloaderMessages.h"
#include "Engine/SevenBitPacking.h"

// Whatever the bytes, the parsers agree with each other and with the unpacked data, and what
// the builders pack comes back.

namespace {

using ByteArray = TF::Array<unsigned char>;
using CharArray = TF::Array<char>;

void Require(bool condition) {
  if (!condition) std::abort();
}

bool Equal(const ByteArray& left, const ByteArray& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

void CheckVersionReply(const CharArray& message, const ByteArray& data) {
  FirmwareVersionInfo version;
  unsigned secondaryId = 0;
  unsigned hardwareId = 0;
  const bool isReply = ParseVersionReply(message, version) == TF::kSuccess;
  Require((ParseDeviceIds(message, secondaryId, hardwareId) == TF::kSuccess) == isReply);
  Require((IsFirmwareVersionReply(message) != IsBootloaderVersionReply(message)) == isReply);
  if (!isReply) return;
  Require(IsVendorMessage(message) && data.GetCount() == 48);
  Require(version.mMajor == data[15] && version.mBuild == data[12] && !version.mText.IsEmpty());
  Require((hardwareId & 0xFF) == data[0] && secondaryId >> 24 == data[19]);
}

void CheckReply(const CharArray& message, const ByteArray& data) {
  BootloaderReply reply;
  if (ParseBootloaderReply(message, reply) != TF::kSuccess) return;
  Require(IsVendorMessage(message) && data.GetCount() >= 9);
  Require(reply.mCode == data[8] && reply.mCode >= BL_REPLY_ACK && reply.mCode <= BL_REPLY_READY);
  Require(reply.mHardwareId == 0 || reply.mCode == BL_REPLY_REGION);
  Require(reply.mCode != BL_REPLY_READY || reply.mValue <= 0xFF);
}

void CheckPacking(const ByteArray& data) {
  ByteArray packed;
  ByteArray unpacked;
  Require(PackSevenBit(data, packed) == (8 * data.GetCount() + 6) / 7);
  Require(std::all_of(packed.begin(), packed.end(), [](unsigned char byte) { return byte < 0x80; }));
  UnpackSevenBit(packed, unpacked);
  Require(Equal(unpacked, data));
}

void CheckEnvelope(ByteArray command) {
  if (command.GetCount() > 246) command.SetCount(246);
  CharArray message;
  BuildEnvelope({0x80402010, 0x08040201}, command, message);
  ByteArray data;
  UnpackMessageData(message, data);
  Require(data.GetCount() == command.GetCount() + 8 && data[0] == 0x10 && data[7] == 0x08);
  Require(std::equal(command.begin(), command.end(), data.begin() + 8, data.end()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  CharArray message;
  message.SetCount(static_cast<int>(size));
  std::copy(bytes, bytes + size, message.begin());
  ByteArray raw;
  raw.SetCount(static_cast<int>(size));
  std::copy(bytes, bytes + size, raw.begin());

  ByteArray data;
  UnpackMessageData(message, data);
  Require(IsAckMessage(message) == (data.GetCount() == 9 && data[8] == BL_REPLY_ACK));
  CheckVersionReply(message, data);
  CheckReply(message, data);
  CheckPacking(raw);
  CheckEnvelope(raw);
  return 0;
}
