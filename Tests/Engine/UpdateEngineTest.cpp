#include "Engine/UpdateEngine.h"

#include <gtest/gtest.h>

#include "Engine/BootloaderMessages.h"
#include "Tests/Support/Engine/EngineRig.h"
#include "Tests/Support/Engine/NotificationRecorder.h"
#include "Tests/Support/Engine/TransferRig.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tools/Simulator/SimulatorServer.h"

// The engine with simulated devices at real ports.

namespace {

using namespace EngineTest;
using Simulator::DeviceMode;
using Simulator::DeviceStatus;
using Simulator::MessageName;
using TF::kAborted;
using TF::kFailure;
using TF::kNothingDone;
using TF::kSuccess;
using TF::String;
using Texts = std::vector<std::string>;

constexpr std::uint32_t kLongMs = 60000;

TEST(UpdateEngine, WholeLifeOfAnUpdate) {
  Simulator::SimulatorServer device(DeviceAt("Tessel MIDI 1", DeviceMode::kNormal));
  device.Start();
  EngineRig engine;
  engine.SetImage(MakeImage(TwoRegions()));
  NotificationRecorder recorder;
  ASSERT_EQ(engine->ScanForDevice(), kSuccess);
  ASSERT_EQ(engine->GetDeviceState(), DEVICE_NOT_IN_UPDATE_MODE);
  String version;
  EXPECT_EQ(engine->GetDeviceFirmwareVersion(version), kSuccess);
  EXPECT_EQ(version, u"1.5.0.9");
  EXPECT_TRUE(engine->IsFirmwareFileNewer());
  unsigned id = 0;
  EXPECT_EQ(engine->GetDeviceHardwareId(id), kSuccess);
  EXPECT_EQ(id, Simulator::kDefaultHardwareId);
  EXPECT_EQ(engine->GetDeviceSecondaryId(id), kSuccess);
  EXPECT_EQ(id, Simulator::kDefaultSecondaryId);

  EXPECT_EQ(engine->EnterUpdateMode(), 6) << "the bytes of the message";
  EXPECT_EQ(engine->GetDeviceState(), TRANSITIONING_TO_UPDATE_MODE);
  ASSERT_TRUE(
      device.WaitFor([](const DeviceStatus& status) { return status.mMode == DeviceMode::kBootloader; }));
  ASSERT_TRUE(device.WaitForPlug(true));
  ASSERT_TRUE(engine.RefreshUntil(DEVICE_IN_UPDATE_MODE));
  EXPECT_EQ(engine->EnterUpdateMode(), kNothingDone);
  EXPECT_EQ(engine->GetDeviceFirmwareVersion(version), kSuccess);
  EXPECT_EQ(version, u"Unknown");
  FirmwareVersionInfo info;
  ASSERT_EQ(engine->GetDeviceVersion(0, info), kSuccess);
  EXPECT_EQ(info.mMajor + info.mMinor + info.mPatch + info.mBuild, 0u) << "nothing of the old firmware stays";

  engine.Update();
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_SENT);
  EXPECT_EQ(engine->GetDeviceState(), UPDATE_IN_PROGRESS);
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  ASSERT_TRUE(device.WaitForPlug(true));
  ASSERT_TRUE(engine.RefreshUntil(DEVICE_NOT_IN_UPDATE_MODE));
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_SENT);
  EXPECT_FALSE(engine->IsFirmwareFileNewer());
  engine->Shutdown();
  Texts texts = recorder.Deliver();
  std::erase_if(texts, [](const std::string& text) { return text.rfind("progress", 0) == 0; });
  EXPECT_EQ(texts,
            Texts({"device 5<3", "device 6<5", "device 7<6", "device 8<7", "completed 1", "device 5<8"}));
}

