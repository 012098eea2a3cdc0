#include <gtest/gtest.h>

#include <future>

#include "Tests/Support/Engine/TransferRig.h"
#include "Tests/Support/LogCapture.h"

// What a transfer makes of a device that answers wrongly, late or not at all.

namespace {

using namespace EngineTest;
using Simulator::kDefaultHardwareId;
using Simulator::MessageName;
using Texts = std::vector<std::string>;

constexpr std::uint32_t kWrongHardware = 0x12345678;

Texts Join(std::initializer_list<Texts> parts) {
  Texts all;
  for (const Texts& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST(FirmwareTransferFailure, InvalidImageSendsNotOneByte) {
  const Bytes good = MakeImage(TwoRegions());
  Bytes wrongMagic = good;
  wrongMagic[1] ^= 1;
  Bytes wrongChecksum = good;
  wrongChecksum.back() ^= 1;
  const Bytes truncated(good.begin(), good.end() - 1);
  TransferRig rig;
  for (const Bytes& image : {Bytes(), wrongMagic, wrongChecksum, truncated}) {
    EXPECT_EQ(rig.Transfer(image), TF::kFailure);
  }
  // The good one that follows is all that arrives.
  EXPECT_EQ(rig.Transfer(good), TF::kSuccess);
  ASSERT_TRUE(rig.WaitForFinish());
  EXPECT_EQ(rig.Messages().size(), 27u);
}

TEST(FirmwareTransferFailure, WithoutAMidiServiceThereIsNoTransfer) {
  class WithoutService : public LVarnokMidiFirmwareUpdatePerformer {
   public:
    using LVarnokMidiFirmwareUpdatePerformer::LVarnokMidiFirmwareUpdatePerformer;
    bool mWasAsked = false;

   protected:
    TF::RCPtr<TF::LMidiCommInterface> CreateMidiService() override {
      mWasAsked = true;
      return nullptr;
    }
  };
  const auto performer = TF::MakeRC<WithoutService>(1u, 2u);
  performer->CreateNotificationHandler();
  EXPECT_EQ(performer->Perform(ToArray(MakeImage({})), u"Tessel", u"Tessel"), TF::kFailure);
  EXPECT_FALSE(performer->mWasAsked) << "a service for an invalid image";
  EXPECT_EQ(performer->Perform(ToArray(MakeImage(OneRegion(1))), u"Tessel", u"Tessel"), TF::kOutOfMemory);
  EXPECT_TRUE(performer->mWasAsked);
}

TEST(FirmwareTransferFailure, WithoutADeviceTheTransferFails) {
  const auto performer = TF::MakeRC<LVarnokMidiFirmwareUpdatePerformer>(1u, 2u);
  performer->CreateNotificationHandler();
  EXPECT_EQ(performer->Perform(ToArray(MakeImage(OneRegion(1))), u"Tessel", u"Tessel"), TF::kFailure);
}

struct FaultCase {
  const char* name;
  Texts faults;
  TFRESULT result;
  Texts exchanges;
};

void PrintTo(const FaultCase& test, std::ostream* out) {
  *out << test.name;
}

std::string NameOfFaultCase(const testing::TestParamInfo<FaultCase>& test) {
  return test.param.name;
}

void ExpectExchanges(const FaultCase& test, const std::vector<Vbin::RegionDescription>& regions) {
  TransferRig rig(test.faults);
  EXPECT_EQ(rig.Transfer(regions), test.result) << test.name;
  if (test.result == TF::kSuccess) {
    EXPECT_TRUE(rig.WaitForFinish()) << test.name;
  }
  EXPECT_EQ(rig.Exchanges(), test.exchanges) << test.name;
}

class TransferFault : public testing::TestWithParam<FaultCase> {};

// Two regions, with one fault; the outcome that the fault must have.
TEST_P(TransferFault, HasItsOutcome) {
  ExpectExchanges(GetParam(), TwoRegions());
}

const Texts kStart = {"start"};
const Texts kSelect0 = {"select 0"};
const Texts kBegin0 = {"select 0", "header 0"};
const Texts kRegion0 = {"select 0", "header 0", "verify 0"};
const Texts kRegion1 = {"select 1", "header 1", "verify 1"};
const Texts kFinish = {"finish"};

INSTANTIATE_TEST_SUITE_P(
    Device, TransferFault,
    testing::Values(
        FaultCase{"NoReplyToStart", {"lose-reply@start"}, TF::kFailure, kStart},
        FaultCase{"ValueInsteadOfReady", {"wrong-reply@start:0x81"}, TF::kFailure, kStart},
        FaultCase{"ErrorInsteadOfReady", {"error-reply@start"}, TF::kFailure, kStart},
        FaultCase{"RegionInsteadOfReady", {"wrong-reply@start:0x83"}, TF::kFailure, kStart},
        FaultCase{"AckInsteadOfReady", {"wrong-reply@start:0x80"}, TF::kFailure, kStart},
        FaultCase{"NoReplyToSelection", {"lose-reply@select"}, TF::kFailure, Join({kStart, kSelect0})},
        FaultCase{"NoReplyToLaterSelection",
                  {"lose-reply@select#2"},
                  TF::kFailure,
                  Join({kStart, kRegion0, {"select 1"}})},
        FaultCase{
            "ReadyInsteadOfRegion", {"wrong-reply@select:0x84"}, TF::kFailure, Join({kStart, kSelect0})},
        FaultCase{"ErrorInsteadOfRegion",
                  {"error-reply@select"},
                  TF::kSuccess,
                  Join({kStart, kSelect0, kRegion1, kFinish})},
        FaultCase{"ValueInsteadOfRegion",
                  {"wrong-reply@select:0x81"},
                  TF::kSuccess,
                  Join({kStart, kSelect0, kRegion1, kFinish})},
        FaultCase{"AnotherRegion",
                  {"wrong-region@select#2"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, {"select 1"}, kFinish})},
        FaultCase{"RegionOfOtherHardware",
                  {"wrong-hardware@select:0x55"},
                  TF::kSuccess,
                  Join({kStart, kSelect0, kRegion1, kFinish})},
        FaultCase{"NoReplyToHeader",
                  {"lose-reply@header"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"ErrorInReplyToHeader",
                  {"error-reply@header"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, kRegion1, kFinish})},
        FaultCase{"NoReplyToWrite",
                  {"lose-reply@write-acked"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"WrongChecksumOfWrite",
                  {"wrong-crc@write-acked#2"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, {"select 1", "header 1"}, kRegion1, kFinish})},
        FaultCase{"ErrorInReplyToWrite",
                  {"error-reply@write-acked"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"CutOffReplyToWrite",
                  {"short-reply@write-acked:4"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"HalfAReplyToWrite",
                  {"half-reply@write-acked"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"RegionInsteadOfValue",
                  {"wrong-reply@write-acked:0x83"},
                  TF::kSuccess,
                  Join({kStart, kBegin0, kRegion0, kRegion1, kFinish})},
        FaultCase{"LostWrite",
                  {"ignore-message@write#3"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, kRegion0, kRegion1, kFinish})},
        FaultCase{"NoReplyToOneVerification",
                  {"lose-reply@verify"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, {"verify 0"}, kRegion1, kFinish})},
        FaultCase{"NoReplyToBothVerifications",
                  {"lose-reply@verify#1-2"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, {"verify 0"}, kRegion0, kRegion1, kFinish})},
        FaultCase{"WrongVerification",
                  {"wrong-crc@verify"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, kRegion0, kRegion1, kFinish})},
        FaultCase{"ErrorInReplyToVerification",
                  {"error-reply@verify#2"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, kRegion1, kRegion1, kFinish})},
        FaultCase{
            "FiveFailedPasses",
            {"wrong-crc@verify#1-5"},
            TF::kSuccess,
            Join({kStart, kRegion0, kRegion0, kRegion0, kRegion0, kRegion0, kRegion0, kRegion1, kFinish})},
        FaultCase{"SixFailedPasses",
                  {"wrong-crc@verify#1-6"},
                  TF::kFailure,
                  Join({kStart, kRegion0, kRegion0, kRegion0, kRegion0, kRegion0, kRegion0})},
        FaultCase{"SixFailedPassesOverBothRegions",
                  {"wrong-crc@verify#1-3", "wrong-crc@verify#5-7"},
                  TF::kFailure,
                  Join({kStart, kRegion0, kRegion0, kRegion0, kRegion0, kRegion1, kRegion1, kRegion1})},
        FaultCase{"NoiseEverywhere", {"noise@*"}, TF::kSuccess, Join({kStart, kRegion0, kRegion1, kFinish})},
        FaultCase{"MessageWithoutAnEnd",
                  {"flood@header:300000"},
                  TF::kSuccess,
                  Join({kStart, kRegion0, kRegion1, kFinish})}),
    NameOfFaultCase);

