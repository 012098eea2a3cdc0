#include "Platform/MidiByteStream.h"
#include "Platform/MidiDriver.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Feeds any bytes to the MIDI stream, whole and torn, and checks what a listener relies on.
// The first byte of an input chooses the buffer size, the second where the stream is torn.
namespace {

using Platform::MidiBuffer;
using Platform::MidiByteStream;
using Outcome = MidiByteStream::Outcome;

constexpr std::size_t kLargestBuffer = 32;
constexpr char kShortMark = 's';
constexpr char kLongMark = 'l';

void Require(bool condition) {
  if (!condition) std::abort();
}

std::uint8_t Byte(char value) {
  return static_cast<std::uint8_t>(value);
}

// The listener's side: checks every message and keeps a transcript.
class Checker {
 public:
  explicit Checker(std::size_t bufferSize) : mBufferSize(bufferSize) {}

  void TakeShort(std::uint32_t packed) {
    const auto status = static_cast<std::uint8_t>(packed);
    const std::uint32_t length = Platform::MidiShortLength(status);
    Require(length > 0 && status != 0xF4 && status != 0xF5 && status != 0xF9 && status != 0xFD);
    Require(packed >> 8 * length == 0);
    for (std::uint32_t i = 1; i < length; ++i) Require((packed >> 8 * i & 0x80) == 0);
    transcript += kShortMark + std::to_string(packed);
  }

  void TakeBuffer(std::string_view bytes) {
    const bool ended = !bytes.empty() && Byte(bytes.back()) == 0xF7;
    Require(!bytes.empty() && (ended || bytes.size() == mBufferSize));
    Require((Byte(bytes.front()) == 0xF0) == !mInMessage);
    const auto begin = bytes.begin() + (mInMessage ? 0 : 1);
    const auto end = bytes.end() - (ended ? 1 : 0);
    Require(std::all_of(begin, end, [](char byte) { return Byte(byte) < 0x80; }));
    mInMessage = !ended;
    transcript += kLongMark + std::string(bytes);
  }

  std::string transcript;

 private:
  const std::size_t mBufferSize;
  bool mInMessage = false;
};

class Port {
 public:
  explicit Port(std::size_t bufferSize) : checker(bufferSize), mData(bufferSize) {
    mBuffer.data = mData.data();
    mBuffer.length = static_cast<std::uint32_t>(bufferSize);
  }

  // starved: the port has no buffer queued each time before it finds one.
  void Feed(std::span<const char> bytes, bool starved) {
    while (!bytes.empty()) {
      if (starved && mBuffer.recorded == 0) bytes = bytes.subspan(FeedStarved(bytes));
      const auto step = mStream.Feed(bytes, &mBuffer);
      Require(step.used <= bytes.size() && step.outcome != Outcome::kNeedBuffer);
      Require(step.outcome != Outcome::kNeedBytes || step.used == bytes.size());
      bytes = bytes.subspan(step.used);
      Take(step);
    }
  }

  Checker checker;

 private:
  std::size_t FeedStarved(std::span<const char> bytes) {
    const auto step = mStream.Feed(bytes, nullptr);
    Require(step.used <= bytes.size() && step.outcome != Outcome::kBufferDone);
    Take(step);
    return step.used;
  }

  void Take(const MidiByteStream::Step& step) {
    Require(mBuffer.recorded <= mBuffer.length);
    if (step.outcome == Outcome::kShort) checker.TakeShort(step.packed);
    if (step.outcome != Outcome::kBufferDone) return;
    checker.TakeBuffer({mData.data(), mBuffer.recorded});
    mBuffer.recorded = 0;
  }

  std::vector<char> mData;
  MidiBuffer mBuffer;
  MidiByteStream mStream;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t bufferSize = 1 + data[0] % kLargestBuffer;
  const std::size_t piece = 1 + data[1] % 7;
  const bool starved = (data[1] & 0x80) != 0;
  const std::span stream(reinterpret_cast<const char*>(data) + 2, size - 2);

  Port whole(bufferSize);
  whole.Feed(stream, false);
  Port torn(bufferSize);
  for (std::size_t at = 0; at < stream.size(); at += piece) {
    torn.Feed(stream.subspan(at, std::min(piece, stream.size() - at)), starved);
  }
  Require(whole.checker.transcript == torn.checker.transcript);
  return 0;
}
