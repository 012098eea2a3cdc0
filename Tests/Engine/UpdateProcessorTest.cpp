#include "Engine/UpdateProcessor.h"

#include <gtest/gtest.h>

#include "Engine/ExitStatus.h"
#include "TFFramework/Application/ApplicationFolders.h"
#include "Tests/Engine/FakeUpdateEngine.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using namespace EngineTest;
using TF::kRunSettled;
using TF::kSuccess;
using TF::MakeRC;
using TF::String;
using Device = LFakeUpdateEngine::Device;

// One processor over a fake engine with a firmware file of version 1.6.0.47.
class ProcessorRun {
 public:
  explicit ProcessorRun(std::vector<Device> devices) : mEngine(MakeRC<LFakeUpdateEngine>()) {
    mFolder.WriteFile("fw.vbin", "x");
    mEngine->mDevices = std::move(devices);
    mProcessor = MakeRC<LUpdateProcessor>(mEngine);
    SetExitStatus(0);
  }

  TFRESULT Initialize(const char16_t* options, bool withFile = true) {
    String line(u"\\usr\\bin\\updater ");
    line += options;
    if (withFile) line += String(u" -ABSOLUTE_FIRMWARE_FILE_PATH=") + String(mFolder.InnerEntry("fw.vbin"));
    return mProcessor->Initialize(line);
  }

  TestSupport::TemporaryFolder mFolder;
  TF::RCPtr<LFakeUpdateEngine> mEngine;
  TF::RCPtr<LUpdateProcessor> mProcessor;
};

Device Normal(std::uint32_t build) {
  return {false, REASON_NONE, {1, 6, 0, build, u""}};
}

const Device kOld{false, REASON_NONE, {1, 5, 9, 9, u"1.5.9.9"}};
const Device kNew{false, REASON_NONE, {1, 6, 1, 0, u"1.6.1.0"}};
const Device kUpdateMode{true, REASON_NONE, {}};
const Device kNewInUpdateMode{true, REASON_NONE, {9, 0, 0, 0, u""}};

TEST(UpdateProcessor, DecidesWhatTheRunIs) {
  struct Case {
    const char* name;
    std::vector<Device> devices;
    const char16_t* options;
    TFRESULT result;
    std::int32_t exitStatus;
    int switches;
    int updates;
  };
  const Case cases[] = {
      {"screen without a device", {}, u"", kSuccess, 0, 0, 0},
      {"silent without a device shows the screen", {}, u"-SILENT", kSuccess, 0, 0, 0},
      {"status without a device", {}, u"-RETURN_UPDATE_MODE_STATUS", kRunSettled, 1, 0, 0},
      {"status with two devices", {kOld, kNew}, u"-RETURN_UPDATE_MODE_STATUS", kRunSettled, 0, 0, 0},
      {"status, normal and newer file", {kOld}, u"-RETURN_UPDATE_MODE_STATUS", kRunSettled, 5, 0, 0},
      {"status, normal and older file", {kNew}, u"-RETURN_UPDATE_MODE_STATUS", kRunSettled, 4, 0, 0},
      {"status, equal versions", {Normal(47)}, u"-return_update_mode_status", kRunSettled, 4, 0, 0},
      {"status, update mode", {kUpdateMode}, u"-RETURN_UPDATE_MODE_STATUS", kRunSettled, 3, 0, 0},
      {"status, update mode, not newer",
       {kNewInUpdateMode},
       u"-RETURN_UPDATE_MODE_STATUS",
       kRunSettled,
       2,
       0,
       0},
      {"status wins over silent", {kUpdateMode}, u"-SILENT -RETURN_UPDATE_MODE_STATUS", kRunSettled, 3, 0, 0},
      {"no options", {kOld}, u"", kSuccess, 0, 0, 0},
      {"silent switches", {kOld}, u"-SILENT", kRunSettled, 0, 1, 0},
      {"silent updates", {kUpdateMode}, u"-SILENT", kRunSettled, 0, 0, 1},
      {"silent with nothing to do", {kNew}, u"-SILENT", kRunSettled, 0, 0, 0},
      {"always and silent", {kNewInUpdateMode}, u"-ALWAYS_UPDATE -SILENT", kRunSettled, 0, 0, 1},
      {"always and silent, normal", {kNew}, u"-SILENT -ALWAYS_UPDATE", kRunSettled, 0, 1, 0},
      {"automatic", {kUpdateMode}, u"-START_UPDATE_AUTOMATICALLY", kSuccess, 0, 0, 1},
      {"automatic, normal", {kOld}, u"-START_UPDATE_AUTOMATICALLY", kSuccess, 0, 1, 0},
      {"not needed and not silent", {kNew}, u"-SILENT_IF_UPDATE_NOT_NEEDED", kRunSettled, 0, 0, 0},
      {"needed and not silent", {kOld}, u"-SILENT_IF_UPDATE_NOT_NEEDED", kSuccess, 0, 0, 0},
      {"longer option hides silent", {kOld}, u"-SILENT_IF_UPDATE_NOT_NEEDED -SILENT", kSuccess, 0, 0, 0},
      {"both in the other order", {kOld}, u"-SILENT -SILENT_IF_UPDATE_NOT_NEEDED", kRunSettled, 0, 1, 0},
  };
  for (const Case& entry : cases) {
    SCOPED_TRACE(entry.name);
    ProcessorRun run(entry.devices);
    EXPECT_EQ(run.Initialize(entry.options), entry.result);
    EXPECT_EQ(GetExitStatus(), entry.exitStatus);
    run.mEngine->WaitForUpdateCompletion(30000);
    EXPECT_EQ(run.mEngine->mSwitches, entry.switches);
    EXPECT_EQ(run.mEngine->mUpdates, entry.updates);
  }
}

