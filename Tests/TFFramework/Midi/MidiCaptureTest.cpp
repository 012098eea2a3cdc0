#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "Tests/TFFramework/Midi/MidiCommFixture.h"

namespace {

std::string SystemExclusive(std::size_t size) {
  std::string message(size, '\x11');
  for (std::size_t i = 0; i < size; ++i) message[i] = static_cast<char>(i % 0x70);
  message.front() = '\xF0';
  message.back() = '\xF7';
  return message;
}

class MidiCapture : public MidiCommFixture {
 protected:
  void SetUp() override {
    MidiCommFixture::SetUp();
    mDriver.SetInputs({u"Tessel Port"});
    mPort = OpenInput(u"Tessel");
    mHandle = mDriver.InputOn(0);
    mClient = Listen();
  }

  void TearDown() override {
    mPort = nullptr;
    if (mClient) mClient->UnregisterAll();
    mClient = nullptr;
    MidiCommFixture::TearDown();
  }

  // Sends a message of our own and gives all that arrived before it.
  std::vector<std::string> Arrived() {
    const std::string mark = "\xF0mark\xF7";
    EXPECT_TRUE(mDriver.ReceiveLong(mHandle, mark));
    std::size_t count = 1;
    while (mClient->WaitFor(count) && mClient->Texts().back() != mark) count = mClient->Texts().size() + 1;
    std::vector<std::string> texts = mClient->Texts();
    texts.pop_back();
    EXPECT_EQ(mDriver.QueuedBuffers(mHandle), 3u);
    return texts;
  }

  Port mPort;
  Platform::MidiHandle mHandle = nullptr;
  TF::RCPtr<CaptureClient> mClient;
};

TEST_F(MidiCapture, ShortMessagesKeepTheLengthOfTheirKind) {
  const struct {
    std::uint32_t packed;
    std::string bytes;
  } cases[] = {
      {0x7F4090, "\x90\x40\x7F"},
      {0x4080, std::string("\x80\x40\x00", 3)},
      {0x7F7FB0, "\xB0\x7F\x7F"},
      {0x05C3, "\xC3\x05"},
      {0x65D0, "\xD0\x65"},
      {0x4000E0, std::string("\xE0\x00\x40", 3)},
      {0xF8, "\xF8"},
      {0xFFFFFE, "\xFE"},
      {0x3311F2, "\xF2"},
      {0x11F1, "\xF1"},
      {0x00F6, "\xF6"},
  };
  std::size_t count = 0;
  for (const auto& test : cases) {
    ASSERT_TRUE(mDriver.ReceiveShort(mHandle, test.packed, 1234));
    ASSERT_TRUE(mClient->WaitFor(++count));
    const CaptureClient::Message message = mClient->Messages().back();
    EXPECT_EQ(message.bytes, test.bytes) << test.packed;
    EXPECT_EQ(message.timestamp, 1234u);
    EXPECT_EQ(message.portName, u"Tessel");
    EXPECT_EQ(message.port, mPort.Get());
    EXPECT_EQ(mClient->Sender(), mComm.Get());
  }
}

TEST_F(MidiCapture, AMessageIsPutTogetherFromItsPieces) {
  std::vector<std::string> sent;
  for (const std::size_t size : {2u, 3u, 255u, 256u, 257u, 511u, 512u, 513u, 1000u, 70000u}) {
    sent.push_back(SystemExclusive(size));
    ASSERT_TRUE(mDriver.ReceiveLong(mHandle, sent.back()));
  }
  EXPECT_EQ(Arrived(), sent);
  EXPECT_EQ(mClient->Messages().front().timestamp, 0u);
}

TEST_F(MidiCapture, BytesOfNoMessageAreDropped) {
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, "\x01\x02\xF7"));
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, std::string(256, '\x05')));
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, "\x05\xF7"));
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, ""));
  EXPECT_EQ(Arrived(), std::vector<std::string>());
}

TEST_F(MidiCapture, AShortMessageInsideALongOneDisturbsNeither) {
  const std::string message = SystemExclusive(600);
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, message.substr(0, 256)));
  ASSERT_TRUE(mDriver.ReceiveShort(mHandle, 0xF8, 0));
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, message.substr(256)));
  EXPECT_EQ(Arrived(), (std::vector<std::string>{"\xF8", message}));
}

