#include "Tools/Simulator/SimulatedDevice.h"

#include <gtest/gtest.h>

#include <chrono>

#include "Tests/Tools/ComputerSide.h"

using namespace Simulator;
using namespace ToolsTest;
using namespace std::chrono_literals;

namespace {

DeviceOptions InUpdateMode(std::initializer_list<const char*> faults = {}) {
  DeviceOptions options;
  options.mMode = DeviceMode::kBootloader;
  options.mUpdateVersion = FirmwareVersion{1, 6, 0, 47};
  for (const char* fault : faults) options.mFaults.push_back(ParseFault(fault));
  return options;
}

// The replies to one message, taken apart.
std::vector<Bytes> Ask(SimulatedDevice& device, const Bytes& message) {
  std::vector<Bytes> replies;
  for (const Transmission& transmission : device.Receive(message).mTransmissions) {
    replies.push_back(ReplyOf(transmission.mBytes));
  }
  return replies;
}

using Replies = std::vector<Bytes>;

Vbin::Region FirstRegion(const Bytes& image) {
  return Vbin::ReadImage(image).front();
}

// A device to which a region was announced.
void Announce(SimulatedDevice& device, const Vbin::Region& region) {
  device.Receive(Command(kCommandStart));
  device.Receive(IndexCommand(kCommandSelectRegion, region.mRegionIndex));
  device.Receive(HeaderCommand(region));
}

Reaction SendAll(SimulatedDevice& device, const std::vector<Bytes>& messages) {
  Reaction last;
  for (const Bytes& message : messages) last = device.Receive(message);
  return last;
}

}  // namespace

TEST(SimulatedDeviceTest, AnswersVersionQueriesInBothModes) {
  DeviceOptions options;
  options.mFirmware = {1, 5, 2, 9};
  options.mHardwareId = 0x81020384;
  options.mSecondaryId = 0x0506C708;
  for (const DeviceMode mode : {DeviceMode::kNormal, DeviceMode::kBootloader}) {
    options.mMode = mode;
    const Reaction reaction = SimulatedDevice(options).Receive(VersionQuery());
    ASSERT_EQ(reaction.mTransmissions.size(), 1U);
    EXPECT_EQ(reaction.mTransmissions[0].mDelay, 0ms);
    const Bytes& message = reaction.mTransmissions[0].mBytes;
    ASSERT_EQ(message.size(), 61U);
    EXPECT_EQ(Bytes(message.begin(), message.begin() + 5), (Bytes{0xF0, 0x00, 0x00, 0x17, 0x71}));
    EXPECT_EQ(message.back(), 0xF7);
    const Bytes data = UnpackSevenBit(std::span(message).subspan(5, 55)).value();
    Bytes expected(48, 0);
    const Bytes hardwareId{0x84, 0x03, 0x02, 0x81};
    const Bytes version = mode == DeviceMode::kNormal ? Bytes{9, 2, 5, 1} : Bytes{0, 0, 0, 0};
    const Bytes secondaryId{0x08, 0xC7, 0x06, 0x05};
    std::copy(hardwareId.begin(), hardwareId.end(), expected.begin());
    std::copy(version.begin(), version.end(), expected.begin() + 12);
    std::copy(secondaryId.begin(), secondaryId.end(), expected.begin() + 16);
    EXPECT_EQ(data, expected);
  }
}

TEST(SimulatedDeviceTest, SwitchesByRestarting) {
  DeviceOptions options;
  options.mRestartTime = 70ms;
  SimulatedDevice device(options);
  Bytes input = SwitchMessage();
  const Bytes lost = VersionQuery();
  input.insert(input.end(), lost.begin(), lost.end());
  const Reaction reaction = device.Receive(input);
  EXPECT_TRUE(reaction.mPortLeaves);
  EXPECT_EQ(reaction.mPortReturnsAfter, 70ms);
  EXPECT_TRUE(reaction.mTransmissions.empty());
  EXPECT_EQ(reaction.mReceived, std::vector<Bytes>{SwitchMessage()});
  EXPECT_EQ(device.Status().mMode, DeviceMode::kBootloader);
  device.PowerUp();
  EXPECT_FALSE(device.Receive(SwitchMessage()).mPortLeaves);
  EXPECT_EQ(device.Status().mRestarts, 1U);
}