TEST(UpdateProcessor, SwitchThatIsDoneAtOnceGoesOnToTheUpdate) {
  ProcessorRun run({kOld});
  run.mEngine->mStateAfterSwitch = DEVICE_IN_UPDATE_MODE;
  EXPECT_EQ(run.Initialize(u"-SILENT"), kRunSettled);
  EXPECT_EQ(run.mEngine->mUpdates, 1);
  EXPECT_EQ(run.mEngine->GetUpdateResult(false), UPDATE_SENT);
}

TEST(UpdateProcessor, MissingFileShowsTheScreenOrAStatus) {
  ProcessorRun silent({kOld});
  EXPECT_EQ(silent.Initialize(u"-SILENT -ABSOLUTE_FIRMWARE_FILE_PATH=\\nowhere\\fw.vbin", false), kSuccess);
  EXPECT_EQ(silent.mEngine->mSwitches, 0);
  ProcessorRun status({kOld});
  EXPECT_EQ(
      status.Initialize(u"-RETURN_UPDATE_MODE_STATUS -ABSOLUTE_FIRMWARE_FILE_PATH=\\nowhere\\fw.vbin", false),
      kRunSettled);
  EXPECT_EQ(GetExitStatus(), 4);
}

TEST(UpdateProcessor, ResolvesTheFirmwareFile) {
  struct Case {
    const char16_t* options;
    String expected;
  };
  const String program = TF::GetApplicationFolder(TF::kProgramFolderId);
  const Case cases[] = {
      {u"", program + u"\\ProductionApp.vbin"},
      {u"-FIRMWARE_IMAGE_NAME=Other.vbin", program + u"\\Other.vbin"},
      {u"-firmware_image_name=", program + u"\\"},
      {u"-FIRMWARE_IMAGE_NAME= x", program + u"\\ProductionApp.vbin"},
      {u"-FIRMWARE_IMAGE_NAME=a -ABSOLUTE_FIRMWARE_FILE_PATH=\\b", u"\\b"},
      {u"-ABSOLUTE_FIRMWARE_FILE_PATH=\"\\c d\" -SILENT", u"\"\\c d\""},
      {u"-ABSOLUTE_FIRMWARE_FILE_PATH=\"\\c d -SILENT", u"\"\\c d -SILENT"},
  };
  for (const Case& entry : cases) {
    ProcessorRun run({});
    run.Initialize(entry.options, false);
    String path;
    run.mEngine->GetFirmwareFilePath(path);
    EXPECT_EQ(TF::ToUtf8(path), TF::ToUtf8(entry.expected));
  }
}