TEST_F(MidiCapture, AnErrorPieceDoesNotCount) {
  const std::string message = SystemExclusive(600);
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, message.substr(0, 256)));
  ASSERT_TRUE(mDriver.ReceiveError(mHandle, "\xF0 noise"));
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, message.substr(256)));
  EXPECT_EQ(Arrived(), std::vector<std::string>{message});
}

TEST_F(MidiCapture, ANewMessageReplacesOneThatWasCutOff) {
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, SystemExclusive(600).substr(0, 256)));
  const std::string message = SystemExclusive(300);
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, message));
  EXPECT_EQ(Arrived(), std::vector<std::string>{message});
}

TEST_F(MidiCapture, AMessageWithoutAnEndIsDroppedAndTheNextArrives) {
  const std::string longest = SystemExclusive(TF::LMidiCapturePort::kMaxMessageBytes);
  const std::string tooLong = SystemExclusive(TF::LMidiCapturePort::kMaxMessageBytes + 1);
  std::string endless = SystemExclusive(1 << 20);
  endless.back() = '\x01';
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, longest));
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, tooLong));
  ASSERT_TRUE(mDriver.ReceiveLong(mHandle, endless));
  EXPECT_EQ(Arrived(), std::vector<std::string>{longest});
}

TEST_F(MidiCapture, AReplugForgetsTheMessageThatHadBegun) {
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, SystemExclusive(600).substr(0, 256)));
  mDriver.SetInputs({});
  mDriver.SetInputs({u"Tessel Port"});
  EXPECT_EQ(OpenInput(u"Tessel"), mPort);
  mHandle = mDriver.InputOn(0);
  ASSERT_TRUE(mDriver.ReceivePiece(mHandle, "\x01\x02\xF7"));
  EXPECT_EQ(Arrived(), std::vector<std::string>());
}

TEST_F(MidiCapture, MessagesArriveInOrderOnOneThread) {
  constexpr int kCount = 500;
  std::atomic<int> running{0};
  std::atomic<bool> overlapped{false};
  const auto second = Listen([&] {
    if (++running > 1) overlapped = true;
    --running;
  });
  std::vector<std::string> sent;
  for (int i = 0; i < kCount; ++i) {
    sent.push_back({'\xF0', static_cast<char>(i / 100), static_cast<char>(i % 100), '\xF7'});
    ASSERT_TRUE(mDriver.ReceiveLong(mHandle, sent.back()));
  }
  EXPECT_EQ(Arrived(), sent);
  EXPECT_TRUE(second->WaitFor(kCount));
  EXPECT_FALSE(overlapped);
  second->UnregisterAll();
}

TEST_F(MidiCapture, WhatComesAfterTheCloseIsHarmless) {
  Platform::MidiBuffer stray;
  char bytes[4] = {'\xF0', 1, 2, '\xF7'};
  stray.data = bytes;
  stray.length = stray.recorded = sizeof bytes;
  const auto callLate = [&] {
    for (const auto message : {Platform::MidiMessage::kLongData, Platform::MidiMessage::kLongError}) {
      mDriver.CallLate(mHandle, message, reinterpret_cast<std::uintptr_t>(&stray));
    }
    mDriver.CallLate(mHandle, Platform::MidiMessage::kData, 0xF8);
    mDriver.CallLate(mHandle, Platform::MidiMessage::kLongDone, reinterpret_cast<std::uintptr_t>(&stray));
  };
  mPort = nullptr;
  callLate();  // The port has gone.
  const Port other = OpenInput(u"Tessel Port");
  callLate();  // Another port is open.
  mComm->Shutdown();
  callLate();
  EXPECT_EQ(mClient->Texts(), std::vector<std::string>());
  mClient->UnregisterAll();
  mComm = nullptr;
  callLate();  // The service has gone.
}

// The driver's thread delivers while the port closes and opens again.
TEST_F(MidiCapture, ClosingMeetsADeviceThatKeepsSending) {
  std::atomic<bool> stop{false};
  std::thread device([&] {
    while (!stop) {
      const Platform::MidiHandle handle = mDriver.InputOn(0);
      if (handle) mDriver.ReceiveLong(handle, "\xF0\x01\x02\x03\x04\x05\xF7");
      std::this_thread::yield();
    }
  });
  for (int i = 0; i < 200; ++i) {
    mPort = nullptr;
    Port port;
    EXPECT_EQ(mComm->OpenCapturePort(u"Tessel", port), TF::kSuccess);
    mPort = port;
  }
  EXPECT_TRUE(mClient->WaitFor(1));
  stop = true;
  device.join();
}

}  // namespace
