#include "Platform/MidiInputPort.h"

#include "Tests/Platform/VirtualMidiFixture.h"

#include <atomic>
#include <future>
#include <iterator>
#include <thread>
#include <utility>

namespace {

using Platform::MidiHandle;
using Platform::MidiMessage;
using TestSupport::Eventually;
using TestSupport::Exclusive;
using TestSupport::MidiBufferSet;
using TestSupport::MidiConnection;
using TestSupport::MidiRecorder;
using TestSupport::MidiSocket;

constexpr std::size_t kBufferBytes = 256;

class MidiInputPortTest : public VirtualMidiFixture {
 protected:
  MidiInputPortTest() : mPort(OpenFirstInput(mListener)), mConnection(mDevice.Accept()) {}

  // The listener calls the driver, which must not go before its callbacks have ended.
  void TearDown() override {
    driver->CloseInput(mPort);
    EXPECT_TRUE(Platform::WaitForMidiThreads(20000)) << "a port has left a thread behind";
    VirtualMidiFixture::TearDown();
  }

  void StartWithBuffers() {
    mBuffers.AddTo(*driver, mPort);
    ASSERT_EQ(driver->StartInput(mPort), Platform::kMidiOk);
  }

  bool DeviceHasGone() {
    std::u16string name;
    return driver->InputName(mPort, name) == Platform::kMidiBadDevice;
  }

  MidiSocket mDevice{SocketPath("Tessel.in")};
  const std::shared_ptr<MidiRecorder> mListener = std::make_shared<MidiRecorder>(driver.get());
  MidiBufferSet mBuffers{3, kBufferBytes};
  MidiHandle mPort;
  MidiConnection mConnection;
};

TEST_F(MidiInputPortTest, ShortAndLongMessagesKeepTheirOrder) {
  StartWithBuffers();
  mConnection.Send("\x90\x3C\x40\xF0\x01\xF8\x02\xF7\x3D\xC0\x05");
  const auto events = mListener->WaitForEvents(4);
  const std::pair<MidiMessage, std::string> expected[] = {{MidiMessage::kData, "\x90\x3C\x40"},
                                                          {MidiMessage::kData, "\xF8"},
                                                          {MidiMessage::kLongData, "\xF0\x01\x02\xF7"},
                                                          {MidiMessage::kData, "\xC0\x05"}};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(events[i].kind, expected[i].first);
    EXPECT_EQ(events[i].bytes, expected[i].second);
    EXPECT_EQ(events[i].port, mPort);
    EXPECT_LT(events[i].second, 20000u) << "milliseconds since the start";
    EXPECT_GE(events[i].second, i == 0 ? 0u : events[i - 1].second);
  }
}

TEST_F(MidiInputPortTest, BuffersComeBackOnlyFullOrEnded) {
  StartWithBuffers();
  const struct {
    std::size_t message;
    std::vector<std::size_t> pieces;
  } cases[] = {{1000, {256, 256, 256, 232}}, {256, {256}}, {257, {256, 1}}, {512, {256, 256}}, {2, {2}}};
  std::string sent;
  std::vector<std::size_t> pieces;
  for (const auto& one : cases) {
    const std::string message = Exclusive(one.message);
    // Torn by the wire, which must not show.
    mConnection.Send(message.substr(0, message.size() / 3));
    mConnection.Send(message.substr(message.size() / 3));
    sent += message;
    pieces.insert(pieces.end(), one.pieces.begin(), one.pieces.end());
  }
  EXPECT_EQ(mListener->WaitForBytes(sent.size()), sent);
  std::vector<std::size_t> received;
  for (const auto& event : mListener->Events()) received.push_back(event.bytes.size());
  EXPECT_EQ(received, pieces);
}

TEST_F(MidiInputPortTest, AMessageOfOneMegabyteArrivesWhole) {
  StartWithBuffers();
  const std::string message = Exclusive(1 << 20);
  mConnection.Send(message);
  EXPECT_EQ(mListener->WaitForBytes(message.size()), message);
}

TEST_F(MidiInputPortTest, WithoutABufferThePortWaitsAndLosesNothing) {
  ASSERT_EQ(driver->StartInput(mPort), Platform::kMidiOk);
  mConnection.Send("\xC0\x01" + Exclusive(600) + "\xC0\x02");
  mListener->WaitForEvents(1);
  mBuffers.AddTo(*driver, mPort);
  EXPECT_EQ(mListener->WaitForBytes(604), "\xC0\x01" + Exclusive(600) + "\xC0\x02");
}

