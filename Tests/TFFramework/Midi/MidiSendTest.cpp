#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

using Call = FakeMidiDriver::Call;
using Sending = FakeMidiDriver::Sending;

const std::string kMessage = "\xF0 message \xF7";

class MidiSend : public MidiCommFixture {
 protected:
  void SetUp() override {
    MidiCommFixture::SetUp();
    mDriver.SetOutputs({u"Tessel"});
    mDriver.SetInputs({u"Tessel"});
    mPort = OpenOutput(u"Tessel");
  }

  void TearDown() override {
    mPort = nullptr;
    MidiCommFixture::TearDown();
  }

  void ReopenWithTimeout(std::uint32_t milliseconds) {
    mPort = nullptr;
    UseTimeout(milliseconds);
    mPort = OpenOutput(u"Tessel");
  }

  TFRESULT Send(const std::string& text) { return mComm->Send(mPort, Bytes(text)); }

  std::future<TFRESULT> SendOnAThread(const std::string& text) {
    return std::async(std::launch::async, [this, text] { return Send(text); });
  }

  // Until the driver has a long message in hand.
  void AwaitSending() {
    const auto deadline = std::chrono::steady_clock::now() + CaptureClient::kPatience;
    while (!mDriver.IsSending() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    ASSERT_TRUE(mDriver.IsSending());
  }

  Port mPort;
};

TEST_F(MidiSend, ShortMessagesGoAsOneWord) {
  const struct {
    std::string bytes;
    std::string packed;
    TFRESULT result;
  } cases[] = {
      {"\x90\x40\x7F", std::string("\x90\x40\x7F\0", 4), 3},
      {"\xC5\x11", std::string("\xC5\x11\0\0", 4), 2},
      {"\xF1\x22", std::string("\xF1\x22\0\0", 4), 2},
      {"\xF2\x01\x02", std::string("\xF2\x01\x02\0", 4), 3},
      {"\xF4\x01", std::string("\xF4\x01\0\0", 4), 2},
      {"\xF6", std::string("\xF6\0\0\0", 4), 1},
      {"\xFF", std::string("\xFF\0\0\0", 4), 1},
      // Only the bytes of the message itself go out, and a cut one is filled with zeros.
      {"\xF8\x55\x66\x77\x11", std::string("\xF8\0\0\0", 4), 1},
      {"\x90\x40", std::string("\x90\x40\0\0", 4), 3},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Send(test.bytes), test.result);
    EXPECT_EQ(mDriver.Sent().back(), test.packed);
  }
}

TEST_F(MidiSend, AllElseGoesAsABlockOfBytes) {
  std::vector<std::string> messages = {kMessage, "\xF7 rest", "\x01\x02", std::string(1, '\0'),
                                       std::string(5000, '\x33')};
  for (const std::string& message : messages) {
    EXPECT_EQ(Send(message), static_cast<TFRESULT>(message.size()));
  }
  EXPECT_EQ(mDriver.Sent(), messages);
}

TEST_F(MidiSend, ABufferIsSentLikeAnArray) {
  const auto buffer = TF::MakeRC<TF::ByteBuffer>(static_cast<std::uint32_t>(kMessage.size()));
  std::copy(kMessage.begin(), kMessage.end(), buffer->GetPointer());
  EXPECT_EQ(mComm->Send(mPort, TF::RCPtr<TF::LIBuffer>(buffer)), static_cast<TFRESULT>(kMessage.size()));
  EXPECT_EQ(mDriver.Sent(), std::vector<std::string>{kMessage});
}

TEST_F(MidiSend, WithoutAPortOrBytesNothingIsSent) {
  const Port input = OpenInput(u"Tessel");
  const TF::RCPtr<TF::LIBuffer> empty = TF::MakeRC<TF::ByteBuffer>();
  EXPECT_EQ(Send(""), TF::kInvalidArgument);
  EXPECT_EQ(mComm->Send(nullptr, Bytes(kMessage)), TF::kInvalidArgument);
  EXPECT_EQ(mComm->Send(input, Bytes(kMessage)), TF::kInvalidArgument);
  EXPECT_EQ(mComm->Send(mPort, empty), TF::kInvalidArgument);
  EXPECT_EQ(mComm->Send(mPort, TF::RCPtr<TF::LIBuffer>()), TF::kInvalidArgument);
  EXPECT_EQ(mDriver.Sent(), std::vector<std::string>());
}

TEST_F(MidiSend, AFailureAtAnyDriverCallIsTheResultAndTheNextSendGoesOn) {
  const struct {
    Call call;
    std::string bytes;
  } cases[] = {{Call::kSendShort, "\xF8"},
               {Call::kPrepareOutput, kMessage},
               {Call::kSendLong, kMessage},
               {Call::kUnprepareOutput, kMessage}};
  for (const auto& test : cases) {
    mDriver.Fail(test.call, Platform::kMidiError);
    EXPECT_EQ(Send(test.bytes), TF::kFailure);
    mDriver.Fail(test.call, Platform::kMidiOk);
    EXPECT_EQ(Send(kMessage), static_cast<TFRESULT>(kMessage.size()));
  }
}

TEST_F(MidiSend, ReturnsWhenTheBytesHaveLeft) {
  mDriver.SetSending(Sending::kOnRequest);
  auto result = SendOnAThread(kMessage);
  AwaitSending();
  EXPECT_EQ(mDriver.Sent(), std::vector<std::string>());
  mDriver.CompleteSend();
  EXPECT_EQ(result.get(), static_cast<TFRESULT>(kMessage.size()));
}

TEST_F(MidiSend, AMessageThatNeverLeavesIsTakenBackFromTheDriver) {
  ReopenWithTimeout(kShortTimeoutMs);
  mDriver.SetSending(Sending::kOnRequest);
  EXPECT_EQ(Send(kMessage), TF::kFailure);
  EXPECT_FALSE(mDriver.IsSending());
  mDriver.SetSending(Sending::kAtOnce);
  EXPECT_EQ(Send(kMessage), static_cast<TFRESULT>(kMessage.size()));
}

TEST_F(MidiSend, AnAnswerToAnEarlierMessageIsNoSuccess) {
  mDriver.SetSending(Sending::kOnRequest);
  auto result = SendOnAThread(kMessage);
  AwaitSending();
  mDriver.CallLate(mDriver.OutputOn(0), Platform::MidiMessage::kLongDone, 0);
  EXPECT_EQ(result.get(), TF::kFailure);
}

TEST_F(MidiSend, ShutdownEndsASendThatIsUnderWay) {
  mDriver.SetSending(Sending::kOnRequest);
  auto result = SendOnAThread(kMessage);
  AwaitSending();
  mComm->Shutdown();
  EXPECT_EQ(result.get(), TF::kFailure);
}

TEST_F(MidiSend, SendsOfTwoThreadsTakeTurns) {
  constexpr int kCount = 200;
  const auto sendMany = [this](char mark) {
    for (int i = 0; i < kCount; ++i) {
      EXPECT_EQ(Send(std::string("\xF0") + std::string(20, mark) + "\xF7"), 22);
    }
  };
  std::thread other([&] { sendMany('a'); });
  sendMany('b');
  other.join();
  EXPECT_EQ(mDriver.Sent().size(), 2u * kCount);
}

}  // namespace
