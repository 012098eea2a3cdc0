#include "Platform/MidiByteStream.h"

#include "Platform/MidiDriver.h"

namespace Platform {
namespace {

constexpr std::uint8_t kStatusBit = 0x80;
constexpr std::uint8_t kExclusiveStart = 0xF0;
constexpr std::uint8_t kExclusiveEnd = 0xF7;
constexpr std::uint8_t kFirstSystem = 0xF0;
constexpr std::uint8_t kFirstRealTime = 0xF8;
constexpr std::uint32_t kBitsInByte = 8;

bool IsUndefined(std::uint8_t status) {
  return status == 0xF4 || status == 0xF5 || status == 0xF9 || status == 0xFD;
}

}  // namespace

std::uint32_t MidiShortLength(std::uint8_t status) {
  if (status < kStatusBit || status == kExclusiveStart || status == kExclusiveEnd) return 0;
  if (status < 0xC0) return 3;
  if (status < 0xE0) return 2;
  if (status < kFirstSystem) return 3;
  if (status == 0xF2) return 3;
  // The undefined 0xF4 and 0xF5 count as their neighbours do: a sender that uses them means
  // something by their data byte.
  return status == 0xF1 || (status >= 0xF3 && status <= 0xF5) ? 2 : 1;
}

MidiByteStream::Step MidiByteStream::Feed(std::span<const char> bytes, MidiBuffer* buffer) {
  std::size_t used = 0;
  while (used < bytes.size()) {
    const auto byte = static_cast<std::uint8_t>(bytes[used]);
    if (WantsBuffer(byte) && buffer == nullptr) return {used, Outcome::kNeedBuffer, 0};
    if (CutsOff(byte)) {
      if (mPieceOut) return {used, Store(kExclusiveEnd, *buffer), 0};
      buffer->recorded = 0;
      mInExclusive = false;
    }
    ++used;
    const Outcome outcome = Take(byte, buffer);
    if (outcome != Outcome::kNeedBytes) return {used, outcome, mPacked};
  }
  return {used, Outcome::kNeedBytes, 0};
}

bool MidiByteStream::CutsOff(std::uint8_t byte) const {
  return mInExclusive && byte >= kStatusBit && byte < kFirstRealTime && byte != kExclusiveEnd;
}

bool MidiByteStream::WantsBuffer(std::uint8_t byte) const {
  return byte < kFirstRealTime && (mInExclusive || byte == kExclusiveStart);
}

MidiByteStream::Outcome MidiByteStream::Take(std::uint8_t byte, MidiBuffer* buffer) {
  if (WantsBuffer(byte)) return Store(byte, *buffer);
  if (byte >= kFirstRealTime) return TakeRealTime(byte);
  return byte >= kStatusBit ? TakeStatus(byte) : TakeData(byte);
}

MidiByteStream::Outcome MidiByteStream::Store(std::uint8_t byte, MidiBuffer& buffer) {
  if (!mInExclusive) {
    Reset();
    mInExclusive = true;
  }
  buffer.data[buffer.recorded++] = static_cast<char>(byte);
  const bool ended = byte == kExclusiveEnd;
  if (!ended && buffer.recorded < buffer.length) return Outcome::kNeedBytes;
  mInExclusive = !ended;
  mPieceOut = !ended;
  return Outcome::kBufferDone;
}

MidiByteStream::Outcome MidiByteStream::TakeRealTime(std::uint8_t byte) {
  if (IsUndefined(byte)) return Outcome::kNeedBytes;
  mPacked = byte;
  return Outcome::kShort;
}

MidiByteStream::Outcome MidiByteStream::TakeStatus(std::uint8_t byte) {
  mHave = 0;
  mNeed = IsUndefined(byte) ? 0 : MidiShortLength(byte);
  if (mNeed == 0) return Outcome::kNeedBytes;
  mPartial = byte;
  mHave = 1;
  if (mNeed > 1) return Outcome::kNeedBytes;
  mNeed = 0;
  mPacked = byte;
  return Outcome::kShort;
}

MidiByteStream::Outcome MidiByteStream::TakeData(std::uint8_t byte) {
  if (mNeed == 0) return Outcome::kNeedBytes;
  mPartial |= static_cast<std::uint32_t>(byte) << (kBitsInByte * mHave);
  if (++mHave < mNeed) return Outcome::kNeedBytes;
  mPacked = mPartial;
  const auto status = static_cast<std::uint8_t>(mPartial);
  mPartial = status;
  mHave = 1;
  // Only the channel statuses run on.
  if (status >= kFirstSystem) mNeed = 0;
  return Outcome::kShort;
}

}  // namespace Platform