TEST_F(MidiInputPortTest, ResetHandsAllBuffersBackOnTheCallersThread) {
  StartWithBuffers();
  mConnection.Send("\xF0\x01\x02\xF8");
  mListener->WaitForEvents(1);
  EXPECT_EQ(driver->UnprepareInputBuffer(mPort, mBuffers[0]), Platform::kMidiStillPlaying);
  EXPECT_EQ(driver->ResetInput(mPort), Platform::kMidiOk);
  const auto events = mListener->Events();
  ASSERT_EQ(events.size(), 1 + mBuffers.Count());
  for (std::size_t i = 0; i < mBuffers.Count(); ++i) {
    EXPECT_EQ(events[i + 1].kind, MidiMessage::kLongData);
    EXPECT_EQ(events[i + 1].buffer, &mBuffers[i]);
    EXPECT_EQ(events[i + 1].thread, std::this_thread::get_id());
    EXPECT_TRUE(mBuffers[i].done);
    EXPECT_EQ(mBuffers[i].recorded, 0u) << "half a message is no message";
    EXPECT_EQ(driver->UnprepareInputBuffer(mPort, mBuffers[i]), Platform::kMidiOk);
    EXPECT_FALSE(mBuffers[i].prepared);
  }
}

TEST_F(MidiInputPortTest, WhatBeganBeforeAResetDoesNotContinueAfterTheNextStart) {
  StartWithBuffers();
  mConnection.Send("\xF0\x01\x02\xF8");
  mListener->WaitForEvents(1);
  EXPECT_EQ(driver->ResetInput(mPort), Platform::kMidiOk);
  StartWithBuffers();
  mConnection.Send("\x03\xF7\xF0\x04\xF7");
  EXPECT_EQ(mListener->WaitForEvents(5)[4].bytes, "\xF0\x04\xF7");
}

TEST_F(MidiInputPortTest, AStoppedPortRecordsNothing) {
  mBuffers.AddTo(*driver, mPort);
  mConnection.Send("\xC0\x01");
  EXPECT_EQ(driver->StopInput(mPort), Platform::kMidiOk);
  mConnection.Send("\xF0\x01\xF7");
  mConnection.Close();
  ASSERT_TRUE(Eventually([&] { return !Records().empty(); })) << "the reader has seen the end";
  EXPECT_TRUE(mListener->Events().empty());
}

TEST_F(MidiInputPortTest, BuffersAreCheckedBeforeTheyAreQueued) {
  Platform::MidiBuffer empty;
  EXPECT_EQ(driver->PrepareInputBuffer(mPort, empty), Platform::kMidiError);
  EXPECT_EQ(driver->UnprepareInputBuffer(mPort, empty), Platform::kMidiOk);
  EXPECT_EQ(driver->AddInputBuffer(mPort, mBuffers[0]), Platform::kMidiUnprepared);
  EXPECT_EQ(driver->PrepareInputBuffer(mPort, mBuffers[0]), Platform::kMidiOk);
  EXPECT_EQ(driver->PrepareInputBuffer(mPort, mBuffers[0]), Platform::kMidiOk);
  EXPECT_EQ(driver->AddInputBuffer(mPort, mBuffers[0]), Platform::kMidiOk);
  EXPECT_EQ(driver->AddInputBuffer(mPort, mBuffers[0]), Platform::kMidiStillPlaying);
  EXPECT_EQ(driver->PrepareInputBuffer(mPort, mBuffers[0]), Platform::kMidiStillPlaying);
}

// The service closes and reopens a port under the very lock that its callback waits for.
TEST_F(MidiInputPortTest, ClosesUnderTheLockThatACallbackWaitsFor) {
  StartWithBuffers();
  const MidiHandle former = mPort;
  const auto other = std::make_shared<MidiRecorder>(nullptr);
  {
    const std::lock_guard callbackWaits(mListener->CallbackLock());
    mConnection.Send("\xF8\xFA\xFB");
    mListener->WaitForCallback();
    EXPECT_EQ(driver->StopInput(former), Platform::kMidiOk);
    EXPECT_EQ(driver->CloseInput(former), Platform::kMidiOk);
    EXPECT_TRUE(mConnection.WaitForHangUp()) << "the device is free before the callback ends";
    mPort = OpenFirstInput(other);
    EXPECT_NE(mPort, former);
  }
  EXPECT_EQ(driver->StartInput(mPort), Platform::kMidiOk);
  mDevice.Accept().Send("\xFC");
  EXPECT_EQ(other->WaitForEvents(1)[0].bytes, "\xFC");
  EXPECT_EQ(driver->CloseInput(mPort), Platform::kMidiOk);
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  EXPECT_EQ(mListener->Events().size(), 1u) << "no callback starts after the close";
}

