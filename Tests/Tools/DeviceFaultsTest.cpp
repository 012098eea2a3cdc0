// What each fault does to the conversation with a device.
#include <gtest/gtest.h>

#include <chrono>

#include "Tests/Tools/ComputerSide.h"
#include "Tools/Simulator/MessageStream.h"
#include "Tools/Simulator/SimulatedDevice.h"

using namespace Simulator;
using namespace ToolsTest;
using namespace std::chrono_literals;

namespace {

SimulatedDevice FaultyDevice(std::initializer_list<const char*> faults) {
  DeviceOptions options;
  options.mMode = DeviceMode::kBootloader;
  for (const char* fault : faults) options.mFaults.push_back(ParseFault(fault));
  return SimulatedDevice(options);
}

Bytes Sent(const Reaction& reaction) {
  Bytes all;
  for (const Transmission& sent : reaction.mTransmissions) {
    all.insert(all.end(), sent.mBytes.begin(), sent.mBytes.end());
  }
  return all;
}

Bytes ReplyTo(SimulatedDevice& device, const Bytes& message) {
  return ReplyOf(Sent(device.Receive(message)));
}

// A device that waits for the first write, the third message of its update.
SimulatedDevice WritingDevice(std::initializer_list<const char*> faults) {
  SimulatedDevice device = FaultyDevice(faults);
  const std::vector<Bytes> messages = UpdateMessages(Vbin::BuildImage(TwoRegionImage()));
  for (std::size_t index = 0; index < 3; ++index) device.Receive(messages[index]);
  return device;
}

}  // namespace

TEST(DeviceFaultsTest, ChangesTheReplyAsAsked) {
  const Bytes data = Filled(20, 5);
  const std::uint32_t crc = Vbin::Crc32(data);
  const Bytes acked = WriteCommand(kCommandWriteAcked, 0, data);
  const Bytes select = IndexCommand(kCommandSelectRegion, 0);
  const struct {
    const char* mFault;
    Bytes mMessage;
    Bytes mReply;
  } cases[] = {
      {"lose-reply@write-acked", acked, {}},
      {"error-reply@write-acked:7", acked, ReplyBytes(0x82, {7})},
      {"error-reply@write:9", WriteCommand(kCommandWrite, 0, data), ReplyBytes(0x82, {9})},
      {"wrong-reply@write-acked", acked, ReplyBytes(0x82, {crc})},
      {"wrong-reply@write-acked:0x85", acked, ReplyBytes(0x85, {crc})},
      {"wrong-reply@open", Command(kCommandOpen), ReplyBytes(0x81)},
      {"wrong-crc@write-acked", acked, ReplyBytes(0x81, {~crc})},
      {"wrong-crc@open", Command(kCommandOpen), ReplyBytes(0x80)},
      {"wrong-region@select#2", select, ReplyBytes(0x83, {kDefaultHardwareId, 1})},
      {"wrong-hardware@select#2", select, ReplyBytes(0x83, {0xFFFFFFFF, 0})},
      {"wrong-hardware@select#2:0x55", select, ReplyBytes(0x83, {0x55, 0})},
      {"short-reply@select#2:4", select, ReplyBytes(0x83, {kDefaultHardwareId})},
      {"short-reply@open", Command(kCommandOpen), {}},
      {"short-reply@open:1000", Command(kCommandOpen), {}},
  };
  for (const auto& item : cases) {
    SimulatedDevice device = WritingDevice({item.mFault});
    EXPECT_EQ(ReplyTo(device, item.mMessage), item.mReply) << item.mFault;
  }
}

TEST(DeviceFaultsTest, StrikesTheCountedMessageOnly) {
  SimulatedDevice device = FaultyDevice({"lose-reply@2", "wrong-crc@header#2"});
  EXPECT_EQ(ReplyTo(device, Command(kCommandOpen)), ReplyBytes(0x80));
  EXPECT_EQ(ReplyTo(device, Command(kCommandOpen)), Bytes{});
  EXPECT_EQ(ReplyTo(device, Command(kCommandOpen)), ReplyBytes(0x80));
}

TEST(DeviceFaultsTest, ALostReplyIsToATakenMessageAndAnIgnoredOneIsNotTaken) {
  const Bytes write = WriteCommand(kCommandWriteAcked, 0, Filled(20, 5));
  SimulatedDevice taken = WritingDevice({"lose-reply@write-acked"});
  EXPECT_TRUE(taken.Receive(write).mTransmissions.empty());
  EXPECT_EQ(taken.Flash().WrittenBytes(), 20U);
  SimulatedDevice ignored = WritingDevice({"ignore-message@write-acked"});
  EXPECT_TRUE(ignored.Receive(write).mTransmissions.empty());
  EXPECT_EQ(ignored.Flash().WrittenBytes(), 0U);
  EXPECT_EQ(ignored.Status().CountOf(MessageName::kWriteAcked), 1U);
}

