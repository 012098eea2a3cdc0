#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <iostream>
#include <memory>
#include <thread>

#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tests/EndToEnd/DeviceRig.h"
#include "Tests/Support/Engine/EngineRig.h"
#include "Tests/Support/ProcessFootprint.h"

// Many updates after each other: memory, threads and descriptors stay level.

namespace {

using namespace EndToEnd;
using namespace EngineTest;
using Simulator::DeviceMode;
using Simulator::DeviceStatus;
using Simulator::MessageName;
using TestSupport::ProcessFootprint;

constexpr std::chrono::seconds kPatience{30};
// The C library counts what its caches hold for each thread as in use; they fill up over the
// first hundred updates by some 15 KiB. Without them 250 updates stay within 1 KiB.
constexpr std::size_t kHeapTolerance = 32 * 1024;

ProbeLimits QuickProbes() {
  ProbeLimits limits;
  limits.mVersionReplyMs = 40;
  limits.mBootloaderReplyMs = limits.mOpenReplyMs = 5000;
  return limits;
}

struct Holdings {
  ProcessFootprint mProcess;
  std::int64_t mObjects = 0;
  std::size_t mHeapBytes = 0;

  // Threads may be on their way out for a moment, with what they hold.
  bool IsWithin(const Holdings& earlier) const {
    return mProcess.mDescriptors <= earlier.mProcess.mDescriptors &&
           mProcess.mThreads <= earlier.mProcess.mThreads && mObjects <= earlier.mObjects;
  }
};

Holdings Measure() {
  return {TestSupport::MeasureFootprint(getpid()), TF::LRefCountedObject::GetLiveCount(),
          TestSupport::HeapBytesInUse()};
}

void Print(const char* when, const Holdings& holdings) {
  std::cout << fmt::format("{}: {} descriptors, {} threads, {} objects, {} bytes of heap\n", when,
                           holdings.mProcess.mDescriptors, holdings.mProcess.mThreads, holdings.mObjects,
                           holdings.mHeapBytes);
}

// The whole life of an update: scan, switch, poll, transfer, poll.
void UpdateOnce(EngineRig& engine, Simulator::SimulatorServer& device) {
  ASSERT_EQ(engine->ScanForDevice(), TF::kSuccess);
  ASSERT_EQ(engine->GetDeviceState(), DEVICE_NOT_IN_UPDATE_MODE);
  ASSERT_GT(engine->EnterUpdateMode(), 0);
  ASSERT_TRUE(InMode(device, DeviceMode::kBootloader));
  ASSERT_TRUE(engine.RefreshUntil(DEVICE_IN_UPDATE_MODE));
  engine.Update();
  ASSERT_EQ(engine->GetUpdateResult(true), UPDATE_SENT);
  ASSERT_TRUE(InMode(device, DeviceMode::kNormal));
  ASSERT_TRUE(engine.RefreshUntil(DEVICE_NOT_IN_UPDATE_MODE));
  device.ClearReceived();
  TF::LNotificationCenterManager::GetInstance()->GetCenter(TF::kApplicationCenterName)->Process(false);
}

void UpdateManyTimes(int rounds, int warmUp) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal));
  device.Start();
  EngineRig engine(QuickProbes());
  engine.SetImage(MakeImage(TwoRegions()));
  Holdings early;
  for (int round = 1; round <= rounds; ++round) {
    SCOPED_TRACE(fmt::format("round {}", round));
    UpdateOnce(engine, device);
    if (testing::Test::HasFatalFailure()) return;
    if (round == warmUp) Print("early", early = Measure());
  }
  EXPECT_EQ(device.Status().mFinishedUpdates, static_cast<std::uint32_t>(rounds));
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!Measure().IsWithin(early) && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  const Holdings last = Measure();
  Print("last", last);
  EXPECT_TRUE(last.IsWithin(early));
  EXPECT_LE(last.mHeapBytes, early.mHeapBytes + kHeapTolerance);
}

TEST(Soak, RepeatedUpdatesKeepNothing) {
  UpdateManyTimes(10, 3);
}

// These two take minutes and run when they are asked for.
TEST(Soak, DISABLED_HundredUpdatesKeepNothing) {
  UpdateManyTimes(100, 10);
}

// A run of the program with a device of its own, which lets the program wait for the last
// verification while it is measured.
class SilentRun {
 public:
  SilentRun()
      : mDevice(mRig.AddDevice(DeviceMode::kBootloader, {"late-reply@verify#2:2000"})),
        mProgram(mRig.Updater({"-SILENT"})) {}

  ProcessFootprint MeasureAtLastVerification() {
    const auto isVerifying = [](const DeviceStatus& status) {
      return status.CountOf(MessageName::kVerify) == 2;
    };
    EXPECT_TRUE(mDevice.WaitFor(isVerifying));
    return TestSupport::MeasureFootprint(mProgram.Process());
  }
  void ExpectSuccess() {
    EXPECT_EQ(mProgram.Wait(), 0);
    EXPECT_EQ(mProgram.Errors(), "");
    EXPECT_TRUE(mDevice.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
    EXPECT_TRUE(mRig.Holds(mDevice));
  }

 private:
  DeviceRig mRig;
  Simulator::SimulatorServer& mDevice;
  ProgramRun mProgram;
};

void PrintRange(const char* what, const std::vector<ProcessFootprint>& all,
                std::size_t ProcessFootprint::*field) {
  const auto [least, most] = std::minmax_element(
      all.begin(), all.end(), [=](const auto& one, const auto& other) { return one.*field < other.*field; });
  std::cout << fmt::format("{}: {} to {}\n", what, (*least).*field, (*most).*field);
}

// Of the runs from first to last, both included.
std::size_t Most(const std::vector<ProcessFootprint>& all, std::size_t first, std::size_t last,
                 std::size_t ProcessFootprint::*field) {
  std::size_t most = 0;
  for (std::size_t i = first; i <= last; ++i) most = std::max(most, all[i].*field);
  return most;
}

TEST(Soak, DISABLED_HundredProcessesAreAllAlike) {
  constexpr std::size_t kAtATime = 10;
  constexpr std::size_t kRuns = 100;
  // Where the loader and the kernel put things differs from run to run.
  constexpr std::size_t kPeakTolerance = 512;
  std::vector<ProcessFootprint> all;
  while (all.size() < kRuns) {
    std::deque<SilentRun> runs(kAtATime);
    for (SilentRun& run : runs) all.push_back(run.MeasureAtLastVerification());
    for (SilentRun& run : runs) run.ExpectSuccess();
  }
  PrintRange("peak memory in KiB", all, &ProcessFootprint::mPeakKibibytes);
  PrintRange("threads", all, &ProcessFootprint::mThreads);
  PrintRange("descriptors", all, &ProcessFootprint::mDescriptors);
  for (const auto& [field, tolerance] : {std::pair{&ProcessFootprint::mPeakKibibytes, kPeakTolerance},
                                         {&ProcessFootprint::mThreads, 0},
                                         {&ProcessFootprint::mDescriptors, 0}}) {
    EXPECT_GT(Most(all, 0, kAtATime - 1, field), 0u);
    EXPECT_LE(Most(all, kRuns - kAtATime, kRuns - 1, field), Most(all, 0, kAtATime - 1, field) + tolerance);
  }
}

}  // namespace
