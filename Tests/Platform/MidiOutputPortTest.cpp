#include "Platform/MidiOutputPort.h"

#include "Tests/Platform/VirtualMidiFixture.h"

#include <algorithm>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace {

using Platform::MidiBuffer;
using Platform::MidiHandle;
using Platform::MidiMessage;
using TestSupport::Eventually;
using TestSupport::Exclusive;
using TestSupport::MidiConnection;
using TestSupport::MidiRecorder;
using TestSupport::MidiSocket;

// More than a device that does not read ever takes.
constexpr std::size_t kMegabyte = 1 << 20;

// A prepared send with its bytes.
struct LongSend {
  explicit LongSend(std::string message) : bytes(std::move(message)) {
    buffer.data = bytes.data();
    buffer.length = buffer.recorded = static_cast<std::uint32_t>(bytes.size());
  }
  LongSend(const LongSend&) = delete;
  LongSend& operator=(const LongSend&) = delete;

  std::string bytes;
  MidiBuffer buffer;
};

class MidiOutputPortTest : public VirtualMidiFixture {
 protected:
  MidiOutputPortTest() : mPort(OpenFirstOutput(mListener)), mConnection(mDevice.Accept()) {}

  Platform::MidiStatus Begin(LongSend& send) {
    EXPECT_EQ(driver->PrepareOutputBuffer(mPort, send.buffer), Platform::kMidiOk);
    return driver->SendLong(mPort, send.buffer);
  }

  Platform::MidiStatus End(LongSend& send) { return driver->UnprepareOutputBuffer(mPort, send.buffer); }

  MidiSocket mDevice{SocketPath("Tessel.out")};
  const std::shared_ptr<MidiRecorder> mListener = std::make_shared<MidiRecorder>(nullptr);
  MidiHandle mPort;
  MidiConnection mConnection;
};

TEST_F(MidiOutputPortTest, ShortMessagesGoOutWithTheLengthOfTheirStatus) {
  const struct {
    std::uint32_t packed;
    std::string bytes;
  } cases[] = {{0x7F403C90, "\x90\x3C\x40"}, {0x0201BF, "\xBF\x01\x02"}, {0x0201E0, "\xE0\x01\x02"},
               {0x0201C5, "\xC5\x01"},       {0x0201DF, "\xDF\x01"},     {0x0201F1, "\xF1\x01"},
               {0x0201F2, "\xF2\x01\x02"},   {0x0201F3, "\xF3\x01"},     {0x0201F6, "\xF6"},
               {0x0201F8, "\xF8"},           {0x0201FF, "\xFF"}};
  for (const auto& one : cases) {
    EXPECT_EQ(driver->SendShort(mPort, one.packed), Platform::kMidiOk);
    EXPECT_EQ(mConnection.Receive(one.bytes.size()), one.bytes);
  }
  for (const std::uint32_t refused : {0x00u, 0x7Fu, 0x01F0u, 0xF7u}) {
    EXPECT_EQ(driver->SendShort(mPort, refused), Platform::kMidiError);
  }
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
  EXPECT_EQ(mConnection.ReceiveToEnd(), "") << "nothing was sent besides";
}

TEST_F(MidiOutputPortTest, ALongSendIsAnnouncedWhenItIsDone) {
  LongSend send(Exclusive(297));
  ASSERT_EQ(Begin(send), Platform::kMidiOk);
  const auto event = mListener->WaitForEvents(1)[0];
  EXPECT_EQ(event.kind, MidiMessage::kLongDone);
  EXPECT_EQ(event.port, mPort);
  EXPECT_EQ(event.buffer, &send.buffer);
  EXPECT_TRUE(send.buffer.done);
  EXPECT_EQ(End(send), Platform::kMidiOk);
  EXPECT_FALSE(send.buffer.prepared);
  EXPECT_EQ(mConnection.Receive(297), send.bytes);
}

