#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "Platform/VirtualMidiDriver.h"
#include "TFFramework/Midi/MidiComm.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/Support/MidiSockets.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/Midi/CaptureClient.h"
#include "Tests/TFFramework/Midi/FakeMidiDriver.h"

namespace {

// Counts messages and bytes and takes nothing from the heap.
class CountingClient : public TF::LNotificationClient {
 public:
  void OnNotification(const TF::RCPtr<TF::LNotificationDistributor>&,
                      const TF::RCPtr<TF::LNotification>& notification) override {
    const TF::RCPtr<TF::LMidiCaptureNotificationData> data = notification->GetData();
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [&] { return !mHeld; });
    ++mMessages;
    mBytes += static_cast<std::size_t>(data->mData.GetCount());
    mChanged.notify_all();
  }

  // While held, no handler ends, so that messages pile up.
  void SetHeld(bool held) {
    const std::lock_guard<std::mutex> lock(mMutex);
    mHeld = held;
    mChanged.notify_all();
  }

  bool WaitFor(std::size_t messages) {
    std::unique_lock<std::mutex> lock(mMutex);
    return mChanged.wait_for(lock, CaptureClient::kPatience, [&] { return mMessages >= messages; });
  }

  std::size_t Bytes() {
    const std::lock_guard<std::mutex> lock(mMutex);
    return mBytes;
  }

 private:
  std::mutex mMutex;
  std::condition_variable mChanged;
  bool mHeld = false;
  std::size_t mMessages = 0;
  std::size_t mBytes = 0;
};

class MidiCaptureAllocation : public testing::Test {
 protected:
  static constexpr std::size_t kReplies = 10000;
  static constexpr std::size_t kRound = 16;     // Replies under way at once.
  static constexpr std::size_t kWarmUp = 1024;  // More than are ever under way later.

  MidiCaptureAllocation() {
    for (std::size_t i = 0; i < kRound; ++i) {
      mRound[i] = '\xF0' + std::string(7 + i, static_cast<char>(i)) + '\xF7';
    }
  }

  void SetUp() override { TF::LNotification::SetCacheEnabled(true); }
  void TearDown() override { TF::LNotification::SetCacheEnabled(false); }

  // Sends one round and waits until all of it was handled.
  bool Round(const std::function<bool()>& sendRound) {
    mSent += kRound;
    return sendRound() && mClient->WaitFor(mSent);
  }

  void ExpectNoAllocation(const TF::RCPtr<TF::LMidiComm>& comm, const std::function<bool()>& sendRound) {
    mClient->Register(comm, TF::kMidiDataCapturedName);
    mClient->SetHeld(true);
    for (std::size_t i = 0; i < kWarmUp; i += kRound) ASSERT_TRUE(sendRound());
    mClient->SetHeld(false);
    mSent = kWarmUp;
    ASSERT_TRUE(mClient->WaitFor(mSent));
    ASSERT_TRUE(Round(sendRound));
    bool allArrived = true;
    const std::size_t bytesBefore = mClient->Bytes();
    const AllocationCounter counter;
    for (std::size_t i = 0; i < kReplies; i += kRound) allArrived = Round(sendRound) && allArrived;
    const std::int64_t allocations = counter.Count();
    EXPECT_TRUE(allArrived);
    EXPECT_EQ(mClient->Bytes() - bytesBefore, kReplies / kRound * RoundBytes());
    EXPECT_EQ(allocations, 0);
    mClient->UnregisterAll();
  }

  std::size_t RoundBytes() const {
    std::size_t bytes = 0;
    for (const std::string& reply : mRound) bytes += reply.size();
    return bytes;
  }

  std::array<std::string, kRound> mRound;
  const TF::RCPtr<CountingClient> mClient = TF::MakeRC<CountingClient>();
  std::size_t mSent = 0;
};

// Without this the two tests below would pass with a counter that counts nothing.
TEST_F(MidiCaptureAllocation, TheCounterSeesEachWayToTheHeap) {
  const AllocationCounter counter;
  const auto one = std::make_unique<std::atomic<int>>(1);
  EXPECT_GE(counter.Count(), 1);
  const std::int64_t before = counter.Count();
  void* volatile block = TF::GetSystemAllocator().Allocate(100);
  EXPECT_EQ(counter.Count(), before + 1);
  block = TF::GetSystemAllocator().Reallocate(block, 100000);
  EXPECT_GE(counter.Count(), before + 2);
  TF::GetSystemAllocator().Free(block);
}

TEST_F(MidiCaptureAllocation, RepliesOfADriverTakeNothingFromTheHeap) {
  FakeMidiDriver driver;
  driver.SetInputs({u"Tessel"});
  const auto comm = TF::MakeRC<TF::LMidiComm>(driver);
  TF::RCPtr<TF::LRefCountedObject> port;
  ASSERT_EQ(comm->OpenCapturePort(u"Tessel", port), TF::kSuccess);
  const Platform::MidiHandle handle = driver.InputOn(0);
  ExpectNoAllocation(comm, [&] {
    bool taken = true;
    for (const std::string& reply : mRound) taken = driver.ReceiveLong(handle, reply) && taken;
    return taken;
  });
  comm->Shutdown();
}

TEST_F(MidiCaptureAllocation, RepliesThroughASocketTakeNothingFromTheHeap) {
  const TestSupport::TemporaryFolder folder;
  TestSupport::MidiSocket device(folder.Entry("Tessel.in"));
  Platform::VirtualMidiDriver driver(folder.Path().string());
  const auto comm = TF::MakeRC<TF::LMidiComm>(driver);
  TF::RCPtr<TF::LRefCountedObject> port;
  ASSERT_EQ(comm->OpenCapturePort(u"Tessel", port), TF::kSuccess);
  TestSupport::MidiConnection connection = device.Accept();
  std::string round;
  for (const std::string& reply : mRound) round += reply;
  ExpectNoAllocation(comm, [&] {
    connection.Send(round);
    return true;
  });
  comm->Shutdown();
}

}  // namespace
