#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/VirtualMidiDriver.h"
#include "TFFramework/Midi/MidiComm.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/MidiSockets.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/Midi/CaptureClient.h"

namespace {

using Texts = std::vector<std::string>;

const std::string kQuery = "\xF0 query \xF7";
const std::string kReply = "\xF0 reply \xF7";

// The service and a device of two sockets: nothing between them is made for the test.
class MidiVirtualPort : public testing::Test {
 protected:
  using Port = TF::RCPtr<TF::LRefCountedObject>;

  void SetUp() override {
    PlugIn();
    OpenPorts();
    mClient->Register(mComm, TF::kMidiDataCapturedName);
  }

  void TearDown() override {
    mClient->UnregisterAll();
    mCapture = nullptr;
    mRender = nullptr;
    mComm->Shutdown();
    mComm = nullptr;
    EXPECT_TRUE(Platform::WaitForMidiThreads(20000));
  }

  void PlugIn() {
    mIn.emplace(mFolder.Entry("Tessel.in"));
    mOut.emplace(mFolder.Entry("Tessel.out"));
  }

  void Unplug() {
    mToComputer.reset();
    mFromComputer.reset();
    mIn.reset();
    mOut.reset();
  }

  void OpenPorts() {
    ASSERT_EQ(mComm->OpenCapturePort(u"tess", mCapture), TF::kSuccess);
    ASSERT_EQ(mComm->OpenRenderPort(u"tess", mRender), TF::kSuccess);
    mToComputer.emplace(mIn->Accept());
    mFromComputer.emplace(mOut->Accept());
  }

  TFRESULT Send(const std::string& text) {
    TF::ArrayBuffer<char> bytes;
    bytes.SetCount(static_cast<std::int32_t>(text.size()));
    std::copy(text.begin(), text.end(), bytes.begin());
    return mComm->Send(mRender, bytes);
  }

  const TestSupport::TemporaryFolder mFolder;
  Platform::VirtualMidiDriver mDriver{mFolder.Path().string()};
  TF::RCPtr<TF::LMidiComm> mComm = TF::MakeRC<TF::LMidiComm>(mDriver, kTimeoutMs);
  const TF::RCPtr<CaptureClient> mClient = TF::MakeRC<CaptureClient>();
  std::optional<TestSupport::MidiSocket> mIn;
  std::optional<TestSupport::MidiSocket> mOut;
  std::optional<TestSupport::MidiConnection> mToComputer;
  std::optional<TestSupport::MidiConnection> mFromComputer;
  Port mCapture;
  Port mRender;

 private:
  static constexpr std::uint32_t kTimeoutMs = 500;
};

TEST_F(MidiVirtualPort, CarriesAQueryAndItsReply) {
  EXPECT_EQ(Send(kQuery), static_cast<TFRESULT>(kQuery.size()));
  EXPECT_EQ(mFromComputer->Receive(kQuery.size()), kQuery);
  mToComputer->Send(kReply);
  ASSERT_TRUE(mClient->WaitFor(1));
  EXPECT_EQ(mClient->Texts(), Texts{kReply});
  EXPECT_EQ(mClient->Messages().front().portName, u"tess");
  EXPECT_EQ(Send("\xC1\x05"), 2);
  EXPECT_EQ(mFromComputer->Receive(2), "\xC1\x05");
}

TEST_F(MidiVirtualPort, ADeviceThatAnswersNothingHoldsNothingUp) {
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(Send(kQuery), static_cast<TFRESULT>(kQuery.size()));
    EXPECT_EQ(mFromComputer->Receive(kQuery.size()), kQuery);
  }
  EXPECT_EQ(mClient->Texts(), Texts());
}

TEST_F(MidiVirtualPort, RealTimeBytesInsideAMessageComeByThemselves) {
  mToComputer->Send("\xF0\x01\xF8\x02\xFE\xF7\xFA");
  ASSERT_TRUE(mClient->WaitFor(4));
  EXPECT_EQ(mClient->Texts(), (Texts{"\xF8", "\xFE", "\xF0\x01\x02\xF7", "\xFA"}));
}

TEST_F(MidiVirtualPort, MessagesCutAnywhereArriveWhole) {
  const std::string large = '\xF0' + std::string(600, '\x22') + '\xF7';
  const Texts sent = {kReply, "\x90\x40\x7F", "\xF0\x7E\x7F\x06\x02\x01\x21\x09\xF7", large, "\xF8", kReply};
  std::string stream;
  for (const std::string& message : sent) stream += message;
  for (const char byte : stream) mToComputer->Send(std::string(1, byte));
  ASSERT_TRUE(mClient->WaitFor(sent.size()));
  EXPECT_EQ(mClient->Texts(), sent);
}