TEST(SimulatedDeviceTest, NormalFirmwareKnowsNoBootloaderCommand) {
  SimulatedDevice device{DeviceOptions()};
  EXPECT_TRUE(device.Receive(Command(kCommandOpen)).mTransmissions.empty());
  EXPECT_EQ(device.Status().mViolations.size(), 1U);
}

TEST(SimulatedDeviceTest, AnswersEveryCommandOfAnUpdate) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  const Vbin::Region region = FirstRegion(image);
  const Bytes data = Filled(240, 9);
  SimulatedDevice device(InUpdateMode());
  EXPECT_EQ(Ask(device, Command(kCommandOpen)), Replies{ReplyBytes(0x80)});
  const Replies ready = Ask(device, Command(kCommandStart));
  ASSERT_EQ(ready.size(), 1U);
  EXPECT_EQ(ready[0].front(), 0x84);
  EXPECT_EQ(ready[0].size(), 2U);
  EXPECT_EQ(Ask(device, IndexCommand(kCommandSelectRegion, 0)),
            Replies{ReplyBytes(0x83, {kDefaultHardwareId, 0})});
  EXPECT_EQ(Ask(device, HeaderCommand(region)), Replies{ReplyBytes(0x81, {0})});
  EXPECT_EQ(Ask(device, WriteCommand(kCommandWrite, 0x100, data)), Replies{});
  EXPECT_EQ(Ask(device, WriteCommand(kCommandWriteAcked, 0x1F0, data)),
            Replies{ReplyBytes(0x81, {Vbin::Crc32(data)})});
  const std::uint32_t twice = Vbin::Crc32(data, Vbin::Crc32(data));
  EXPECT_EQ(Ask(device, IndexCommand(kCommandVerifyRegion, 0)), Replies{ReplyBytes(0x81, {twice})});
  EXPECT_EQ(device.Flash().Read(0x1F0, 240), data);
  EXPECT_EQ(device.Flash().WrittenBytes(), 480U);
  EXPECT_TRUE(device.Status().mViolations.empty());
}

TEST(SimulatedDeviceTest, AWholeUpdateFillsTheFlashAndRunsTheNewFirmware) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  SimulatedDevice device(InUpdateMode());
  const Reaction last = SendAll(device, UpdateMessages(image));
  EXPECT_TRUE(last.mPortLeaves);
  EXPECT_TRUE(last.mFlashSettled);
  EXPECT_EQ(device.Status().mMode, DeviceMode::kNormal);
  EXPECT_EQ(device.Status().mFirmware, (FirmwareVersion{1, 6, 0, 47}));
  EXPECT_EQ(device.Status().mFinishedUpdates, 1U);
  EXPECT_EQ(device.Status().CountOf(MessageName::kWriteAcked), 3U);
  EXPECT_EQ(device.Status().CountOf(MessageName::kWrite), 24U);
  EXPECT_TRUE(device.Status().mViolations.empty());
  EXPECT_EQ(device.Flash(), Vbin::FlashOf(Vbin::ReadImage(image)));
}

TEST(SimulatedDeviceTest, OnlyACompleteUpdateChangesTheVersion) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  const std::vector<Bytes> whole = UpdateMessages(image);
  std::vector<Bytes> unverified = whole;
  unverified.erase(unverified.end() - 2);
  std::vector<Bytes> lostWrite = whole;
  lostWrite.erase(lostWrite.begin() + 4);
  std::vector<Bytes> writtenAgain = whole;
  writtenAgain.insert(writtenAgain.end() - 1, WriteCommand(kCommandWrite, 0, Filled(10, 1)));
  const struct {
    const char* mWhat;
    std::vector<Bytes> mMessages;
    DeviceMode mMode;
    std::set<std::uint32_t> mVerified;
  } cases[] = {
      {"nothing written", {Command(kCommandStart), Command(kCommandFinish)}, DeviceMode::kNormal, {}},
      {"last region unverified", unverified, DeviceMode::kBootloader, {0}},
      {"a write lost", lostWrite, DeviceMode::kBootloader, {1}},
      {"written after its verification", writtenAgain, DeviceMode::kBootloader, {0}},
  };
  for (const auto& item : cases) {
    SimulatedDevice device(InUpdateMode());
    EXPECT_TRUE(SendAll(device, item.mMessages).mPortLeaves) << item.mWhat;
    EXPECT_EQ(device.Status().mMode, item.mMode) << item.mWhat;
    EXPECT_EQ(device.Status().mFirmware, (FirmwareVersion{1, 5, 0, 9})) << item.mWhat;
    EXPECT_EQ(device.Status().mVerifiedRegions, item.mVerified) << item.mWhat;
    device.PowerUp();
    if (item.mMode == DeviceMode::kBootloader) SendAll(device, whole);
    EXPECT_EQ(device.Status().mMode, DeviceMode::kNormal) << item.mWhat;
  }
}

