#include <gtest/gtest.h>

#include <chrono>

#include "Engine/FirmwareUpdateNotifications.h"
#include "Tests/Support/Engine/TransferRig.h"
#include "Tests/Support/LogCapture.h"

// The order of the exchange, into a device that does all right.

namespace {

using namespace EngineTest;
using Simulator::kDefaultHardwareId;
using Simulator::MessageName;
using Texts = std::vector<std::string>;

constexpr std::uint32_t kOtherHardware = 0x12345678;

TEST(FirmwareTransfer, ImageArrivesRegionByRegion) {
  TransferRig rig;
  ASSERT_EQ(rig.Transfer(TwoRegions()), TF::kSuccess);
  ASSERT_TRUE(rig.WaitForFinish());
  const Texts expected = {"start",
                          "select 0",
                          "header 0",
                          "write 1000+240",
                          "write 10f0+240",
                          "write 11e0+240",
                          "write 12d0+240",
                          "write 13c0+240",
                          "write 14b0+240",
                          "write 15a0+240",
                          "write-acked 1690+240",
                          "write 1780+80",
                          "verify 0",
                          "select 1",
                          "header 1",
                          "write 8000+240",
                          "write 80f0+60",
                          "write 9000+240",
                          "write 90f0+240",
                          "write 91e0+240",
                          "write 92d0+240",
                          "write 93c0+240",
                          "write 94b0+240",
                          "write 95a0+240",
                          "write-acked 9690+240",
                          "verify 1",
                          "finish"};
  EXPECT_EQ(rig.Messages(), expected);
  EXPECT_TRUE(rig.FlashHolds(TwoRegions()));
  EXPECT_EQ(rig.Device().Status().mViolations, Texts());
}

TEST(FirmwareTransfer, MessagesCarryTheHeaderAndTheDataOfTheImage) {
  TransferRig rig;
  const Bytes data = MakeData(100, 8);
  Vbin::RegionDescription region = MakeRegion(kDefaultHardwareId, {{0x80004000, data}});
  region.mDataSize = 77;
  ASSERT_EQ(rig.Transfer(std::vector{region}), TF::kSuccess);
  ASSERT_TRUE(rig.WaitForFinish());

  const auto header = Simulator::ParseRequest(rig.Device().Received().at(2));
  EXPECT_EQ(header->mHardwareId, kDefaultHardwareId);
  EXPECT_EQ(header->mSecondaryId, Simulator::kDefaultSecondaryId);
  Bytes expected;
  for (const std::uint32_t word :
       {kDefaultHardwareId, 0u, 0xA4A3A2A1u, region.mParameter, 77u, Vbin::Crc32(data)}) {
    Simulator::AppendLittleEndian(expected, word);
  }
  EXPECT_EQ(header->mArguments, expected);
  EXPECT_EQ(rig.Device().Flash().Read(0x80004000, 100), data);
}

// Only every eighth write of a section is acknowledged, whatever came in the section before.
TEST(FirmwareTransfer, AcknowledgedWritesAreCountedBySection) {
  const struct {
    std::vector<std::size_t> sectionSizes;
    std::uint32_t writes;
    std::uint32_t acknowledged;
  } cases[] = {{{240}, 1, 0},
               {{1}, 1, 0},
               {{0}, 0, 0},
               {{}, 0, 0},
               {{1680}, 7, 0},
               {{1681}, 7, 1},
               {{1921}, 8, 1},
               {{3840}, 14, 2},
               {{1680, 1680, 0, 240}, 15, 0},
               {{1920, 1919, 1681}, 21, 3}};
  for (const auto& test : cases) {
    TransferRig rig;
    Vbin::RegionDescription region = MakeRegion(kDefaultHardwareId, {});
    std::uint32_t address = 0;
    for (const std::size_t size : test.sectionSizes)
      region.mSections.push_back({address += 0x10000, MakeData(size)});
    ASSERT_EQ(rig.Transfer(std::vector{region}), TF::kSuccess);
    ASSERT_TRUE(rig.WaitForFinish());
    EXPECT_EQ(rig.CountOf(MessageName::kWrite), test.writes) << testing::PrintToString(test.sectionSizes);
    EXPECT_EQ(rig.CountOf(MessageName::kWriteAcked), test.acknowledged);
    EXPECT_EQ(rig.CountOf(MessageName::kVerify), 1u);
    EXPECT_TRUE(rig.FlashHolds({region}));
  }
}

TEST(FirmwareTransfer, RegionsForOtherHardwareAreLeftOut) {
  const auto mine = [](std::uint32_t address) {
    return MakeRegion(kDefaultHardwareId, {{address, MakeData(30, address)}});
  };
  const auto other = [](std::uint32_t address) {
    return MakeRegion(kOtherHardware, {{address, MakeData(30, address)}});
  };
  const struct {
    std::vector<Vbin::RegionDescription> regions;
    Texts exchanges;
  } cases[] = {
      {{other(1), mine(2), other(3)}, {"start", "select 1", "header 1", "verify 1", "finish"}},
      {{other(1), other(2)}, {"start", "finish"}},
  };
  for (const auto& test : cases) {
    TransferRig rig;
    ASSERT_EQ(rig.Transfer(test.regions), TF::kSuccess);
    ASSERT_TRUE(rig.WaitForFinish());
    EXPECT_EQ(rig.Exchanges(), test.exchanges);
    EXPECT_TRUE(rig.FlashHolds(test.regions));
  }
}

TEST(FirmwareTransfer, UnknownHardwareIsLearntFromTheFirstReply) {
  TransferRig rig;
  const std::vector<Vbin::RegionDescription> regions = {
      MakeRegion(kDefaultHardwareId, {{0x1000, MakeData(20)}}),
      MakeRegion(kOtherHardware, {{0x2000, MakeData(20)}}),
      MakeRegion(kDefaultHardwareId, {{0x3000, MakeData(20)}})};
  ASSERT_EQ(rig.Transfer(regions, LVarnokMidiFirmwareUpdatePerformer::kAnyHardware), TF::kSuccess);
  ASSERT_TRUE(rig.WaitForFinish());
  EXPECT_EQ(rig.Exchanges(), Texts({"start", "select 0", "header 0", "verify 0", "select 2", "header 2",
                                    "verify 2", "finish"}));
  EXPECT_TRUE(rig.FlashHolds(regions));

  const auto received = rig.Device().Received();
  EXPECT_EQ(Simulator::ParseRequest(received.at(1))->mHardwareId, 0xFFFFFFFF);
  EXPECT_EQ(Simulator::ParseRequest(received.at(2))->mHardwareId, kDefaultHardwareId);
}

// A device of unknown hardware says what it is; what is not for it must not be written.
TEST(FirmwareTransfer, RegionWithoutAHeaderForTheDeviceIsNotWritten) {
  TransferRig rig;
  const std::vector<Vbin::RegionDescription> regions = {
      MakeRegion(kOtherHardware, {{0x1000, MakeData(20)}}),
      MakeRegion(kDefaultHardwareId, {{0x3000, MakeData(20)}})};
  ASSERT_EQ(rig.Transfer(regions, LVarnokMidiFirmwareUpdatePerformer::kAnyHardware), TF::kSuccess);
  ASSERT_TRUE(rig.WaitForFinish());
  EXPECT_EQ(rig.Exchanges(), Texts({"start", "select 0", "select 1", "header 1", "verify 1", "finish"}));
  EXPECT_TRUE(rig.FlashHolds(regions));
  EXPECT_EQ(rig.Device().Status().mViolations, Texts());
}

TEST(FirmwareTransfer, RecordsTellOfRegionsAndTheEndButNotOfPackets) {
  TestSupport::LogCapture log;
  TransferRig rig;
  auto regions = TwoRegions();
  regions.push_back(MakeRegion(kOtherHardware, {{0, MakeData(5)}}));
  ASSERT_EQ(rig.Transfer(regions), TF::kSuccess);
  EXPECT_EQ(log.Text(),
            "Region 0 written and verified (sections: 1, bytes: 2000).\n"
            "Region 1 written and verified (sections: 2, bytes: 2220).\n"
            "Region 2 skipped: not for hardware 0x31534c54.\n"
            "Firmware transfer ended (regions written: 2, skipped: 1, retries: 0, messages sent: 27, bytes: "
            "5460).\n");
}

// Too little time between two writes, and the device has not stored the first one yet.
TEST(FirmwareTransfer, PausesLieBetweenTheWrites) {
  TransferRig rig;
  rig.Limits() = TransferLimits();
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_EQ(rig.Transfer(OneRegion(17 * 240)), TF::kSuccess);
  const std::chrono::milliseconds pauses(15 * 5 + 5);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, pauses);
}