TEST(DeviceFaultsTest, LateAndDuplicateRepliesCombine) {
  SimulatedDevice device = FaultyDevice({"late-reply@open:300", "duplicate-reply@open"});
  const Reaction reaction = device.Receive(Command(kCommandOpen));
  ASSERT_EQ(reaction.mTransmissions.size(), 2U);
  for (const Transmission& sent : reaction.mTransmissions) {
    EXPECT_EQ(sent.mDelay, 300ms);
    EXPECT_EQ(ReplyOf(sent.mBytes), ReplyBytes(0x80));
  }
}

TEST(DeviceFaultsTest, NoiseLeavesTheReplyReadable) {
  SimulatedDevice quiet = FaultyDevice({});
  SimulatedDevice noisy = FaultyDevice({"noise@*"});
  const Bytes clean = Sent(quiet.Receive(Command(kCommandOpen)));
  const Bytes bytes = Sent(noisy.Receive(Command(kCommandOpen)));
  EXPECT_EQ(std::search(bytes.begin(), bytes.end(), clean.begin(), clean.end()), bytes.end());
  const std::vector<Bytes> messages = MessageStream().Feed(bytes);
  ASSERT_EQ(messages.size(), 3U);
  EXPECT_EQ(messages[1], clean);
  EXPECT_FALSE(Sent(noisy.Receive(WriteCommand(kCommandWrite, 0, Filled(3, 1)))).empty());
}

TEST(DeviceFaultsTest, AFloodNeverEndsAndHalfAReplyBreaksOff) {
  SimulatedDevice device = FaultyDevice({"flood@1", "half-reply@2"});
  const Reaction flood = device.Receive(Command(kCommandOpen));
  ASSERT_EQ(flood.mTransmissions.size(), 2U);
  EXPECT_EQ(flood.mTransmissions[0].mBytes.size(), 1024U * 1024);
  EXPECT_EQ(std::count(flood.mTransmissions[0].mBytes.begin(), flood.mTransmissions[0].mBytes.end(), 0xF7),
            0);
  EXPECT_EQ(ReplyOf(flood.mTransmissions[1].mBytes), ReplyBytes(0x80));
  const Bytes half = Sent(device.Receive(Command(kCommandOpen)));
  const Bytes whole = Sent(device.Receive(Command(kCommandOpen)));
  EXPECT_EQ(half, Bytes(whole.begin(), whole.begin() + 8));
}

TEST(DeviceFaultsTest, UnpluggingLosesTheMessageAndTheRest) {
  for (const char* fault : {"unplug@write-acked", "unplug@write-acked:40"}) {
    SimulatedDevice device = WritingDevice({fault});
    Bytes input = WriteCommand(kCommandWriteAcked, 0, Filled(20, 5));
    const Bytes next = VersionQuery();
    input.insert(input.end(), next.begin(), next.end());
    const Reaction reaction = device.Receive(input);
    EXPECT_TRUE(reaction.mPortLeaves);
    EXPECT_EQ(reaction.mPortReturnsAfter.has_value(), fault[std::string(fault).size() - 1] == '0');
    EXPECT_EQ(reaction.mReceived.size(), 1U);
    EXPECT_TRUE(reaction.mTransmissions.empty());
    EXPECT_EQ(device.Flash().WrittenBytes(), 0U);
    device.PowerUp();
    EXPECT_EQ(device.Status().mMode, DeviceMode::kBootloader);
    EXPECT_EQ(ReplyTo(device, IndexCommand(kCommandSelectRegion, 0)), ReplyBytes(0x82, {kErrorNotStarted}));
  }
}

TEST(DeviceFaultsTest, SilenceLastsUntilThePowerIsCut) {
  SimulatedDevice device = FaultyDevice({"silent@2"});
  EXPECT_EQ(ReplyTo(device, Command(kCommandOpen)), ReplyBytes(0x80));
  for (int attempt = 0; attempt < 3; ++attempt)
    EXPECT_TRUE(Sent(device.Receive(Command(kCommandOpen))).empty());
  device.PowerUp();
  EXPECT_EQ(ReplyTo(device, Command(kCommandOpen)), ReplyBytes(0x80));
}

TEST(DeviceFaultsTest, ARestartSendsNothingWhateverTheFault) {
  SimulatedDevice device = FaultyDevice({"noise@*", "error-reply@*", "flood@*"});
  device.Receive(Command(kCommandStart));
  const Reaction reaction = device.Receive(Command(kCommandFinish));
  EXPECT_TRUE(reaction.mPortLeaves);
  EXPECT_TRUE(reaction.mTransmissions.empty());
}
