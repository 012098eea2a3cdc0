#include "Tools/Simulator/Protocol.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "Tests/Tools/ComputerSide.h"

using namespace Simulator;
using namespace ToolsTest;

namespace {

struct PackingCase {
  Bytes mData;
  Bytes mPacked;
};

const std::vector<PackingCase> kPackingCases{
    {{}, {}},
    {{0x00}, {0x00, 0x00}},
    {{0x80}, {0x01, 0x00}},
    {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F}},
    {{0, 0, 0, 0, 0, 0, 0x80, 0x80}, {0x40, 0, 0, 0, 0, 0, 0, 0, 0x01, 0x00}},
    {{0x81, 0xFF, 0x03, 0x04, 0x05, 0x06, 0x87, 0x08, 0xC2},
     {0x43, 0x01, 0x7F, 0x03, 0x04, 0x05, 0x06, 0x07, 0x02, 0x08, 0x42}},
};

}  // namespace

TEST(SimulatorPackingTest, PacksAndUnpacksTheKnownVectors) {
  for (const PackingCase& item : kPackingCases) {
    EXPECT_EQ(PackSevenBit(item.mData), item.mPacked);
    EXPECT_EQ(UnpackSevenBit(item.mPacked), item.mData);
  }
}

TEST(SimulatorPackingTest, EveryLengthSurvivesTheRoundTrip) {
  for (std::size_t size = 0; size <= 260; ++size) {
    const Bytes data = Filled(size, 0x55);
    const Bytes packed = PackSevenBit(data);
    EXPECT_EQ(packed.size(), (8 * size + 6) / 7);
    EXPECT_EQ(UnpackSevenBit(packed), data);
  }
}

TEST(SimulatorPackingTest, RefusesWhatPackingNeverMakes) {
  const std::vector<Bytes> cases{
      {0x00},                             // A group without data.
      {0x02, 0x11},                       // The high bit of a byte that is not there.
      {0x80, 0x11},                       // Bit 7 of the leading byte.
      {0x00, 0x91},                       // Bit 7 of a data byte.
      {0x00, 1, 2, 3, 4, 5, 6, 7, 0x00},  // A second group without data.
  };
  for (const Bytes& packed : cases) EXPECT_EQ(UnpackSevenBit(packed), std::nullopt) << packed.size();
}

TEST(SimulatorProtocolTest, FramesTheKnownMessage) {
  const Bytes expected{0xF0, 0x00, 0x00, 0x17, 0x73, 0x00, 0x04, 0x03, 0x02,
                       0x01, 0x08, 0x07, 0x06, 0x02, 0x05, 0x42, 0xF7};
  EXPECT_EQ(Command(kCommandStart, {}, 0x01020304, 0x05060708), expected);
  EXPECT_EQ(FrameMessage(kTypeVersionQuery, {}), VersionQuery());
}

TEST(SimulatorProtocolTest, TakesEveryRequestApart) {
  const struct {
    Bytes mMessage;
    MessageName mName;
    Bytes mArguments;
  } cases[] = {
      {VersionQuery(), MessageName::kVersion, {}},
      {SwitchMessage(), MessageName::kSwitch, {}},
      {Command(0xC0), MessageName::kOpen, {}},
      {Command(0xC1), MessageName::kFinish, {}},
      {Command(0xC2), MessageName::kStart, {}},
      {IndexCommand(0xC4, 0x80706050), MessageName::kSelect, {0x50, 0x60, 0x70, 0x80}},
      {Command(0xC5, {1, 2}), MessageName::kHeader, {1, 2}},
      {Command(0xC6, {0xFF}), MessageName::kWriteAcked, {0xFF}},
      {Command(0xC7, {0xFE}), MessageName::kWrite, {0xFE}},
      {Command(0xC8), MessageName::kVerify, {}},
      {Command(0xC3), MessageName::kOther, {}},
  };
  for (const auto& item : cases) {
    const std::optional<Request> request = ParseRequest(item.mMessage);
    ASSERT_TRUE(request) << NameOf(item.mName);
    EXPECT_EQ(request->mFault, "");
    EXPECT_EQ(request->mName, item.mName);
    EXPECT_EQ(request->mArguments, item.mArguments);
  }
  const Request ids = *ParseRequest(Command(0xC0, {}, 0xF1E2D3C4, 0x8899AABB));
  EXPECT_EQ(ids.mHardwareId, 0xF1E2D3C4);
  EXPECT_EQ(ids.mSecondaryId, 0x8899AABB);
  EXPECT_EQ(ids.mCommand, 0xC0);
}

TEST(SimulatorProtocolTest, TellsForeignMessagesFromMalformedOnes) {
  const std::vector<Bytes> foreign{{},
                                   {0xF0},
                                   {0xF0, 0x00, 0x00, 0x17, 0xF7},
                                   {0xF0, 0x00, 0x00, 0x18, 0x70, 0xF7},
                                   {0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7}};
  for (const Bytes& message : foreign) EXPECT_FALSE(ParseRequest(message)) << message.size();
  Bytes cut = Command(kCommandOpen);
  cut.erase(cut.end() - 2);
  const std::vector<Bytes> malformed{
      {0xF0, 0x00, 0x00, 0x17, 0x70, 0x00, 0x01, 0xF7},  // A version query with data.
      {0xF0, 0x00, 0x00, 0x17, 0x74, 0xF7},              // An unknown type.
      {0xF0, 0x00, 0x00, 0x17, 0x73, 0xF7},              // An empty envelope.
      FrameMessage(kTypeBootloader, Filled(8, 1)),       // Ids without a command.
      {0xF0, 0x00, 0x00, 0x17, 0x73, 0x02, 0x01, 0xF7},  // Wrong packing.
      cut,
  };
  for (const Bytes& message : malformed) {
    const std::optional<Request> request = ParseRequest(message);
    ASSERT_TRUE(request) << message.size();
    EXPECT_NE(request->mFault, "") << message.size();
  }
}

TEST(SimulatorProtocolTest, ReadsVersionsOfFourNumbersOnly) {
  EXPECT_EQ(ParseVersion("1.6.0.47"), (FirmwareVersion{1, 6, 0, 47}));
  EXPECT_EQ(ToText(ParseVersion("255.0.10.1")), "255.0.10.1");
  for (const char* text :
       {"", "1", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1..3.4", "1.2.3.x", " 1.2.3.4", "1.2.3.-4"}) {
    EXPECT_THROW(ParseVersion(text), std::invalid_argument) << text;
  }
}
