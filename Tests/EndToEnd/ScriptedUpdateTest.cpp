#include <gtest/gtest.h>

#include <csignal>

#include "Tests/EndToEnd/DeviceRig.h"
#include "Tests/Support/UdpReceiver.h"

// The updater as scripts run it: real processes, real ports, the device's own times.

namespace {

using namespace EndToEnd;
using Simulator::DeviceMode;
using Simulator::DeviceStatus;

constexpr const char* kNoScreen = "has no screen yet";

TEST(ScriptedUpdate, GoesFromStatusFiveToStatusFour) {
  DeviceRig rig;
  auto& device = rig.AddDevice(DeviceMode::kNormal);
  EXPECT_EQ(rig.Status(), 5);
  EXPECT_EQ(rig.Run({"-SILENT"}), 0);
  ASSERT_TRUE(InMode(device, DeviceMode::kBootloader));
  EXPECT_EQ(rig.Status(), 3);
  EXPECT_EQ(rig.Run({"-silent"}), 0);
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  ASSERT_TRUE(InMode(device, DeviceMode::kNormal));
  EXPECT_EQ(rig.Status(), 4);
  EXPECT_TRUE(rig.Holds(device));
  EXPECT_TRUE(device.Status().mViolations.empty());
}

TEST(ScriptedUpdate, StatusTellsWhatIsConnected) {
  const std::string missing = "-ABSOLUTE_FIRMWARE_FILE_PATH=/nowhere/fw.vbin";
  {
    const DeviceRig rig;
    EXPECT_EQ(rig.Status(), 1);
  }
  {
    DeviceRig rig;
    auto options = rig.Options(DeviceMode::kNormal);
    for (const char* name : {"Tessel A", "Tessel B"}) {
      options.mPortName = name;
      rig.AddDevice(options);
    }
    EXPECT_EQ(rig.Status(), 1) << "two devices";
  }
  {
    DeviceRig rig;
    rig.AddDevice(DeviceMode::kNormal);
    EXPECT_EQ(rig.Run({"-RETURN_UPDATE_MODE_STATUS", missing}), 4);
  }
  {
    DeviceRig rig;
    rig.AddDevice(DeviceMode::kBootloader);
    EXPECT_EQ(rig.Run({"-RETURN_UPDATE_MODE_STATUS", missing}), 2);
  }
}

TEST(ScriptedUpdate, DeviceThatAnswersNothingIsNoDevice) {
  DeviceRig rig;
  auto options = rig.Options(DeviceMode::kNormal);
  options.mDevice.mAnswerNothing = true;
  rig.AddDevice(options);
  EXPECT_EQ(rig.Status(), 1);
}

TEST(ScriptedUpdate, WithoutASoundSystemThereIsNoDevice) {
  const DeviceRig rig;
  ProgramOptions options = rig.Updater({"-RETURN_UPDATE_MODE_STATUS"});
  options.mEnvironment["TESSEL_MIDI"] = "";
  ProgramRun run(options);
  EXPECT_EQ(run.Wait(), 1);
  EXPECT_EQ(run.Output() + run.Errors(), "");
}

TEST(ScriptedUpdate, SaysNothingUnlessItIsAsked) {
  DeviceRig rig;
  rig.AddDevice(DeviceMode::kNormal);
  ProgramRun quiet(rig.Updater({"-RETURN_UPDATE_MODE_STATUS"}));
  EXPECT_EQ(quiet.Wait(), 5);
  EXPECT_EQ(quiet.Output() + quiet.Errors(), "");
  ProgramRun console(rig.Updater({"-RETURN_UPDATE_MODE_STATUS", "-debug_console"}));
  EXPECT_EQ(console.Wait(), 5);
  EXPECT_EQ(console.Output(), "");
  EXPECT_NE(console.Errors().find("the device runs firmware 1.5.0.9"), std::string::npos) << console.Errors();
}

TEST(ScriptedUpdate, SendsItsRecordsAsDatagrams) {
  const DeviceRig rig;
  TestSupport::UdpReceiver receiver;
  ProgramRun run(rig.Updater(
      {"-RETURN_UPDATE_MODE_STATUS", "-DEBUG_CONSOLE:" + std::to_string(receiver.Port()) + ":127.0.0.1"}));
  EXPECT_EQ(run.Wait(), 1);
  EXPECT_EQ(run.Output() + run.Errors(), "");
  EXPECT_EQ(receiver.Receive(), "*** APPLICATION Launched on ");
  EXPECT_EQ(receiver.Receive(), "127.0.0.1");
  EXPECT_EQ(receiver.Receive(), "***\n");
  EXPECT_NE(receiver.Receive().find("Firmware file state 3"), std::string::npos);
}

TEST(ScriptedUpdate, RunThatNeedsAScreenSaysThatThereIsNone) {
  DeviceRig rig;
  ProgramRun without(rig.Updater({"-SILENT"}));
  EXPECT_EQ(without.Wait(), 0);
  EXPECT_NE(without.Errors().find(kNoScreen), std::string::npos) << "no device always shows the screen";
  rig.AddDevice(DeviceMode::kNormal);
  ProgramRun plain(rig.Updater({}));
  EXPECT_EQ(plain.Wait(), 0);
  EXPECT_NE(plain.Errors().find(kNoScreen), std::string::npos);
}

TEST(ScriptedUpdate, AutomaticStartBringsItsTransferToTheEnd) {
  DeviceRig rig;
  auto& device = rig.AddDevice(DeviceMode::kBootloader);
  EXPECT_EQ(rig.Run({"-START_UPDATE_AUTOMATICALLY"}), 0);
  EXPECT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  EXPECT_TRUE(rig.Holds(device));
}

TEST(ScriptedUpdate, FindsTheFileThatWasMeant) {
  DeviceRig rig;
  rig.AddDevice(DeviceMode::kNormal);
  std::filesystem::create_directory(rig.Folder().Entry("fw 2"));
  std::filesystem::copy(rig.Image(), rig.Folder().Entry("fw 2") / "x y.vbin");
  struct Case {
    const char* name;
    Arguments arguments;
    int status;
  };
  const std::string folder = rig.Folder().Path().string();
  const Case cases[] = {
      {"relative", {"-ABSOLUTE_FIRMWARE_FILE_PATH=fw.vbin"}, 5},
      {"lower case option", {"-absolute_firmware_file_path=" + folder + "/fw.vbin"}, 5},
      {"a blank names no file", {"-ABSOLUTE_FIRMWARE_FILE_PATH=" + folder + "/fw 2/x y.vbin"}, 4},
      {"wrong case of the file", {"-ABSOLUTE_FIRMWARE_FILE_PATH=" + folder + "/FW.vbin"}, 4},
      {"a folder", {"-ABSOLUTE_FIRMWARE_FILE_PATH=" + folder}, 4},
      {"beside the program", {"-FIRMWARE_IMAGE_NAME=no such file.vbin"}, 4},
      {"absolute wins", {"-FIRMWARE_IMAGE_NAME=none", "-ABSOLUTE_FIRMWARE_FILE_PATH=fw.vbin"}, 5},
      {"first of two counts",
       {"-ABSOLUTE_FIRMWARE_FILE_PATH=fw.vbin", "-ABSOLUTE_FIRMWARE_FILE_PATH=none"},
       5},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    Arguments arguments = entry.arguments;
    arguments.insert(arguments.begin(), "-RETURN_UPDATE_MODE_STATUS");
    ProgramOptions options = rig.Updater(arguments);
    options.mWorkingFolder = folder;
    ProgramRun run(options);
    EXPECT_EQ(run.Wait(), entry.status);
  }
}

TEST(ScriptedUpdate, HelpAndVersionPrintAndEnd) {
  const DeviceRig rig;
  ProgramRun help(rig.Updater({"--help"}));
  EXPECT_EQ(help.Wait(), 0);
  EXPECT_NE(help.Output().find("-RETURN_UPDATE_MODE_STATUS"), std::string::npos);
  ProgramRun version(rig.Updater({"-SILENT", "--version"}));
  EXPECT_EQ(version.Wait(), 0);
  EXPECT_EQ(version.Output(), "tessel-firmware-updater 1.0.14\n");
}

TEST(ScriptedUpdate, UnpluggedInTheMiddleASecondRunSucceeds) {
  DeviceRig rig;
  auto& device = rig.AddDevice(DeviceMode::kBootloader, {"unplug@write#20:100"});
  ProgramRun first(rig.Updater({"-SILENT", "-DEBUG_CONSOLE"}));
  EXPECT_EQ(first.Wait(), 0);
  EXPECT_NE(first.Errors().find("Update failed"), std::string::npos) << first.Errors();
  ASSERT_TRUE(device.WaitForPlug(true));
  EXPECT_EQ(device.Status().mFinishedUpdates, 0u);
  EXPECT_EQ(rig.Run({"-SILENT"}), 0);
  EXPECT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  EXPECT_TRUE(rig.Holds(device));
}

TEST(ScriptedUpdate, DamagedImageNeverReachesTheDevice) {
  DeviceRig rig;
  auto& device = rig.AddDevice(DeviceMode::kBootloader);
  std::vector<std::uint8_t> damaged = rig.ImageBytes();
  damaged[damaged.size() / 2] ^= 0x10;
  rig.Folder().WriteFile("fw.vbin", std::string(damaged.begin(), damaged.end()));
  EXPECT_EQ(rig.Run({"-SILENT"}), 0);
  const DeviceStatus status = device.Status();
  EXPECT_EQ(status.mMessages, status.CountOf(Simulator::MessageName::kVersion)) << "only version queries";
}

TEST(ScriptedUpdate, SignalsEndAScanButNeverATransfer) {
  {
    DeviceRig rig;
    auto options = rig.Options(DeviceMode::kNormal);
    options.mDevice.mAnswerNothing = true;
    auto& device = rig.AddDevice(options);
    ProgramRun run(rig.Updater({"-RETURN_UPDATE_MODE_STATUS"}));
    ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mMessages > 0; }));
    run.Signal(SIGINT);
    EXPECT_EQ(run.Wait(), 0) << "an interrupted scan is no answer";
    EXPECT_LT(device.Status().mMessages, 3u);
  }
  DeviceRig rig;
  auto& device = rig.AddDevice(DeviceMode::kBootloader);
  ProgramRun run(rig.Updater({"-SILENT", "-DEBUG_CONSOLE"}));
  ASSERT_TRUE(run.WaitForError("Device state 8"));
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) run.Signal(signal);
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_NE(run.Errors().find("dropped"), std::string::npos);
  EXPECT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mFinishedUpdates == 1; }));
  EXPECT_TRUE(rig.Holds(device));
}

TEST(ScriptedUpdate, RunsDoNotEndEachOther) {
  DeviceRig rig;
  auto options = rig.Options(DeviceMode::kNormal);
  options.mDevice.mAnswerNothing = true;
  auto& device = rig.AddDevice(options);
  ProgramRun first(rig.Updater({"-RETURN_UPDATE_MODE_STATUS"}));
  ASSERT_TRUE(device.WaitFor([](const DeviceStatus& status) { return status.mMessages > 0; }));
  const DeviceRig other;
  ProgramOptions second = other.Updater({"-RETURN_UPDATE_MODE_STATUS"});
  second.mEnvironment["XDG_RUNTIME_DIR"] = rig.Folder().Path().string();
  ProgramRun secondRun(second);
  EXPECT_EQ(secondRun.Wait(), 1);
  EXPECT_EQ(first.Wait(), 1);
}

}  // namespace