TEST(UpdateProcessor, DeviceThatCannotBeUpdatedStaysAsItIs) {
  for (const bool status : {false, true}) {
    ProcessorRun run({});
    run.mEngine->SetDeviceState(DEVICE_CANNOT_BE_UPDATED);
    EXPECT_EQ(run.Initialize(status ? u"-RETURN_UPDATE_MODE_STATUS" : u"-SILENT"),
              status ? kRunSettled : kSuccess);
    EXPECT_EQ(GetExitStatus(), status ? 1 : 0);
    String path;
    EXPECT_EQ(run.mEngine->GetFirmwareFilePath(path), TF::kFailure);
    EXPECT_EQ(run.mEngine->GetDeviceState(), DEVICE_CANNOT_BE_UPDATED);
  }
}

TEST(UpdateProcessor, EngineFailureThrowsWithItsCode) {
  ProcessorRun run({});
  run.mEngine->mInitializeResult = TF::kOutOfMemory;
  try {
    run.Initialize(u"");
    FAIL();
  } catch (const TF::FailedResultException& exception) {
    EXPECT_EQ(std::string(exception.what())
                  .rfind("Failed Result : TFRESULT = 8007000E : LUpdateProcessor::Initialize : "
                         "Engine\\UpdateProcessor : Line ",
                         0),
              0u);
  }
}

TEST(UpdateProcessor, LaterInitializeKeepsTheFirstLineAndClearsTheResult) {
  ProcessorRun run({kUpdateMode});
  EXPECT_EQ(run.Initialize(u"-SILENT"), kRunSettled);
  EXPECT_EQ(run.mEngine->GetUpdateResult(false), UPDATE_SENT);
  EXPECT_FALSE(run.mProcessor->IsExitAllowed());
  run.mEngine->SetDeviceState(DEVICE_NOT_IN_UPDATE_MODE);
  run.mEngine->mDevices = {kNew};
  EXPECT_EQ(run.mProcessor->Initialize(u"other -ALWAYS_UPDATE"), kRunSettled);
  EXPECT_EQ(run.mEngine->mInitializedWith.back(), u"other -ALWAYS_UPDATE");
  EXPECT_FALSE(run.mProcessor->GetAllowDowngrade());
  EXPECT_EQ(run.mEngine->GetUpdateResult(false), UPDATE_NONE);
  EXPECT_TRUE(run.mProcessor->IsExitAllowed());
  run.mProcessor->Reinitialize();
  EXPECT_NE(run.mEngine->mInitializedWith.back(), u"other -ALWAYS_UPDATE");
}

TEST(UpdateProcessor, DowngradeFlagTellsAChange) {
  ProcessorRun run({});
  EXPECT_EQ(run.mProcessor->SetAllowDowngrade(false), TF::kNothingDone);
  EXPECT_EQ(run.mProcessor->SetAllowDowngrade(true), kSuccess);
  EXPECT_TRUE(run.mProcessor->GetAllowDowngrade());
}

TEST(UpdateProcessor, InterruptedRunReportsNothing) {
  ProcessorRun run({kUpdateMode});
  EXPECT_TRUE(run.mProcessor->RequestExit());
  EXPECT_EQ(run.Initialize(u"-SILENT -RETURN_UPDATE_MODE_STATUS"), kRunSettled);
  EXPECT_EQ(GetExitStatus(), 0);
  EXPECT_EQ(run.mEngine->mUpdates, 0);
}

}  // namespace
