#include <gtest/gtest.h>

#include <stdexcept>

#include "Tools/Simulator/CommandLine.h"

using namespace Simulator;
using Arguments = std::vector<std::string>;

TEST(SimulatorCommandLineTest, ReadsEveryOptionInBothForms) {
  const Arguments arguments{"--dir",
                            "/tmp/x",
                            "--name=Tessel MIDI 1",
                            "--firmware",
                            "1.2.3.4",
                            "--update-version=5.6.7.8",
                            "--mode",
                            "bootloader",
                            "--hardware-id=0xFEDCBA98",
                            "--secondary-id",
                            "12",
                            "--restart-ms=0",
                            "--flash",
                            "f=1",
                            "--trace=t",
                            "--ready-file",
                            "r",
                            "--answer-nothing",
                            "--fault",
                            "lose-reply@1",
                            "--fault=noise@verify#2"};
  const CommandLine line = ParseCommandLine(arguments);
  const DeviceOptions& device = line.mServer.mDevice;
  EXPECT_EQ(line.mServer.mDirectory, "/tmp/x");
  EXPECT_EQ(line.mServer.mPortName, "Tessel MIDI 1");
  EXPECT_EQ(device.mFirmware, (FirmwareVersion{1, 2, 3, 4}));
  EXPECT_EQ(device.mUpdateVersion, (FirmwareVersion{5, 6, 7, 8}));
  EXPECT_EQ(device.mMode, DeviceMode::kBootloader);
  EXPECT_EQ(device.mHardwareId, 0xFEDCBA98);
  EXPECT_EQ(device.mSecondaryId, 12U);
  EXPECT_EQ(device.mRestartTime.count(), 0);
  EXPECT_EQ(line.mServer.mFlashFile, "f=1");
  EXPECT_EQ(line.mServer.mTraceFile, "t");
  EXPECT_EQ(line.mReadyFile, "r");
  EXPECT_TRUE(device.mAnswerNothing);
  ASSERT_EQ(device.mFaults.size(), 2U);
  EXPECT_EQ(device.mFaults[1].mKind, FaultKind::kNoise);
}

TEST(SimulatorCommandLineTest, RefusesWhatItDoesNotUnderstandAndNamesIt) {
  const struct {
    Arguments mArguments;
    const char* mNamed;
  } cases[] = {
      {{}, "--dir"},
      {{"--dir", "x", "--gadget", "y"}, "one of --dir"},
      {{"--dir"}, "--dir"},
      {{"--dir="}, "--dir"},
      {{"--dir", "x", "--frobnicate"}, "--frobnicate"},
      {{"--dir", "x", "stray"}, "stray"},
      {{"--dir", "x", ""}, "\"\""},
      {{"--dir", "x", "--firmware", "1.2.3"}, "--firmware: \"1.2.3\""},
      {{"--dir", "x", "--mode=Normal"}, "--mode: \"Normal\""},
      {{"--dir", "x", "--hardware-id=0x100000000"}, "--hardware-id"},
      {{"--dir", "x", "--hardware-id=0x"}, "--hardware-id"},
      {{"--dir", "x", "--restart-ms=-1"}, "--restart-ms"},
      {{"--dir", "x", "--answer-nothing=1"}, "--answer-nothing"},
      {{"--dir", "x", "--fault", "lose@1"}, "--fault"},
  };
  for (const auto& item : cases) {
    try {
      ParseCommandLine(item.mArguments);
      ADD_FAILURE() << item.mNamed << " was taken";
    } catch (const std::invalid_argument& error) {
      EXPECT_NE(std::string(error.what()).find(item.mNamed), std::string::npos) << error.what();
    }
  }
}

TEST(SimulatorCommandLineTest, HelpNeedsNothingElseAndNamesEveryOption) {
  EXPECT_TRUE(ParseCommandLine(Arguments{"--help"}).mHelp);
  for (const char* option :
       {"--dir", "--name", "--firmware", "--update-version", "--mode", "--hardware-id", "--secondary-id",
        "--restart-ms", "--flash", "--trace", "--ready-file", "--answer-nothing", "--fault", "--help"}) {
    EXPECT_NE(HelpText().find(option), std::string_view::npos) << option;
  }
}
