#include "Tools/Simulator/SimulatorServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Tools/ComputerSide.h"
#include "Tests/Tools/SocketClient.h"

using namespace Simulator;
using namespace ToolsTest;
using namespace std::chrono_literals;

namespace {

class SimulatorServerTest : public testing::Test {
 protected:
  ServerOptions Options(std::initializer_list<const char*> faults = {}) {
    ServerOptions options;
    options.mDirectory = mFolder.Entry("ports").string();
    options.mDevice.mRestartTime = 1ms;
    options.mDevice.mUpdateVersion = FirmwareVersion{1, 6, 0, 47};
    for (const char* fault : faults) options.mDevice.mFaults.push_back(ParseFault(fault));
    return options;
  }

  ServerOptions InUpdateMode(std::initializer_list<const char*> faults = {}) {
    ServerOptions options = Options(faults);
    options.mDevice.mMode = DeviceMode::kBootloader;
    return options;
  }

  std::string Socket(const char* suffix) const {
    return mFolder.Entry("ports").string() + "/Tessel" + suffix;
  }
  Computer Connect() const { return {mFolder.Entry("ports").string(), "Tessel"}; }
  bool PortIsThere() const {
    return std::filesystem::exists(Socket(".in")) || std::filesystem::exists(Socket(".out"));
  }

  TestSupport::TemporaryFolder mFolder;
};

std::uint8_t MajorOf(const Bytes& versionReply) {
  if (versionReply.size() != 61) return 0xEE;
  return UnpackSevenBit(std::span(versionReply).subspan(5, 55)).value()[15];
}

// Sends an update as a computer does that waits for each reply; false when one is missing.
bool RunUpdate(Computer& computer, const Bytes& image) {
  for (const Bytes& message : UpdateMessages(image)) {
    computer.mOut.Send(message);
    const MessageName name = ParseRequest(message)->mName;
    if (name != MessageName::kWrite && name != MessageName::kFinish && computer.mIn.ReadMessage().empty())
      return false;
  }
  return true;
}

}  // namespace

TEST_F(SimulatorServerTest, ThePortIsThereExactlyWhileTheServerRuns) {
  SimulatorServer server(Options());
  EXPECT_FALSE(server.IsPluggedIn());
  server.Start();
  EXPECT_TRUE(server.IsPluggedIn());
  Computer computer = Connect();
  EXPECT_EQ(MajorOf(computer.Ask(VersionQuery())), 1);
  server.Stop();
  EXPECT_FALSE(PortIsThere());
  EXPECT_TRUE(std::filesystem::is_empty(mFolder.Entry("ports")));
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  EXPECT_TRUE(computer.mOut.ReadsEnd());
  server.Start();
  Computer again = Connect();
  EXPECT_EQ(MajorOf(again.Ask(VersionQuery())), 1);
}

TEST_F(SimulatorServerTest, EveryConnectedComputerHearsEveryAnswer) {
  SimulatorServer server(Options());
  server.Start();
  Computer first = Connect();
  Computer second = Connect();
  first.mOut.Send(VersionQuery());
  second.mOut.Send(VersionQuery());
  for (Computer* computer : {&first, &second}) {
    EXPECT_EQ(MajorOf(computer->mIn.ReadMessage()), 1);
    EXPECT_EQ(MajorOf(computer->mIn.ReadMessage()), 1);
  }
}

TEST_F(SimulatorServerTest, AnswersAComputerThatConnectedInEitherOrderAMomentAgo) {
  SimulatorServer server(Options());
  server.Start();
  for (int round = 0; round < 200; ++round) {
    const bool outFirst = round % 2 == 0;
    SocketClient first(Socket(outFirst ? ".out" : ".in"));
    SocketClient second(Socket(outFirst ? ".in" : ".out"));
    (outFirst ? first : second).Send(VersionQuery());
    ASSERT_EQ(MajorOf((outFirst ? second : first).ReadMessage()), 1) << round;
  }
}