// A pass that failed has left a part of the region in the device.
TEST(FirmwareTransferFailure, RegionThatFailedAPassIsNeverSkipped) {
  const FaultCase cases[] = {{"refused once",
                              {"wrong-crc@verify", "error-reply@select#2"},
                              TF::kSuccess,
                              Join({kStart, kRegion0, kSelect0, kRegion0, kRegion1, kFinish})},
                             {"refused for good",
                              {"wrong-crc@verify", "wrong-region@select#2-9"},
                              TF::kFailure,
                              Join({kStart, kRegion0, kSelect0, kSelect0, kSelect0, kSelect0, kSelect0})},
                             {"other hardware at once",
                              {"wrong-crc@verify", "wrong-hardware@select#2"},
                              TF::kSuccess,
                              Join({kStart, kRegion0, kSelect0, kRegion0, kRegion1, kFinish})}};
  for (const FaultCase& test : cases) ExpectExchanges(test, TwoRegions());
}

TEST(FirmwareTransferFailure, RecordsNameTheReasons) {
  const struct {
    Texts faults;
    const char* record;
  } cases[] = {
      {{"error-reply@start"},
       "Firmware transfer failed: reply 0x82 instead of ready to the start of the transfer "
       "(messages sent: 1, bytes: 17).\n"},
      {{"silent@select"}, "Firmware transfer failed: region 0: no reply to its selection within 1500 ms "},
      {{"error-reply@select"}, "Region 0 skipped: the device did not select it.\n"},
      {{"wrong-crc@write-acked"},
       "Region 0 failed: section 0: an acknowledged write arrived damaged (failed passes in all: 1, allowed: "
       "5).\n"},
      {{"wrong-crc@verify"},
       "Region 0 failed: the device holds other data than the image (failed passes in all: 1, allowed: "
       "5).\n"},
      {{"wrong-crc@verify#*"}, "Firmware transfer failed: too many failed passes "},
  };
  for (const auto& test : cases) {
    TestSupport::LogCapture log;
    TransferRig rig(test.faults);
    rig.Transfer(OneRegion(2000));
    EXPECT_TRUE(log.Contains(test.record)) << test.record << "\n" << log.Text();
  }
}