TEST(UpdateEngine, ScanFindsWhatIsThere) {
  struct Case {
    const char* name;
    Texts ports;
    DeviceMode mode;
    bool answerNothing;
    std::int32_t state;
  };
  const Case cases[] = {
      {"nothing", {}, DeviceMode::kNormal, false, NO_DEVICE_FOUND},
      {"another maker's port", {"Other"}, DeviceMode::kNormal, false, NO_DEVICE_FOUND},
      {"normal firmware", {"my TESSEL 9"}, DeviceMode::kNormal, false, DEVICE_NOT_IN_UPDATE_MODE},
      {"update mode", {"Tessel"}, DeviceMode::kBootloader, false, DEVICE_IN_UPDATE_MODE},
      {"two devices are ambiguous", {"Tessel A", "Tessel B"}, DeviceMode::kNormal, false, NO_DEVICE_FOUND},
      {"the exact name wins", {"Tessel", "Tessel 2"}, DeviceMode::kNormal, false, DEVICE_NOT_IN_UPDATE_MODE},
      {"a device that answers nothing", {"Tessel"}, DeviceMode::kNormal, true, NO_DEVICE_FOUND},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    std::vector<std::unique_ptr<Simulator::SimulatorServer>> devices;
    for (const std::string& port : entry.ports) {
      auto options = DeviceAt(port, entry.mode);
      options.mDevice.mAnswerNothing = entry.answerNothing;
      devices.push_back(std::make_unique<Simulator::SimulatorServer>(options));
      devices.back()->Start();
    }
    EngineRig engine(ShortProbes(entry.answerNothing ? 20 : 300));
    EXPECT_EQ(engine->ScanForDevice(), kSuccess);
    EXPECT_EQ(engine->GetDeviceState(), entry.state);
    EXPECT_EQ(engine->GetDeviceCount(), entry.state == NO_DEVICE_FOUND ? 0u : 1u);
  }
}

TEST(UpdateEngine, DeviceInUpdateModeIsFoundWithItsIds) {
  auto options = DeviceAt("Tessel", DeviceMode::kBootloader);
  options.mDevice.mHardwareId = 0x80FF7F01;
  options.mDevice.mSecondaryId = 0xFEDCBA98;
  Simulator::SimulatorServer device(options);
  device.Start();
  EngineRig engine;
  engine->ScanForDevice();
  unsigned hardware = 0;
  unsigned secondary = 0;
  EXPECT_EQ(engine->GetDeviceHardwareId(hardware), kSuccess);
  EXPECT_EQ(engine->GetDeviceSecondaryId(secondary), kSuccess);
  EXPECT_EQ(hardware, 0x80FF7F01u);
  EXPECT_EQ(secondary, 0xFEDCBA98u);
  EXPECT_TRUE(engine->IsDeviceInUpdateMode(0));
  EXPECT_FALSE(engine->IsDeviceInUpdateMode(1));
  TF::Array<LUpdateEngineInterface::DeviceDefinition> found;
  EXPECT_EQ(engine->GetFoundDevices(found), kSuccess);
  EXPECT_EQ(found.GetCount(), 1);
}

// Noise, late and doubled answers do not keep a device from being found.
TEST(UpdateEngine, FirmwareIsFoundAmongNoise) {
  for (const char* fault : {"noise@version#*", "duplicate-reply@version#*", "lose-reply@version#1"}) {
    SCOPED_TRACE(fault);
    Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal, {fault}));
    device.Start();
    EngineRig engine;
    engine->ScanForDevice();
    EXPECT_EQ(engine->GetDeviceState(), DEVICE_NOT_IN_UPDATE_MODE);
  }
}

TEST(UpdateEngine, ProbeThatLosesItsDeviceMovesTheState) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal));
  device.Start();
  EngineRig engine;
  engine->ScanForDevice();
  ASSERT_EQ(engine->GetDeviceState(), DEVICE_NOT_IN_UPDATE_MODE);
  device.Unplug();
  ASSERT_TRUE(device.WaitForPlug(false));
  EXPECT_EQ(engine->RefreshDeviceState(), kSuccess);
  EXPECT_EQ(engine->GetDeviceState(), DEVICE_CANNOT_BE_UPDATED);
  std::int32_t reason = 0;
  EXPECT_EQ(engine->GetCannotUpdateReason(reason), kSuccess);
  EXPECT_EQ(reason, REASON_DEVICE_ACCESS_FAILURE);
  device.Replug();
  ASSERT_TRUE(device.WaitForPlug(true));
  EXPECT_TRUE(engine.RefreshUntil(DEVICE_NOT_IN_UPDATE_MODE));
  EXPECT_EQ(engine.Reason(), REASON_NONE);
}

