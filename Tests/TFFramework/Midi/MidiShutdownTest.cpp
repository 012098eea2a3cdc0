#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>

#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

constexpr std::string_view kLateReply = "\xF0 reply \xF7";

class MidiShutdown : public MidiCommFixture {
 protected:
  void SetUp() override {
    MidiCommFixture::SetUp();
    mDriver.SetInputs({u"Tessel"});
    mPort = OpenInput(u"Tessel");
  }

  void TearDown() override {
    mPort = nullptr;
    MidiCommFixture::TearDown();
  }

  void Receive() { EXPECT_TRUE(mDriver.ReceiveLong(mDriver.InputOn(0), kLateReply)); }

  Port mPort;
};

TEST_F(MidiShutdown, WaitsForTheHandlerAndLetsNoneRunAfterIt) {
  std::promise<void> leave;
  std::shared_future<void> mayLeave = leave.get_future().share();
  std::promise<void> entered;
  std::atomic<int> entries{0};
  std::atomic<int> exits{0};
  const auto client = Listen([&] {
    if (++entries == 1) entered.set_value();
    mayLeave.wait();
    ++exits;
  });
  for (int i = 0; i < 5; ++i) Receive();
  entered.get_future().wait();
  std::thread releaser([&] { leave.set_value(); });
  mComm->Shutdown();
  const int handled = exits;
  EXPECT_GE(handled, 1);
  releaser.join();
  client->UnregisterAll();
  CloseService();
  EXPECT_EQ(entries, handled);
}

TEST_F(MidiShutdown, InAHandlerDropsWhatIsQueuedAndDoesNotWaitForItself) {
  std::promise<void> queued;
  std::shared_future<void> ready = queued.get_future().share();
  std::promise<void> done;
  const auto client = Listen([&] {
    ready.wait();
    mComm->Shutdown();
    done.set_value();
  });
  for (int i = 0; i < 5; ++i) Receive();
  queued.set_value();
  EXPECT_EQ(done.get_future().wait_for(CaptureClient::kPatience), std::future_status::ready);
  mComm->Shutdown();
  EXPECT_EQ(client->Texts().size(), 1u);
  client->UnregisterAll();
}

// No owner should do this; it must still not hang, crash or leak.
TEST_F(MidiShutdown, TheLastHolderMayLetGoInAHandler) {
  std::promise<void> held;
  std::shared_future<void> ready = held.get_future().share();
  TF::RCPtr<CaptureClient> client;
  client = Listen([&] {
    ready.wait();
    client->UnregisterAll();
    mPort = nullptr;
    mComm = nullptr;
  });
  Receive();
  held.set_value();
  EXPECT_TRUE(client->WaitFor(1));
  client = nullptr;
  EXPECT_TRUE(WaitForObjectsToGo());
  EXPECT_EQ(mDriver.OpenPorts(), 0);
}

TEST_F(MidiShutdown, AClientLeftBehindHearsNothingMore) {
  const auto client = Listen();
  Receive();
  EXPECT_TRUE(client->WaitFor(1));
  const Platform::MidiHandle handle = mDriver.InputOn(0);
  mComm->Shutdown();
  mDriver.CallLate(handle, Platform::MidiMessage::kData, 0xF8);
  EXPECT_EQ(client->Texts().size(), 1u);
  client->UnregisterAll();
}

}  // namespace