TEST_F(SimulatorServerTest, ASwitchTakesThePortAwayAndBringsItBackInUpdateMode) {
  SimulatorServer server(Options());
  server.Start();
  Computer computer = Connect();
  computer.mOut.Send(SwitchMessage());
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  ASSERT_TRUE(server.WaitForPlug(true));
  EXPECT_EQ(server.Status().mRestarts, 1U);
  Computer again = Connect();
  EXPECT_EQ(MajorOf(again.Ask(VersionQuery())), 0);
}

TEST_F(SimulatorServerTest, AnUpdateOverSocketsEndsInTheFlashFile) {
  const Bytes image = Vbin::BuildImage(TwoRegionImage());
  ServerOptions options = InUpdateMode();
  options.mFlashFile = mFolder.Entry("flash.hex").string();
  SimulatorServer server(options);
  server.Start();
  Computer computer = Connect();
  ASSERT_TRUE(RunUpdate(computer, image));
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  ASSERT_TRUE(server.WaitForPlug(true));
  const Vbin::FlashMemory expected = Vbin::FlashOf(Vbin::ReadImage(image));
  EXPECT_EQ(server.Flash(), expected);
  EXPECT_EQ(TestSupport::ReadWholeFile(options.mFlashFile), expected.ToIntelHex());
  EXPECT_EQ(server.Received(), UpdateMessages(image));
  EXPECT_EQ(server.Status().mFirmware, (FirmwareVersion{1, 6, 0, 47}));
  server.ClearReceived();
  EXPECT_TRUE(server.Received().empty());
}

TEST_F(SimulatorServerTest, ALateReplyComesAfterThoseOfLaterMessages) {
  SimulatorServer server(InUpdateMode({"late-reply@1:50"}));
  server.Start();
  Computer computer = Connect();
  Bytes both = Command(kCommandOpen);
  const Bytes start = Command(kCommandStart);
  both.insert(both.end(), start.begin(), start.end());
  computer.mOut.Send(both);
  EXPECT_EQ(ReplyOf(computer.mIn.ReadMessage()).at(0), kReplyReady);
  EXPECT_EQ(ReplyOf(computer.mIn.ReadMessage()).at(0), kReplyAck);
}

TEST_F(SimulatorServerTest, UnpluggingDropsWhatIsNotSentYet) {
  SimulatorServer server(InUpdateMode({"late-reply@1:100", "unplug@2:1", "late-reply@3:200"}));
  server.Start();
  Computer computer = Connect();
  computer.mOut.Send(Command(kCommandOpen));
  computer.mOut.Send(Command(kCommandOpen));
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  ASSERT_TRUE(server.WaitForPlug(true));
  Computer again = Connect();
  EXPECT_EQ(ReplyOf(again.Ask(Command(kCommandStart))).at(0), kReplyReady);
}

TEST_F(SimulatorServerTest, TestsMayPullTheCableAndPutItBack) {
  SimulatorServer server(Options());
  server.Start();
  Computer computer = Connect();
  server.Unplug();
  ASSERT_TRUE(server.WaitForPlug(false));
  EXPECT_FALSE(PortIsThere());
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  server.Replug();
  ASSERT_TRUE(server.WaitForPlug(true));
  Computer again = Connect();
  EXPECT_EQ(MajorOf(again.Ask(VersionQuery())), 1);
}

TEST_F(SimulatorServerTest, TestsMaySendAnyBytesHoweverMany) {
  SimulatorServer server(Options());
  server.Start();
  SocketClient computer(Socket(".in"));
  const Bytes bytes = Filled(std::size_t{3} * 1024 * 1024, 0);
  server.Send(bytes);
  EXPECT_EQ(computer.ReadBytes(bytes.size()), bytes);
}

TEST_F(SimulatorServerTest, AComputerThatNeverReadsHoldsNobodyUp) {
  SimulatorServer server(InUpdateMode({"flood@1-3"}));
  server.Start();
  SocketClient idle(Socket(".in"));
  Computer computer = Connect();
  for (int round = 0; round < 3; ++round)
    EXPECT_EQ(ReplyOf(computer.Ask(Command(kCommandOpen))), ReplyBytes(0x80));
}