TEST(UpdateEngine, DeviceThatIsStillAwayLeavesTheTransition) {
  auto options = DeviceAt("Tessel", DeviceMode::kNormal);
  options.mDevice.mRestartTime = std::chrono::hours(1);
  Simulator::SimulatorServer device(options);
  device.Start();
  EngineRig engine;
  engine->ScanForDevice();
  EXPECT_EQ(engine->SwitchDeviceToUpdateMode(), 6);
  ASSERT_TRUE(device.WaitForPlug(false));
  EXPECT_EQ(engine->RefreshDeviceState(), kSuccess);
  EXPECT_EQ(engine->GetDeviceState(), TRANSITIONING_TO_UPDATE_MODE);
  EXPECT_EQ(engine->SwitchDeviceToUpdateMode(), kFailure) << "nothing can be sent";
  EXPECT_EQ(engine->GetDeviceState(), DEVICE_CANNOT_BE_UPDATED);
  EXPECT_EQ(engine.Reason(), REASON_DEVICE_ACCESS_FAILURE);
}

// Sees ports come and go as the test says, where no device is.
class LScriptedEngine : public LUpdateEngine {
 public:
  explicit LScriptedEngine(std::vector<bool> answers) : mAnswers(std::move(answers)) {}

 protected:
  bool IsDevicePresent(const String&, const String&) override { return mAnswers.at(mNext++); }

 private:
  const std::vector<bool> mAnswers;
  std::size_t mNext = 0;
};

// A port that was there and is going is taken for a device that switches modes; the transfer
// still needs its bootloader's answer.
TEST(UpdateEngine, PortsThatGoDuringABootloaderProbeCountAsUpdateMode) {
  struct Case {
    std::vector<bool> answers;  // To the firmware's probe, then twice to the bootloader's.
    std::int32_t state;
  };
  const Case cases[] = {{{false, true, false}, DEVICE_IN_UPDATE_MODE},
                        {{false, true, true}, DEVICE_IN_UPDATE_MODE},
                        {{false, false, true}, NO_DEVICE_FOUND},
                        {{false, false, false}, NO_DEVICE_FOUND}};
  for (const Case& entry : cases) {
    TestSupport::LogCapture log;
    const auto engine = TF::MakeRC<LScriptedEngine>(entry.answers);
    ASSERT_EQ(engine->Initialize(String()), kSuccess);
    engine->SetDeviceDefinitions({LUpdateEngineInterface::DeviceDefinition()});
    EXPECT_EQ(engine->ScanForDevice(), kSuccess);
    EXPECT_EQ(engine->GetDeviceState(), entry.state);
    EXPECT_EQ(log.Contains("assumed without an answer"), entry.state == DEVICE_IN_UPDATE_MODE);
    engine->Shutdown();
  }
}

struct BadImage {
  const char* name;
  Bytes bytes;
};

TEST(UpdateEngine, InvalidImageCostsTheDeviceNotOneByte) {
  const Bytes good = MakeImage(TwoRegions());
  Bytes badCrc = good;
  badCrc.back() = static_cast<unsigned char>(badCrc.back() ^ 1);
  Bytes badMagic = good;
  badMagic[0] = 0;
  const BadImage cases[] = {{"empty", {}},
                            {"wrong checksum", badCrc},
                            {"wrong magic", badMagic},
                            {"truncated", Bytes(good.begin(), good.end() - 1)}};
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader));
  device.Start();
  for (const BadImage& entry : cases) {
    SCOPED_TRACE(entry.name);
    EngineRig engine;
    engine.SetImage(entry.bytes);
    engine->ScanForDevice();
    ASSERT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
    device.ClearReceived();
    engine.Update();
    EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_FAILED);
    EXPECT_EQ(engine->GetDeviceState(), DEVICE_CANNOT_BE_UPDATED);
    EXPECT_EQ(engine.Reason(), REASON_DEVICE_ACCESS_FAILURE);
    EXPECT_TRUE(device.Received().empty());
  }
}