TEST(FirmwareTransfer, SingleStepsRefuseWhatTheImageDoesNotHave) {
  const auto image = ToArray(MakeImage(TwoRegions()));
  const auto performer =
      TF::MakeRC<LVarnokMidiFirmwareUpdatePerformer>(kDefaultHardwareId, Simulator::kDefaultSecondaryId);
  performer->ParseImage(image);
  VarnokFileRegionHeader header;
  EXPECT_EQ(performer->FindRegionHeader(kDefaultHardwareId, 1, header), TF::kSuccess);
  EXPECT_EQ(header.mRegionIndex, 1u);
  EXPECT_EQ(performer->FindRegionHeader(kDefaultHardwareId, 2, header), TF::kFailure);
  EXPECT_EQ(performer->FindRegionHeader(kOtherHardware, 1, header), TF::kFailure);
  EXPECT_EQ(performer->SendRegionHeader(kOtherHardware, 1), TF::kSuccess);
  EXPECT_EQ(performer->SendSection(kDefaultHardwareId, 2, 0), TF::kFailure);
  EXPECT_EQ(performer->SendSection(kDefaultHardwareId, 0, 1), TF::kFailure);
}

// Each transfer ends on the heels of a reply, while the thread that handed it over may still
// hold the performer.
TEST(FirmwareTransfer, AfterTheTransferOnlyTheCallerHoldsThePerformer) {
  TransferRig rig({"error-reply@start#*"});
  const auto image = ToArray(MakeImage(OneRegion(10)));
  for (int round = 0; round < 50; ++round) {
    const auto performer =
        TF::MakeRC<LVarnokMidiFirmwareUpdatePerformer>(kDefaultHardwareId, Simulator::kDefaultSecondaryId);
    performer->CreateNotificationHandler();
    ASSERT_EQ(performer->Perform(image, u"Tessel", u"Tessel"), TF::kFailure);
    EXPECT_EQ(performer->GetRefCount(), 1);
    EXPECT_EQ(performer->GetRegistrationCount(), 0);
  }
  EXPECT_EQ(rig.CountOf(MessageName::kStart), 50u);
}

}  // namespace
