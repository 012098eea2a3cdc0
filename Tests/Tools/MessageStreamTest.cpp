#include "Tools/Simulator/MessageStream.h"

#include <gtest/gtest.h>

#include "Tests/Tools/ComputerSide.h"

using namespace Simulator;
using namespace ToolsTest;

namespace {

struct StreamCase {
  const char* mWhat;
  Bytes mInput;
  std::vector<Bytes> mMessages;
};

const std::vector<StreamCase> kCases{
    {"two messages", {0xF0, 1, 0xF7, 0xF0, 2, 0xF7}, {{0xF0, 1, 0xF7}, {0xF0, 2, 0xF7}}},
    {"real-time bytes inside", {0xF0, 0xF8, 1, 0xFE, 2, 0xFF, 0xF7}, {{0xF0, 1, 2, 0xF7}}},
    {"half a message before", {0xF0, 1, 2, 0xF0, 3, 0xF7}, {{0xF0, 3, 0xF7}}},
    {"broken off by a note", {0xF0, 1, 0x90, 2, 3, 0xF7, 0xF0, 4, 0xF7}, {{0xF0, 4, 0xF7}}},
    {"stray data and ends", {1, 2, 0xF7, 0xF0, 5, 0xF7, 6, 0xF7}, {{0xF0, 5, 0xF7}}},
    {"running status", {0x90, 1, 2, 3, 4, 0xF0, 0xF7}, {{0xF0, 0xF7}}},
};

}  // namespace

TEST(SimulatorMessageStreamTest, FindsMessagesHoweverTheStreamIsCut) {
  for (const StreamCase& item : kCases) {
    for (std::size_t cut = 0; cut <= item.mInput.size(); ++cut) {
      MessageStream stream;
      const std::span<const std::uint8_t> input(item.mInput);
      std::vector<Bytes> messages = stream.Feed(input.first(cut));
      for (Bytes& message : stream.Feed(input.subspan(cut))) messages.push_back(std::move(message));
      EXPECT_EQ(messages, item.mMessages) << item.mWhat << ", cut at " << cut;
    }
  }
}

TEST(SimulatorMessageStreamTest, DropsAnEndlessMessageAndGoesOn) {
  Bytes longest(MessageStream::kMaxMessage, 1);
  longest.front() = 0xF0;
  longest.back() = 0xF7;
  MessageStream stream;
  EXPECT_EQ(stream.Feed(longest), std::vector<Bytes>{longest});
  Bytes tooLong = longest;
  tooLong.insert(tooLong.begin() + 1, 1);
  EXPECT_TRUE(stream.Feed(tooLong).empty());
  EXPECT_EQ(stream.Feed(VersionQuery()), std::vector<Bytes>{VersionQuery()});
}

TEST(SimulatorMessageStreamTest, ResetForgetsABegunMessage) {
  MessageStream stream;
  stream.Feed(Bytes{0xF0, 1, 2});
  stream.Reset();
  EXPECT_TRUE(stream.Feed(Bytes{3, 0xF7}).empty());
}