TEST(SimulatedDeviceTest, AnnouncingARegionAgainStartsItsChecksumAnew) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  const Vbin::Region region = FirstRegion(image);
  SimulatedDevice device(InUpdateMode());
  Announce(device, region);
  device.Receive(WriteCommand(kCommandWrite, 0, Filled(10, 1)));
  device.Receive(IndexCommand(kCommandSelectRegion, 0));
  device.Receive(HeaderCommand(region));
  EXPECT_EQ(Ask(device, IndexCommand(kCommandVerifyRegion, 0)), Replies{ReplyBytes(0x81, {0})});
  device.Receive(WriteCommand(kCommandWrite, 0, Filled(10, 1)));
  device.Receive(HeaderCommand(region));
  EXPECT_EQ(Ask(device, IndexCommand(kCommandVerifyRegion, 0)), Replies{ReplyBytes(0x81, {0})});
}

TEST(SimulatedDeviceTest, RefusesWhatIsAgainstTheProtocol) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  const Vbin::Region region = FirstRegion(image);
  Vbin::Region otherIndex = region;
  otherIndex.mRegionIndex = 1;
  Vbin::Region otherHardware = region;
  otherHardware.mHardwareId = 5;
  const Bytes data = Filled(10, 1);
  const Bytes start = Command(kCommandStart);
  const Bytes select = IndexCommand(kCommandSelectRegion, 0);
  const Bytes header = HeaderCommand(region);
  const struct {
    const char* mWhat;
    std::vector<Bytes> mBefore;
    Bytes mMessage;
    std::uint32_t mError;
  } cases[] = {
      {"select without start", {}, select, kErrorNotStarted},
      {"header without start", {}, header, kErrorNotStarted},
      {"header without select", {start}, header, kErrorWrongRegion},
      {"header of another region", {start, select}, HeaderCommand(otherIndex), kErrorWrongRegion},
      {"header for other hardware", {start, select}, HeaderCommand(otherHardware), kErrorWrongHardware},
      {"short header", {start, select}, Command(kCommandRegionHeader, Filled(23, 1)), kErrorMalformed},
      {"long select", {start}, Command(kCommandSelectRegion, Filled(5, 1)), kErrorMalformed},
      {"write without header", {start, select}, WriteCommand(kCommandWriteAcked, 0, data), kErrorNoHeader},
      {"write without data",
       {start, select, header},
       WriteCommand(kCommandWriteAcked, 0, {}),
       kErrorMalformed},
      {"241 bytes",
       {start, select, header},
       WriteCommand(kCommandWriteAcked, 0, Filled(241, 1)),
       kErrorMalformed},
      {"wrong count",
       {start, select, header},
       Command(kCommandWriteAcked, {0, 0, 0, 0, 2, 1}),
       kErrorMalformed},
      {"past the end",
       {start, select, header},
       WriteCommand(kCommandWriteAcked, 0xFFFFFFF7, data),
       kErrorAddress},
      {"verify without header", {start, select}, IndexCommand(kCommandVerifyRegion, 0), kErrorNoHeader},
      {"verify of another region",
       {start, select, header},
       IndexCommand(kCommandVerifyRegion, 1),
       kErrorWrongRegion},
      {"start with arguments", {}, Command(kCommandStart, {1}), kErrorMalformed},
      {"unknown command", {}, Command(0xC3), kErrorUnknownCommand},
  };
  for (const auto& item : cases) {
    SimulatedDevice device(InUpdateMode());
    SendAll(device, item.mBefore);
    EXPECT_TRUE(device.Status().mViolations.empty()) << item.mWhat;
    EXPECT_EQ(Ask(device, item.mMessage), Replies{ReplyBytes(0x82, {item.mError})}) << item.mWhat;
    EXPECT_EQ(device.Status().mViolations.size(), 1U) << item.mWhat;
    EXPECT_EQ(device.Flash().WrittenBytes(), 0U) << item.mWhat;
  }
}