class InterruptedTransfer : public testing::TestWithParam<std::tuple<std::string, int>> {};

std::string NameOfInterruption(const testing::TestParamInfo<InterruptedTransfer::ParamType>& test) {
  return std::get<0>(test.param) + std::to_string(std::get<1>(test.param));
}

// start, select, header, 9 writes, verify, finish.
constexpr int kMessagesOfOneRegion = 14;

TEST_P(InterruptedTransfer, FailsInTimeAndTheNextOneSucceeds) {
  const auto [kind, message] = GetParam();
  const bool isLast = message == kMessagesOfOneRegion;
  const auto regions = OneRegion(2100);
  {
    TransferRig rig({kind + "@" + std::to_string(message)});
    // Nobody waits for an answer to the last message.
    EXPECT_EQ(rig.Transfer(regions), isLast ? TF::kSuccess : TF::kFailure);
    ASSERT_TRUE(rig.Device().WaitFor([=](const Simulator::DeviceStatus& status) {
      return status.mUpdateModeMessages >= static_cast<std::uint32_t>(message);
    }));
  }
  TransferRig rig;
  EXPECT_EQ(rig.Transfer(regions), TF::kSuccess);
  EXPECT_TRUE(rig.FlashHolds(regions));
}

INSTANTIATE_TEST_SUITE_P(AtEachMessage, InterruptedTransfer,
                         testing::Combine(testing::Values(std::string("unplug"), std::string("silent")),
                                          testing::Range(1, kMessagesOfOneRegion + 1)),
                         NameOfInterruption);

// The device answers late, in the order of the questions. The test plays its part from the
// moment at which the fault silences it.
class LateReply : public testing::Test {
 protected:
  void Begin(const Texts& faults, const std::vector<Vbin::RegionDescription>& regions,
             std::uint32_t lateReplyMs = ShortLimits().mLateReplyMs) {
    mRig = std::make_unique<TransferRig>(faults);
    mRig->Limits().mLateReplyMs = lateReplyMs;
    mResult = std::async(std::launch::async, [this, regions] { return mRig->Transfer(regions); });
  }
  bool WaitForCount(MessageName name, std::uint32_t count) { return mRig->WaitForCount(name, count); }

  std::unique_ptr<TransferRig> mRig;
  std::future<TFRESULT> mResult;
};

TEST_F(LateReply, SecondVerificationsReplyDoesNotSkipTheNextRegion) {
  const auto regions = TwoRegions();
  const std::uint32_t crc = Vbin::Crc32(regions[0].mSections[0].mData);
  Begin({"lose-reply@verify#1-2", "lose-reply@select#2"}, regions);
  ASSERT_TRUE(WaitForCount(MessageName::kVerify, 2));
  mRig->ReplyValue(crc);
  ASSERT_TRUE(WaitForCount(MessageName::kSelect, 2));
  mRig->ReplyValue(crc);
  mRig->ReplyRegion(1);
  ASSERT_EQ(mResult.get(), TF::kSuccess);
  ASSERT_TRUE(mRig->WaitForFinish());
  EXPECT_EQ(mRig->Exchanges(), Join({kStart, kRegion0, {"verify 0"}, kRegion1, kFinish}));
  EXPECT_TRUE(mRig->FlashHolds(regions));
}