TEST(UpdateEngine, FirmwareFileThatHasGoneFailsWithItsReason) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader));
  device.Start();
  for (const bool asFolder : {false, true}) {
    EngineRig engine;
    TestSupport::TemporaryFolder folder;
    const auto path = folder.WriteFile("fw.vbin", "x");
    engine->SetFirmwareFile(String(folder.InnerEntry("fw.vbin")));
    engine->ScanForDevice();
    std::filesystem::remove(path);
    if (asFolder) std::filesystem::create_directory(path);
    NotificationRecorder recorder;
    engine.Update();
    engine->Shutdown();
    EXPECT_EQ(engine.Reason(), REASON_FILE_ACCESS_FAILURE);
    EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_FAILED);
    EXPECT_EQ(recorder.Deliver(), Texts({"device 8<7", "device 4<8", "completed 0"}));
  }
}

// How each failure of a transfer ends, and that the next try with a sound device succeeds.
TEST(UpdateEngine, FailedUpdateEndsInItsStateAndASecondTrySucceeds) {
  struct Case {
    const char* fault;
    std::int32_t reason;
  };
  const Case cases[] = {
      {"lose-reply@open", REASON_NONE},
      {"short-reply@open", REASON_NONE},
      {"unplug@open:100", REASON_NONE},
      {"lose-reply@start", REASON_DEVICE_ACCESS_FAILURE},
      {"unplug@write#3:100", REASON_DEVICE_ACCESS_FAILURE},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.fault);
    Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader, {entry.fault}));
    device.Start();
    EngineRig engine;
    engine.SetImage(MakeImage(OneRegion(3000)));
    engine->ScanForDevice();
    ASSERT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
    engine.Update();
    EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_FAILED);
    EXPECT_EQ(engine->GetDeviceState(), DEVICE_CANNOT_BE_UPDATED);
    EXPECT_EQ(engine.Reason(), entry.reason);
    ASSERT_TRUE(device.WaitForPlug(true));
    ASSERT_TRUE(engine.RefreshUntil(DEVICE_IN_UPDATE_MODE));
    engine.Update();
    EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_SENT);
    EXPECT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  }
}

TEST(UpdateEngine, DeviceThatHasGoneFailsTheUpdateAtOnce) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader));
  device.Start();
  EngineRig engine;
  engine.SetImage(MakeImage(OneRegion(300)));
  engine->ScanForDevice();
  device.Unplug();
  ASSERT_TRUE(device.WaitForPlug(false));
  engine.Update();
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_FAILED);
  EXPECT_EQ(engine.Reason(), REASON_DEVICE_ACCESS_FAILURE);
}

TEST(UpdateEngine, AbortIsHonouredWhenTheTransferIsOver) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader, {"late-reply@verify:500"}));
  device.Start();
  EngineRig engine;
  engine.SetImage(MakeImage(OneRegion(3000)));
  engine->ScanForDevice();
  EXPECT_EQ(engine->AbortUpdate(), kFailure);
  NotificationRecorder recorder;
  ASSERT_EQ(engine->StartUpdate(), kSuccess);
  EXPECT_EQ(engine->RefreshDeviceState(), kFailure) << "the worker has the device";
  EXPECT_EQ(engine->Initialize(String()), kFailure);
  EXPECT_EQ(engine->AbortUpdate(), kSuccess);
  ASSERT_EQ(engine->WaitForUpdateCompletion(kLongMs), kSuccess);
  engine->Shutdown();
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_ABORTED);
  EXPECT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
  EXPECT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  Texts texts = recorder.Deliver();
  std::erase_if(texts, [](const std::string& text) { return text.rfind("progress", 0) == 0; });
  EXPECT_EQ(texts, Texts({"device 8<7", "device 7<8", "completed 0", "completed 0"}));
}