TEST(SimulatedDeviceTest, StaysSilentAboutViolationsThatNobodyAwaitsAnAnswerTo) {
  SimulatedDevice device(InUpdateMode());
  EXPECT_EQ(Ask(device, WriteCommand(kCommandWrite, 0, Filled(3, 1))), Replies{});
  EXPECT_EQ(Ask(device, Command(kCommandFinish)), Replies{});
  EXPECT_EQ(Ask(device, Command(kCommandOpen, {}, 1, kDefaultSecondaryId)), Replies{});
  EXPECT_EQ(Ask(device, Command(kCommandOpen, {}, kDefaultHardwareId, 1)), Replies{});
  EXPECT_EQ(device.Status().mViolations.size(), 4U);
  EXPECT_EQ(device.Status().mRestarts, 0U);
}

TEST(SimulatedDeviceTest, ObeysAComputerThatDoesNotKnowTheIdsYet) {
  SimulatedDevice device(InUpdateMode());
  EXPECT_EQ(Ask(device, Command(kCommandOpen, {}, kAnyId, kDefaultSecondaryId)), Replies{ReplyBytes(0x80)});
  EXPECT_EQ(Ask(device, Command(kCommandOpen, {}, kAnyId, kAnyId)), Replies{ReplyBytes(0x80)});
  EXPECT_TRUE(device.Status().mViolations.empty());
}

TEST(SimulatedDeviceTest, GivesTheSameAnswersHoweverTheBytesAreCut) {
  const std::vector<Bytes> messages = UpdateMessages(Vbin::BuildImage(TwoRegionImage()));
  Bytes stream;
  for (const Bytes& message : messages) stream.insert(stream.end(), message.begin(), message.end());
  const auto replies = [&](std::size_t piece) {
    SimulatedDevice device(InUpdateMode());
    Replies all;
    for (std::size_t start = 0; start < stream.size(); start += piece) {
      const auto part = std::span(stream).subspan(start, std::min(piece, stream.size() - start));
      for (const Transmission& sent : device.Receive(part).mTransmissions) all.push_back(sent.mBytes);
    }
    EXPECT_EQ(device.Status().mFinishedUpdates, 1U);
    return all;
  };
  const Replies whole = replies(stream.size());
  EXPECT_EQ(whole.size(), 1U + 2 * 3 + 3);
  for (const std::size_t piece : {1U, 2U, 7U, 256U}) EXPECT_EQ(replies(piece), whole) << piece;
}

TEST(SimulatedDeviceTest, LosingPowerEndsAHalfReceivedMessage) {
  const Bytes query = VersionQuery();
  SimulatedDevice device(InUpdateMode());
  device.Receive(std::span(query).first(3));
  device.PowerUp();
  EXPECT_TRUE(device.Receive(std::span(query).subspan(3)).mReceived.empty());
  EXPECT_EQ(device.Receive(query).mTransmissions.size(), 1U);
}

TEST(SimulatedDeviceTest, AnswerNothingMeansDeadInEveryMode) {
  for (const DeviceMode mode : {DeviceMode::kNormal, DeviceMode::kBootloader}) {
    DeviceOptions options = InUpdateMode();
    options.mMode = mode;
    options.mAnswerNothing = true;
    SimulatedDevice device(options);
    for (const Bytes& message :
         {VersionQuery(), SwitchMessage(), Command(kCommandOpen), Command(kCommandStart)}) {
      const Reaction reaction = device.Receive(message);
      EXPECT_TRUE(reaction.mTransmissions.empty());
      EXPECT_FALSE(reaction.mPortLeaves);
    }
    EXPECT_EQ(device.Status().mMessages, 4U);
    EXPECT_EQ(device.Status().mMode, mode);
  }
}