TEST_F(LateReply, ErrorOwedForAVerificationIsNoAnswerToTheSelection) {
  const auto regions = TwoRegions();
  Begin({"lose-reply@verify#1-2", "lose-reply@select#2"}, regions);
  ASSERT_TRUE(WaitForCount(MessageName::kVerify, 2));
  mRig->ReplyValue(Vbin::Crc32(regions[0].mSections[0].mData));
  ASSERT_TRUE(WaitForCount(MessageName::kSelect, 2));
  mRig->Reply(Simulator::kReplyError, {1, 0, 0, 0});
  mRig->ReplyRegion(1);
  ASSERT_EQ(mResult.get(), TF::kSuccess);
  ASSERT_TRUE(mRig->WaitForFinish());
  EXPECT_TRUE(mRig->FlashHolds(regions));
}

// One reply is owed: the first value is that one, the second is the device's own answer.
TEST_F(LateReply, OnlyAsManyRepliesAsAreOwedAreStale) {
  const auto regions = TwoRegions();
  const std::uint32_t crc = Vbin::Crc32(regions[0].mSections[0].mData);
  Begin({"lose-reply@verify#1-2", "lose-reply@select#2"}, regions);
  ASSERT_TRUE(WaitForCount(MessageName::kVerify, 2));
  mRig->ReplyValue(crc);
  ASSERT_TRUE(WaitForCount(MessageName::kSelect, 2));
  mRig->ReplyValue(crc);
  mRig->Reply(Simulator::kReplyError, {1, 0, 0, 0});
  ASSERT_EQ(mResult.get(), TF::kSuccess);
  ASSERT_TRUE(mRig->WaitForFinish());
  EXPECT_EQ(mRig->Exchanges(), Join({kStart, kRegion0, {"verify 0"}, {"select 1"}, kFinish}));
}

TEST_F(LateReply, SelectionThatGetsOnlyStaleRepliesFailsAtItsLimit) {
  Begin({"lose-reply@header", "lose-reply@select#2"}, TwoRegions());
  ASSERT_TRUE(WaitForCount(MessageName::kSelect, 2));
  mRig->ReplyValue(0);
  EXPECT_EQ(mResult.get(), TF::kFailure);
  EXPECT_EQ(mRig->Exchanges(), Join({kStart, kBegin0, kSelect0}));
}

TEST_F(LateReply, HeadersReplyDoesNotSkipItsRegion) {
  const auto regions = TwoRegions();
  Begin({"lose-reply@header", "lose-reply@select#2"}, regions);
  ASSERT_TRUE(WaitForCount(MessageName::kSelect, 2));
  mRig->ReplyValue(0);
  mRig->ReplyRegion(0);
  ASSERT_EQ(mResult.get(), TF::kSuccess);
  ASSERT_TRUE(mRig->WaitForFinish());
  EXPECT_TRUE(mRig->FlashHolds(regions));
}

// The pass after a lost reply begins with a wait for it; the test waits for the record of the
// failed pass, behind which that wait lies.
TEST_F(LateReply, ReplyAtTheHeadOfTheNextPassIsNoLongerOwed) {
  TestSupport::LogCapture log;
  Begin({"lose-reply@header", "error-reply@select#3"}, TwoRegions(), 10000);
  ASSERT_TRUE(log.WaitFor("Region 0 failed: no reply to its header"));
  mRig->ReplyValue(0);
  ASSERT_EQ(mResult.get(), TF::kSuccess);
  ASSERT_TRUE(mRig->WaitForFinish());
  EXPECT_EQ(mRig->Exchanges(), Join({kStart, kBegin0, kRegion0, {"select 1"}, kFinish}));
}

// As long as a reply is owed, nobody can tell a refusal from that reply. Better to end the
// transfer than to leave out a region.
TEST_F(LateReply, RefusalWhileAReplyIsOwedEndsTheTransfer) {
  Begin({"lose-reply@header", "error-reply@select#3"}, TwoRegions());
  EXPECT_EQ(mResult.get(), TF::kFailure);
  EXPECT_EQ(mRig->Exchanges(), Join({kStart, kBegin0, kRegion0, {"select 1"}}));
}

}  // namespace