TEST(UpdateEngine, FailureWithAnAbortRequestIsAFailure) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader, {"lose-reply@start"}));
  device.Start();
  EngineRig engine;
  engine.SetImage(MakeImage(OneRegion(300)));
  engine->ScanForDevice();
  ASSERT_EQ(engine->StartUpdate(), kSuccess);
  EXPECT_EQ(engine->AbortUpdate(), kSuccess);
  ASSERT_EQ(engine->WaitForUpdateCompletion(kLongMs), kSuccess);
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_FAILED);
}

TEST(UpdateEngine, SecondInitializeWorksWithANewService) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal));
  device.Start();
  EngineRig engine;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(engine->Initialize(String()), kSuccess);
    EXPECT_EQ(engine->ScanForDevice(), kSuccess);
    EXPECT_EQ(engine->GetDeviceState(), DEVICE_NOT_IN_UPDATE_MODE);
  }
}

TEST(UpdateEngine, ExitRequestEndsAProbeEarly) {
  auto options = DeviceAt("Tessel", DeviceMode::kNormal);
  options.mDevice.mAnswerNothing = true;
  Simulator::SimulatorServer device(options);
  device.Start();
  ProbeLimits endless;
  endless.mVersionReplyMs = endless.mBootloaderReplyMs = 3600000;
  EngineRig engine(endless);
  TestSupport::LogCapture log;
  std::thread scan([&] { engine->ScanForDevice(); });
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mMessages >= 1; }));
  EXPECT_TRUE(engine->RequestExit());
  scan.join();
  EXPECT_EQ(engine->GetDeviceState(), NO_DEVICE_FOUND);
}

TEST(UpdateEngine, EachStepLeavesARecord) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kBootloader, {"wrong-crc@verify"}));
  device.Start();
  TestSupport::LogCapture log;
  EngineRig engine;
  engine.SetImage(MakeImage(OneRegion(300)));
  engine->ScanForDevice();
  engine.Update();
  const std::string text = log.Text();
  for (const char* record : {"Firmware file state 3", "Device state 7", "Probe: the device is in update mode",
                             "Device state 8", "Update sent"}) {
    EXPECT_NE(text.find(record), std::string::npos) << record << " in\n" << text;
  }
}

TEST(UpdateEngine, RawTransfersCutFrameAndStopOnRequest) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal));
  device.Start();
  EngineRig engine;
  engine->SetPacketDelay(0);
  const TF::Array<unsigned char> lines = ToArray(FromHex("F0 01 02 F7 03 0D 04"));
  EXPECT_EQ(engine->SendFirmwareMessages(lines, u"Tessel", u"Tessel"), kSuccess);
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mMessages == 3; }));
  const std::vector<Bytes> expected = {FromHex("F0 01 02 F7"), FromHex("F0 03 F7"), FromHex("F0 04 F7")};
  EXPECT_EQ(device.Received(), expected);
  device.ClearReceived();
  Bytes packets = FromHex("F0");
  packets.resize(300, 1);
  packets.back() = 0xF7;
  EXPECT_EQ(engine->SendFirmwareInPackets(ToArray(packets), u"Tessel", u"Tessel"), kSuccess);
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mMessages == 4; }));
  EXPECT_EQ(device.Received(), std::vector<Bytes>({packets}));
  EXPECT_EQ(engine->SendFirmwareInPackets(ToArray(packets), u"None", u"None"), kFailure);
}

TEST(UpdateEngine, LeavesNoObjectsBehind) {
  Simulator::SimulatorServer device(DeviceAt("Tessel", DeviceMode::kNormal));
  device.Start();
  const auto scan = [] {
    EngineRig engine;
    engine->ScanForDevice();
    engine->Shutdown();
  };
  scan();
  const std::int64_t before = TF::LRefCountedObject::GetLiveCount();
  NotificationRecorder recorder;
  scan();
  recorder.Deliver();
  EXPECT_LE(TF::LRefCountedObject::GetLiveCount() - before, 32) << "what the recorder holds";
}

}  // namespace
