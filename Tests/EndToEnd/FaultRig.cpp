#include "Tests/EndToEnd/FaultRig.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace EndToEnd {

using EngineTest::NotificationRecorder;
using Simulator::DeviceMode;
using Simulator::DeviceStatus;
using Simulator::MessageName;
using Events = std::vector<std::string>;
using TF::kSuccess;

namespace {

constexpr std::chrono::seconds kPatience{30};
// Above the sum of all waits of the longest run, six passes with two verifications each.
constexpr std::uint32_t kUpdateLimitMs = 60000 * kSlowness;
constexpr int kMostRuns = 8;

// Only the version queries run to their limit in a healthy run: a device in update mode
// answers none of them in the way that they ask for.
ProbeLimits Probes() {
  ProbeLimits limits;
  limits.mVersionReplyMs = 40;
  limits.mBootloaderReplyMs = kOpenLimitMs;
  limits.mOpenReplyMs = kOpenLimitMs;
  return limits;
}

TransferLimits Transfers() {
  TransferLimits limits;
  limits.mReplyMs = kReplyLimitMs;
  limits.mLateReplyMs = kLateWaitMs;
  limits.mVerifyPauseMs = kLateWaitMs;
  limits.mWritePauseMs = 0;
  limits.mRetries = kRetries;
  return limits;
}

// All but its progress. The last notification may come a moment after the result.
Events EventsOfUpdate(NotificationRecorder& recorder) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  Events events;
  do {
    events = recorder.Deliver();
    std::erase_if(events, [](const std::string& event) { return event.starts_with("progress"); });
  } while ((events.empty() || !events.back().starts_with("completed")) &&
           std::chrono::steady_clock::now() < deadline);
  return events;
}

bool HasFault(const FaultCase& faultCase, const char* kind) {
  return std::any_of(faultCase.mFaults.begin(), faultCase.mFaults.end(),
                     [=](const std::string& fault) { return fault.starts_with(kind); });
}

}  // namespace

FaultRun::FaultRun(const FaultCase& faultCase)
    : mCase(faultCase),
      mImage(EngineTest::MakeImage(MatrixImage())),
      mDevice(EngineTest::DeviceAt("Tessel MIDI 1", DeviceMode::kBootloader, faultCase.mFaults)) {}

void FaultRun::MakeEngine() {
  mRig = std::make_unique<EngineTest::EngineRig>(Probes(), Transfers());
  mRig->SetImage(mImage);
}

void FaultRun::Run() {
  mDevice.Start();
  MakeEngine();
  for (int run = 1; run <= kMostRuns; ++run) {
    const testing::ScopedTrace trace(__FILE__, __LINE__, fmt::format("run {}", run));
    ASSERT_TRUE(EnterUpdateMode()) << "device state " << (*mRig)->GetDeviceState();
    const DeviceStatus status = mDevice.Status();
    const bool isLast = AreUsedUp(mCase, status);
    const bool isForeseen = run == 1 && mCase.mFirstRun;
    ASSERT_TRUE(Update(isForeseen ? *mCase.mFirstRun : ExpectRun(mCase, status)));
    if (isLast) return CheckLastUpdate();
    ASSERT_TRUE(Recover()) << "the device does not come back";
    if (mCase.mHasNewEngines) MakeEngine();
  }
  FAIL() << "faults are left after " << kMostRuns << " runs";
}

// As a user does it, from whatever the last run left.
bool FaultRun::EnterUpdateMode() {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while ((*mRig)->GetDeviceState() != DEVICE_IN_UPDATE_MODE && std::chrono::steady_clock::now() < deadline) {
    if ((*mRig)->GetDeviceState() < DEVICE_CANNOT_BE_UPDATED) {
      (*mRig)->ScanForDevice();
    } else if ((*mRig)->GetDeviceState() == DEVICE_NOT_IN_UPDATE_MODE) {
      (*mRig)->EnterUpdateMode();
      mDevice.WaitFor([](const DeviceStatus& status) { return status.mMode == DeviceMode::kBootloader; });
      mDevice.WaitForPlug(true);
    } else {
      (*mRig)->RefreshDeviceState();
    }
  }
  return (*mRig)->GetDeviceState() == DEVICE_IN_UPDATE_MODE;
}