TEST_F(MidiOutputPortTest, OnlyTheBytesThatCountAreSent) {
  LongSend send(Exclusive(100));
  send.buffer.recorded = 10;
  ASSERT_EQ(Begin(send), Platform::kMidiOk);
  mListener->WaitForEvents(1);
  EXPECT_EQ(End(send), Platform::kMidiOk);
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
  EXPECT_EQ(mConnection.ReceiveToEnd(), send.bytes.substr(0, 10));
}

TEST_F(MidiOutputPortTest, AMessageOfOneMegabyteLeavesWholeAndInOrder) {
  LongSend first(Exclusive(kMegabyte)), second(Exclusive(50));
  ASSERT_EQ(Begin(first), Platform::kMidiOk);
  ASSERT_EQ(Begin(second), Platform::kMidiOk);
  auto shortDone = std::async(std::launch::async, [&] { return driver->SendShort(mPort, 0xF8); });
  const std::string received = mConnection.Receive(kMegabyte + 50 + 1);
  EXPECT_EQ(shortDone.get(), Platform::kMidiOk);
  EXPECT_EQ(received.find('\xF8') % kMegabyte % 50, 0u) << "a short message never tears a long one";
  EXPECT_EQ(received.size(), kMegabyte + 51);
  EXPECT_EQ(mListener->WaitForEvents(2)[1].buffer, &second.buffer);
  EXPECT_EQ(End(first), Platform::kMidiOk);
  EXPECT_EQ(End(second), Platform::kMidiOk);
}

TEST_F(MidiOutputPortTest, BuffersAreCheckedBeforeTheyAreSent) {
  LongSend send(Exclusive(kMegabyte));
  EXPECT_EQ(driver->SendLong(mPort, send.buffer), Platform::kMidiUnprepared);
  ASSERT_EQ(driver->PrepareOutputBuffer(mPort, send.buffer), Platform::kMidiOk);
  ++send.buffer.recorded;
  EXPECT_EQ(driver->SendLong(mPort, send.buffer), Platform::kMidiError);
  --send.buffer.recorded;
  EXPECT_EQ(driver->SendLong(mPort, send.buffer), Platform::kMidiOk);
  EXPECT_EQ(driver->SendLong(mPort, send.buffer), Platform::kMidiStillPlaying);
  EXPECT_EQ(driver->PrepareOutputBuffer(mPort, send.buffer), Platform::kMidiStillPlaying);
  MidiBuffer empty;
  EXPECT_EQ(driver->PrepareOutputBuffer(mPort, empty), Platform::kMidiError);
  EXPECT_EQ(driver->UnprepareOutputBuffer(mPort, empty), Platform::kMidiOk);
  EXPECT_EQ(End(send), Platform::kMidiError);
}

TEST_F(MidiOutputPortTest, UnpreparingCancelsASendThatTheDeviceDoesNotRead) {
  auto stuck = std::make_unique<LongSend>(Exclusive(kMegabyte));
  auto waiting = std::make_unique<LongSend>(Exclusive(10));
  ASSERT_EQ(Begin(*stuck), Platform::kMidiOk);
  ASSERT_EQ(Begin(*waiting), Platform::kMidiOk);
  const std::string begun = mConnection.Receive(1);
  EXPECT_EQ(End(*waiting), Platform::kMidiError) << "the turn of this one never came";
  waiting.reset();
  EXPECT_EQ(End(*stuck), Platform::kMidiError);
  stuck.reset();

  LongSend next(Exclusive(20));
  ASSERT_EQ(Begin(next), Platform::kMidiOk);
  std::string received = begun;
  while (!received.ends_with(next.bytes) && received.size() < kMegabyte) received += mConnection.Receive(1);
  EXPECT_TRUE(received.ends_with(next.bytes)) << "the port sends again";
  EXPECT_EQ(mListener->WaitForEvents(1).size(), 1u);
  EXPECT_EQ(mListener->Events()[0].buffer, &next.buffer) << "cancelled sends are not announced";
  EXPECT_EQ(End(next), Platform::kMidiOk);
}