TEST_F(MidiVirtualPort, HalfAMessageIsForgottenWithThePort) {
  mToComputer->Send("\xF0\x01\x02");
  mCapture = nullptr;
  ASSERT_EQ(mComm->OpenCapturePort(u"tess", mCapture), TF::kSuccess);
  mToComputer.emplace(mIn->Accept());
  mToComputer->Send("\x03\xF7" + kReply);
  ASSERT_TRUE(mClient->WaitFor(1));
  EXPECT_EQ(mClient->Texts(), Texts{kReply});
}

TEST_F(MidiVirtualPort, AReplugAfterHalfALongMessageStartsAfresh) {
  mToComputer->Send('\xF0' + std::string(400, '\x11') + '\xF8');
  ASSERT_TRUE(mClient->WaitFor(1));  // All before the real-time byte has been read.
  Unplug();
  Port none;
  EXPECT_EQ(mComm->OpenCapturePort(u"tess", none), TF::kFailure);
  EXPECT_EQ(mComm->OpenRenderPort(u"tess", none), TF::kFailure);
  EXPECT_EQ(Send(kQuery), TF::kFailure);
  PlugIn();
  const Port capture = mCapture;
  OpenPorts();
  EXPECT_EQ(mCapture, capture);
  mToComputer->Send("\x01\xF7" + kReply);
  ASSERT_TRUE(mClient->WaitFor(2));
  EXPECT_EQ(mClient->Texts(), (Texts{"\xF8", kReply}));
  EXPECT_EQ(Send(kQuery), static_cast<TFRESULT>(kQuery.size()));
  EXPECT_EQ(mFromComputer->Receive(kQuery.size()), kQuery);
}

TEST_F(MidiVirtualPort, AMebibyteWithoutAnEndLeavesOneRecordAndNothingElse) {
  TestSupport::LogCapture log;
  mToComputer->Send('\xF0' + std::string(1 << 20, '\x33'));
  mToComputer->Send(kReply);
  ASSERT_TRUE(mClient->WaitFor(1));
  EXPECT_EQ(mClient->Texts(), Texts{kReply});
  const std::string text = log.Text();
  const std::size_t first = text.find("no end");
  EXPECT_NE(first, std::string::npos);
  EXPECT_EQ(text.find("no end", first + 1), std::string::npos);
}

TEST_F(MidiVirtualPort, ADeviceThatTakesNothingEndsTheSendAndTheNextGoesOn) {
  const std::string large = '\xF0' + std::string(4 << 20, '\x44') + '\xF7';
  EXPECT_EQ(Send(large), TF::kFailure);
  mFromComputer.reset();
  mRender = nullptr;
  ASSERT_EQ(mComm->OpenRenderPort(u"tess", mRender), TF::kSuccess);
  mFromComputer.emplace(mOut->Accept());
  EXPECT_EQ(Send(kQuery), static_cast<TFRESULT>(kQuery.size()));
  EXPECT_EQ(mFromComputer->Receive(kQuery.size()), kQuery);
}

TEST_F(MidiVirtualPort, AnUnplugDuringASendEndsIt) {
  const std::string large = '\xF0' + std::string(4 << 20, '\x44') + '\xF7';
  auto result = std::async(std::launch::async, [&] { return Send(large); });
  EXPECT_EQ(mFromComputer->Receive(1000).size(), 1000u);
  Unplug();
  EXPECT_EQ(result.get(), TF::kFailure);
}

TEST_F(MidiVirtualPort, ASecondDeviceMakesTheNameAmbiguous) {
  TestSupport::LogCapture log;
  const TestSupport::MidiSocket second(mFolder.Entry("Tessel 2.in"));
  mCapture = nullptr;
  EXPECT_EQ(mComm->OpenCapturePort(u"tess", mCapture), TF::kInvalidArgument);
  EXPECT_TRUE(log.Contains("\"Tessel\""));
  EXPECT_TRUE(log.Contains("\"Tessel 2\""));
  EXPECT_EQ(mComm->OpenCapturePort(u"Tessel", mCapture), TF::kSuccess);
}

}  // namespace