bool FaultRun::Update(const Expectation& expected) {
  const DeviceStatus before = mDevice.Status();
  EngineTest::NotificationRecorder recorder;
  EXPECT_EQ((*mRig)->StartUpdate(), kSuccess);
  if (TF::Failed((*mRig)->WaitForUpdateCompletion(kUpdateLimitMs))) return false;
  const bool wasStarted = mDevice.Status().CountOf(MessageName::kStart) > before.CountOf(MessageName::kStart);
  const bool wasSent = (*mRig)->GetUpdateResult(false) == UPDATE_SENT;
  const Ending ending = wasSent ? Ending::kSent : wasStarted ? Ending::kFailed : Ending::kNotOpened;
  EXPECT_TRUE(ending == expected.mEnding || !expected.mIsCertain)
      << "ends as " << static_cast<int>(ending) << ", not as " << static_cast<int>(expected.mEnding);
  CheckEngine(ending, recorder);
  CheckDevice(ending, expected, before);
  mUpdatesSent += wasSent ? 1 : 0;
  return true;
}

void FaultRun::CheckEngine(Ending ending, NotificationRecorder& recorder) {
  const bool isSent = ending == Ending::kSent;
  EXPECT_EQ(EventsOfUpdate(recorder), isSent ? Events({"device 8<7", "completed 1"})
                                             : Events({"device 8<7", "device 4<8", "completed 0"}));
  EXPECT_EQ((*mRig)->GetUpdateResult(false), isSent ? UPDATE_SENT : UPDATE_FAILED);
  EXPECT_EQ((*mRig)->GetDeviceState(), isSent ? UPDATE_IN_PROGRESS : DEVICE_CANNOT_BE_UPDATED);
  EXPECT_EQ(mRig->Reason(), ending == Ending::kFailed ? REASON_DEVICE_ACCESS_FAILURE : REASON_NONE);
}

void FaultRun::CheckDevice(Ending ending, const Expectation& expected, const DeviceStatus& before) {
  const std::uint32_t finishes = before.CountOf(MessageName::kFinish) + (ending == Ending::kSent ? 1 : 0);
  EXPECT_TRUE(mDevice.WaitFor(
      [=](const DeviceStatus& status) { return status.CountOf(MessageName::kFinish) >= finishes; }));
  const DeviceStatus status = mDevice.Status();
  EXPECT_EQ(status.CountOf(MessageName::kFinish), finishes) << "told that an update has finished";
  Events violations(status.mViolations.begin() + static_cast<std::ptrdiff_t>(before.mViolations.size()),
                    status.mViolations.end());
  for (const std::uint32_t region : {kFirstRegion, kLastRegion}) {
    if (ending != Ending::kSent) continue;
    const bool isVerified = status.mVerifiedRegions.contains(region);
    const bool isRefused = expected.mLeftOut.contains(region);
    EXPECT_FALSE(isVerified && isRefused) << "region " << region << " was refused";
    EXPECT_TRUE(isVerified || isRefused || expected.mMayBeLeftOut.contains(region))
        << "finished without region " << region;
    // What the device refuses may be what an earlier run has begun.
    if (!isVerified) std::erase(violations, "finish with a region unverified");
  }
  EXPECT_EQ(violations, Events());
  if (ending != Ending::kSent) return;
  const unsigned passes = status.CountOf(MessageName::kSelect) - before.CountOf(MessageName::kSelect);
  EXPECT_GE(passes, expected.mFewestPasses);
  EXPECT_LE(passes, expected.mMostPasses);
}

// What the user does: the cable of a device that answers nothing is pulled and put back. So it
// is after a failed run whose late reply may still come; the product's own probe takes longer.
bool FaultRun::Recover() {
  const bool isLate = HasFault(mCase, "late-reply") && (*mRig)->GetUpdateResult(false) != UPDATE_SENT;
  if (HasFault(mCase, "silent") || HasFault(mCase, "unplug") || isLate) {
    mDevice.Unplug();
    if (!mDevice.WaitForPlug(false)) return false;
    mDevice.Replug();
  }
  return mDevice.WaitForPlug(true);
}

void FaultRun::CheckLastUpdate() {
  EXPECT_EQ((*mRig)->GetUpdateResult(false), UPDATE_SENT);
  ASSERT_TRUE(mDevice.WaitForPlug(true));
  EXPECT_TRUE(mRig->RefreshUntil(DEVICE_NOT_IN_UPDATE_MODE));
  EXPECT_FALSE((*mRig)->IsFirmwareFileNewer());
  EXPECT_TRUE(mDevice.Flash() == Vbin::FlashOf(Vbin::ReadImage(mImage), Simulator::kDefaultHardwareId));
  EXPECT_EQ(mDevice.Status().CountOf(MessageName::kFinish), mUpdatesSent);
}

}  // namespace EndToEnd