TEST_F(SimulatorServerTest, WaitForTellsOfConditionAndLimit) {
  SimulatorServer server(Options());
  server.Start();
  EXPECT_FALSE(server.WaitFor([](const DeviceStatus& status) { return status.mMessages > 0; }, 1ms));
  SocketClient computer(Socket(".out"));
  std::thread sender([&] { computer.Send(VersionQuery()); });
  EXPECT_TRUE(
      server.WaitFor([](const DeviceStatus& status) { return status.CountOf(MessageName::kVersion) == 1; }));
  sender.join();
}

TEST_F(SimulatorServerTest, OperationsMayComeFromAnyThreadWhileItServes) {
  SimulatorServer server(Options());
  server.Start();
  std::thread watcher([&] {
    for (int round = 0; round < 200; ++round) {
      server.Status();
      server.Received();
      server.Flash();
      server.Failure();
      server.Send(Bytes{0xFE});
    }
  });
  Computer computer = Connect();
  for (int round = 0; round < 50; ++round) EXPECT_EQ(MajorOf(computer.Ask(VersionQuery())), 1);
  watcher.join();
}

TEST_F(SimulatorServerTest, TheTraceHasALineForEachMessage) {
  ServerOptions options = InUpdateMode();
  options.mTraceFile = mFolder.Entry("trace").string();
  SimulatorServer server(options);
  server.Start();
  Computer computer = Connect();
  EXPECT_FALSE(computer.Ask(VersionQuery()).empty());
  server.Stop();
  std::ifstream trace(options.mTraceFile);
  std::string first;
  std::string second;
  ASSERT_TRUE(std::getline(trace, first) && std::getline(trace, second));
  EXPECT_TRUE(first.ends_with(" in F0 00 00 17 70 F7")) << first;
  EXPECT_NE(second.find(" out F0 00 00 17 71 "), std::string::npos) << second;
  EXPECT_FALSE(std::getline(trace, first));
}

TEST_F(SimulatorServerTest, RefusesANameThatIsServedOrImpossible) {
  SimulatorServer server(Options());
  server.Start();
  SimulatorServer second(Options());
  EXPECT_THROW(second.Start(), std::runtime_error);
  Computer computer = Connect();
  EXPECT_EQ(MajorOf(computer.Ask(VersionQuery())), 1);
  for (const char* name : {"", ".hidden", "a/b"}) {
    ServerOptions options = Options();
    options.mPortName = name;
    EXPECT_THROW(SimulatorServer(options).Open(), std::invalid_argument) << name;
  }
  ServerOptions tooLong = Options();
  tooLong.mPortName = std::string(200, 'x');
  EXPECT_THROW(SimulatorServer(tooLong).Open(), std::runtime_error);
}

TEST_F(SimulatorServerTest, ReplacesSocketsThatAKilledDeviceLeftButNoFiles) {
  SimulatorServer killed(Options());
  killed.Open();
  std::filesystem::rename(Socket(".in"), Socket(".in.left"));
  std::filesystem::rename(Socket(".out"), Socket(".out.left"));
  killed.Stop();
  std::filesystem::rename(Socket(".in.left"), Socket(".in"));
  std::filesystem::rename(Socket(".out.left"), Socket(".out"));
  SimulatorServer server(Options());
  server.Start();
  Computer computer = Connect();
  EXPECT_EQ(MajorOf(computer.Ask(VersionQuery())), 1);
  server.Stop();
  std::ofstream(Socket(".out")) << "mine";
  EXPECT_THROW(server.Start(), std::runtime_error);
  EXPECT_EQ(TestSupport::ReadWholeFile(Socket(".out")), "mine");
  EXPECT_FALSE(std::filesystem::exists(Socket(".in")));
}

TEST_F(SimulatorServerTest, AFailureEndsTheServingAndIsTold) {
  ServerOptions options = InUpdateMode();
  options.mFlashFile = mFolder.Entry("missing/flash.hex").string();
  SimulatorServer server(options);
  server.Start();
  Computer computer = Connect();
  computer.mOut.Send(Command(kCommandStart));
  computer.mOut.Send(Command(kCommandFinish));
  EXPECT_TRUE(computer.mIn.ReadsEnd());
  ASSERT_TRUE(server.WaitFor([](const DeviceStatus& status) { return status.mRestarts == 1; }));
  server.Stop();
  EXPECT_NE(server.Failure().find("flash.hex"), std::string::npos) << server.Failure();
}