TEST_F(MidiInputPortTest, AListenerMayCloseItsOwnPort) {
  struct Closer : Platform::MidiListener {
    explicit Closer(Platform::MidiDriver& owner) : midi(owner) {}
    void OnMidiMessage(MidiHandle port, MidiMessage, std::uintptr_t, std::uintptr_t) override {
      result.set_value(midi.CloseInput(port));
    }
    Platform::MidiDriver& midi;
    std::promise<Platform::MidiStatus> result;
  };
  const auto closer = std::make_shared<Closer>(*driver);
  const MidiHandle port = OpenFirstInput(closer);
  EXPECT_EQ(driver->StartInput(port), Platform::kMidiOk);
  mDevice.Accept().Send("\xF8\xF8\xF8");
  EXPECT_EQ(closer->result.get_future().get(), Platform::kMidiOk);
}

TEST_F(MidiInputPortTest, UnpluggingWhileReadingEndsInErrorsNotInAHang) {
  StartWithBuffers();
  mConnection.Send("\xF0\x01\x02");
  mConnection.Close();
  EXPECT_TRUE(DeviceHasGone()) << "at once, not when the reader has noticed";
  ASSERT_TRUE(Eventually([&] { return !Records().empty(); }));
  EXPECT_EQ(Records()[0], "MIDI input \"Tessel\": the device has gone");
  EXPECT_EQ(driver->StopInput(mPort), Platform::kMidiOk);
  EXPECT_EQ(driver->StartInput(mPort), Platform::kMidiBadDevice);
  EXPECT_EQ(driver->ResetInput(mPort), Platform::kMidiOk);
  EXPECT_EQ(mListener->Events().size(), mBuffers.Count());
  EXPECT_EQ(driver->CloseInput(mPort), Platform::kMidiOk);
}

TEST_F(MidiInputPortTest, ADeviceThatRemovesItsSocketHasGone) {
  EXPECT_FALSE(DeviceHasGone());
  mDevice.RemoveFile();
  EXPECT_TRUE(DeviceHasGone());
}

TEST_F(MidiInputPortTest, WhatWasSentBeforeUnpluggingStillArrives) {
  StartWithBuffers();
  const std::string message = Exclusive(5000);
  mConnection.Send(message);
  mConnection.Close();
  EXPECT_EQ(mListener->WaitForBytes(message.size()), message);
}

TEST_F(MidiInputPortTest, ClosesWhileTheReaderWaitsForABuffer) {
  ASSERT_EQ(driver->StartInput(mPort), Platform::kMidiOk);
  mConnection.Send("\xF8\xF0\x01\xF7");
  mListener->WaitForEvents(1);
  EXPECT_EQ(driver->CloseInput(mPort), Platform::kMidiOk);
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
}

TEST_F(MidiInputPortTest, SurvivesResetsWhileDataStreamsIn) {
  std::atomic<bool> enough{false};
  const auto device = std::async(std::launch::async, [&] {
    while (!enough) mConnection.Send(Exclusive(700) + "\xF8");
  });
  StartWithBuffers();
  for (int round = 0; round < 100; ++round) {
    mListener->WaitForEvents(static_cast<std::size_t>(round + 1) * 5);
    // As the service does when it reopens a device.
    const std::lock_guard callbackWaits(mListener->CallbackLock());
    EXPECT_EQ(driver->ResetInput(mPort), Platform::kMidiOk);
    for (std::size_t i = 0; i < mBuffers.Count(); ++i) {
      EXPECT_EQ(driver->UnprepareInputBuffer(mPort, mBuffers[i]), Platform::kMidiOk);
    }
    StartWithBuffers();
  }
  enough = true;
  device.wait();
  for (const auto& event : mListener->Events()) {
    if (event.kind != MidiMessage::kLongData || event.bytes.empty()) continue;
    EXPECT_TRUE(event.bytes.size() == kBufferBytes || event.bytes.back() == '\xF7');
  }
}

}  // namespace
