#include "TFFramework/Midi/MidiMessageLength.h"

#include <gtest/gtest.h>

namespace {

struct Range {
  int first;
  int last;
  int length;
};

TEST(MidiMessageLength, CaptureCountsSystemMessagesAsOneByte) {
  const Range ranges[] = {
      {0x00, 0x7F, 1}, {0x80, 0xBF, 3}, {0xC0, 0xDF, 2}, {0xE0, 0xEF, 3}, {0xF0, 0xFF, 1}};
  for (const Range& range : ranges) {
    for (int status = range.first; status <= range.last; ++status) {
      EXPECT_EQ(TF::CapturedMessageLength(static_cast<std::uint8_t>(status)), range.length) << status;
    }
  }
}

TEST(MidiMessageLength, SendingTakesSystemMessagesAtTheirFullLength) {
  const Range ranges[] = {{0x00, 0x7F, 0}, {0x80, 0xBF, 3}, {0xC0, 0xDF, 2}, {0xE0, 0xEF, 3},
                          {0xF0, 0xF0, 0}, {0xF1, 0xF1, 2}, {0xF2, 0xF2, 3}, {0xF3, 0xF5, 2},
                          {0xF6, 0xF6, 1}, {0xF7, 0xF7, 0}, {0xF8, 0xFF, 1}};
  for (const Range& range : ranges) {
    for (int status = range.first; status <= range.last; ++status) {
      const auto byte = static_cast<std::uint8_t>(status);
      EXPECT_EQ(TF::SentMessageLength(byte), range.length) << status;
      EXPECT_EQ(TF::IsShortMessage(byte), range.length != 0) << status;
    }
  }
}

}  // namespace
