#include "Platform/MidiByteStream.h"

#include "Platform/MidiDriver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

namespace {

using Platform::MidiBuffer;
using Platform::MidiByteStream;
using Outcome = MidiByteStream::Outcome;

std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes += static_cast<char>(value);
  return bytes;
}

std::string Hex(std::span<const char> bytes) {
  std::string text;
  char digits[4];
  for (const char byte : bytes) {
    std::snprintf(digits, sizeof(digits), "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += (text.empty() ? "" : " ") + std::string(digits);
  }
  return text;
}

// Feeds a stream as a port does and writes down what comes out: "90 3C 40" for a short
// message, "[F0 01 F7]" for a buffer handed back.
class Feeder {
 public:
  explicit Feeder(std::size_t bufferSize) : mData(bufferSize) {
    mBuffer.data = mData.data();
    mBuffer.length = static_cast<std::uint32_t>(bufferSize);
  }

  void Feed(std::string_view bytes) {
    while (!bytes.empty()) {
      const auto step = mStream.Feed(bytes, &mBuffer);
      bytes.remove_prefix(step.used);
      if (step.outcome == Outcome::kShort) NoteShort(step.packed);
      if (step.outcome == Outcome::kBufferDone) NoteBuffer();
      if (step.outcome == Outcome::kNeedBuffer) FAIL() << "asks for a buffer that it has";
    }
  }

  // What the port does when it is stopped.
  void Reset() {
    mStream.Reset();
    mBuffer.recorded = 0;
  }

  std::vector<std::string> events;

 private:
  void NoteShort(std::uint32_t packed) {
    std::string bytes;
    for (std::uint32_t i = 0; i < Platform::MidiShortLength(packed & 0xFF); ++i) {
      bytes += static_cast<char>(packed >> 8 * i & 0xFF);
    }
    events.push_back(Hex(bytes));
  }

  void NoteBuffer() {
    events.push_back("[" + Hex(std::span(mData).first(mBuffer.recorded)) + "]");
    mBuffer.recorded = 0;
  }

  std::vector<char> mData;
  MidiBuffer mBuffer;
  MidiByteStream mStream;
};

struct StreamCase {
  const char* name;
  std::string input;
  std::vector<std::string> events;
  std::size_t bufferSize = 8;
};

const std::vector<StreamCase>& StreamCases() {
  static const std::vector<StreamCase> cases{
      {"each channel status takes its data bytes",
       Bytes({0x80, 1, 2, 0x9F, 3, 4, 0xA0, 5, 6, 0xB0, 7, 8, 0xC1, 9, 0xD2, 10, 0xE3, 11, 12}),
       {"80 01 02", "9F 03 04", "A0 05 06", "B0 07 08", "C1 09", "D2 0A", "E3 0B 0C"}},
      {"running status repeats channel statuses",
       Bytes({0x90, 1, 2, 3, 4, 0xC0, 5, 6}),
       {"90 01 02", "90 03 04", "C0 05", "C0 06"}},
      {"system common messages take their data and stop the running status",
       Bytes({0x90, 1, 2, 0xF1, 3, 4, 0xF2, 5, 6, 7, 0xF3, 8, 9, 0xF6, 10}),
       {"90 01 02", "F1 03", "F2 05 06", "F3 08", "F6"}},
      {"data bytes without a status are dropped", Bytes({1, 2, 0x7F, 0xC0, 3}), {"C0 03"}},
      {"undefined statuses are dropped with their data and stop the running status",
       Bytes({0xC0, 1, 0xF4, 2, 3, 0xC0, 4, 0xF5, 5, 0xC0, 6}),
       {"C0 01", "C0 04", "C0 06"}},
      {"undefined real-time bytes disturb nothing",
       Bytes({0x90, 0xF9, 1, 0xFD, 2, 0xFD, 3, 4}),
       {"90 01 02", "90 03 04"}},
      {"real-time bytes are messages wherever they stand",
       Bytes({0xF8, 0x90, 0xFA, 1, 0xFB, 2, 0xFC, 3, 0xFE, 4, 0xFF}),
       {"F8", "FA", "FB", "90 01 02", "FC", "FE", "90 03 04", "FF"}},
      {"a status gives up the short message before it",
       Bytes({0x90, 1, 0xC0, 2, 0xF2, 3, 0xF6, 4}),
       {"C0 02", "F6"}},
      {"a system-exclusive message ends with its end byte", Bytes({0xF0, 1, 0xF7}), {"[F0 01 F7]"}},
      {"the shortest system-exclusive message", Bytes({0xF0, 0xF7}), {"[F0 F7]"}},
      {"a stray end byte is dropped and stops the running status",
       Bytes({0xC0, 1, 0xF7, 2, 0xF7}),
       {"C0 01"}},
      {"system-exclusive data stops the running status",
       Bytes({0xC0, 1, 0xF0, 0xF7, 2}),
       {"C0 01", "[F0 F7]"}},
      {"real-time bytes inside system-exclusive data tear nothing",
       Bytes({0xF0, 0xF8, 1, 0xF9, 2, 0xFE, 0xF7, 0xFA}),
       {"F8", "FE", "[F0 01 02 F7]", "FA"}},
      {"a long message fills buffer after buffer",
       Bytes({0xF0, 1, 2, 3, 4, 5, 6, 7, 8, 0xF7}),
       {"[F0 01 02 03]", "[04 05 06 07]", "[08 F7]"},
       4},
      {"an end byte that fills its buffer hands it back once",
       Bytes({0xF0, 1, 2, 0xF7, 0xF0, 0xF7}),
       {"[F0 01 02 F7]", "[F0 F7]"},
       4},
      {"an end byte behind a full buffer comes alone",
       Bytes({0xF0, 1, 2, 3, 0xF7}),
       {"[F0 01 02 03]", "[F7]"},
       4},
      {"buffers of one byte", Bytes({0xF0, 1, 0xF7}), {"[F0]", "[01]", "[F7]"}, 1},
      {"a message cut off by the next one is dropped", Bytes({0xF0, 1, 2, 0xF0, 3, 0xF7}), {"[F0 03 F7]"}},
      {"a message cut off by a short one is dropped", Bytes({0xF0, 1, 2, 0x90, 3, 4, 5, 0xF7}), {"90 03 04"}},
      {"a message cut off by an undefined status is dropped", Bytes({0xF0, 1, 0xF4, 2, 0xF7, 0xF6}), {"F6"}},
      {"a long message cut off by the next one is ended before it",
       Bytes({0xF0, 1, 2, 3, 4, 0xF0, 5, 0xF7}),
       {"[F0 01 02 03]", "[04 F7]", "[F0 05 F7]"},
       4},
      {"a message cut off behind a full buffer is ended by a buffer of its own",
       Bytes({0xF0, 1, 2, 3, 0xF6, 0xC0, 4}),
       {"[F0 01 02 03]", "[F7]", "F6", "C0 04"},
       4},
      {"a cut-off message whose first buffer is filled by its end",
       Bytes({0xF0, 1, 2, 3, 4, 5, 6, 0xC0, 7}),
       {"[F0 01 02 03]", "[04 05 06 F7]", "C0 07"},
       4},
  };
  return cases;
}

TEST(MidiByteStreamTest, CutsAStreamIntoMessagesWhereverItIsTorn) {
  for (const StreamCase& one : StreamCases()) {
    SCOPED_TRACE(one.name);
    for (std::size_t cut = 0; cut < one.input.size(); ++cut) {
      SCOPED_TRACE(cut);
      Feeder feeder(one.bufferSize);
      feeder.Feed(std::string_view(one.input).substr(0, cut));
      feeder.Feed(std::string_view(one.input).substr(cut));
      EXPECT_EQ(feeder.events, one.events);
    }
    Feeder single(one.bufferSize);
    for (const char byte : one.input) single.Feed({&byte, 1});
    EXPECT_EQ(single.events, one.events);
  }
}

TEST(MidiByteStreamTest, WithoutABufferOnlyWhatNeedsNonePasses) {
  MidiByteStream stream;
  const std::string bytes = Bytes({0xC0, 1, 0xF0, 2, 0xF8, 0xF7});
  auto step = stream.Feed(bytes, nullptr);
  EXPECT_EQ(step.outcome, Outcome::kShort);
  step = stream.Feed(std::string_view(bytes).substr(2), nullptr);
  EXPECT_EQ(step.outcome, Outcome::kNeedBuffer);
  EXPECT_EQ(step.used, 0u) << "the byte that waits must not be lost";

  char data[2];
  MidiBuffer buffer{data, sizeof(data)};
  step = stream.Feed(std::string_view(bytes).substr(2), &buffer);
  EXPECT_EQ(step.outcome, Outcome::kBufferDone);
  step = stream.Feed(std::string_view(bytes).substr(4), nullptr);
  EXPECT_EQ(step.outcome, Outcome::kShort) << "a real-time byte needs no buffer inside a message";
  step = stream.Feed(std::string_view(bytes).substr(5), nullptr);
  EXPECT_EQ(step.outcome, Outcome::kNeedBuffer);
  EXPECT_EQ(step.used, 0u);
}

TEST(MidiByteStreamTest, ResetForgetsAllThatHasBegun) {
  for (const auto& begun :
       {Bytes({0x90, 1}), Bytes({0xC0, 1}), Bytes({0xF0, 1}), Bytes({0xF0, 1, 2, 3, 4})}) {
    Feeder feeder(4);
    feeder.Feed(begun);
    feeder.events.clear();
    feeder.Reset();
    feeder.Feed(Bytes({2, 3, 0xF7, 4, 0xF6}));
    EXPECT_EQ(feeder.events, std::vector<std::string>{"F6"}) << Hex(begun);
  }
}

}  // namespace