TEST_F(MidiOutputPortTest, ClosingCancelsWhatIsUnderWay) {
  LongSend stuck(Exclusive(kMegabyte)), waiting(Exclusive(10));
  ASSERT_EQ(Begin(stuck), Platform::kMidiOk);
  ASSERT_EQ(Begin(waiting), Platform::kMidiOk);
  mConnection.Receive(1);
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
  EXPECT_LT(mConnection.ReceiveToEnd().size(), kMegabyte);
  EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  EXPECT_TRUE(mListener->Events().empty());
}

TEST_F(MidiOutputPortTest, ClosesUnderTheLockThatACallbackWaitsFor) {
  LongSend send(Exclusive(kMegabyte));  // Too long for the caller's thread: the writer announces it.
  const std::lock_guard callbackWaits(mListener->CallbackLock());
  ASSERT_EQ(Begin(send), Platform::kMidiOk);
  mConnection.Receive(kMegabyte);
  mListener->WaitForCallback();
  EXPECT_EQ(End(send), Platform::kMidiOk);
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
  EXPECT_TRUE(mConnection.WaitForHangUp());
}

TEST_F(MidiOutputPortTest, UnpluggingInTheMiddleOfASendEndsItWithAnError) {
  LongSend send(Exclusive(kMegabyte)), next(Exclusive(10));
  ASSERT_EQ(Begin(send), Platform::kMidiOk);
  mConnection.Receive(1);
  mConnection.Close();
  EXPECT_EQ(mListener->WaitForEvents(1)[0].kind, MidiMessage::kLongDone);
  EXPECT_EQ(End(send), Platform::kMidiBadDevice);
  EXPECT_EQ(End(send), Platform::kMidiOk) << "a failure is told once";
  EXPECT_EQ(driver->SendShort(mPort, 0xF8), Platform::kMidiBadDevice);
  EXPECT_EQ(Begin(next), Platform::kMidiBadDevice);
  std::u16string name;
  EXPECT_EQ(driver->OutputName(mPort, name), Platform::kMidiBadDevice);
  ASSERT_TRUE(Eventually([&] { return !Records().empty(); }));
  EXPECT_NE(Records()[0].find("the device has gone"), std::string::npos);
}

TEST_F(MidiOutputPortTest, UnpluggingBeforeASendFailsIt) {
  mConnection.Close();
  std::u16string name;
  EXPECT_EQ(driver->OutputName(mPort, name), Platform::kMidiBadDevice);
  LongSend send(Exclusive(10));
  ASSERT_EQ(Begin(send), Platform::kMidiOk) << "only the writer meets the device";
  mListener->WaitForEvents(1);
  EXPECT_EQ(End(send), Platform::kMidiBadDevice);
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
}

TEST_F(MidiOutputPortTest, AShortMessageGivesUpOnADeviceThatDoesNotRead) {
  LongSend stuck(Exclusive(kMegabyte));
  ASSERT_EQ(Begin(stuck), Platform::kMidiOk);
  mConnection.Receive(1);
  EXPECT_EQ(driver->SendShort(mPort, 0xF8), Platform::kMidiError);
  EXPECT_EQ(End(stuck), Platform::kMidiError);
  EXPECT_EQ(driver->SendShort(mPort, 0xF8), Platform::kMidiError) << "the device's buffer is still full";
}

TEST_F(MidiOutputPortTest, SurvivesCancellingAtAnyMoment) {
  constexpr int kSends = 500;
  auto device = std::async(std::launch::async, [&] { return mConnection.ReceiveToEnd(); });
  int whole = 0;
  for (int i = 0; i < kSends; ++i) {
    LongSend send(Exclusive(static_cast<std::size_t>(i % 5) * 3000 + 10));
    ASSERT_EQ(Begin(send), Platform::kMidiOk);
    if (i % 3 == 0) std::this_thread::yield();
    whole += End(send) == Platform::kMidiOk ? 1 : 0;
  }
  EXPECT_EQ(driver->CloseOutput(mPort), Platform::kMidiOk);
  const std::string received = device.get();
  EXPECT_GE(std::count(received.begin(), received.end(), '\xF7'), whole) << "sent means sent to the end";
  EXPECT_LE(mListener->Events().size(), static_cast<std::size_t>(whole));
}

}  // namespace
