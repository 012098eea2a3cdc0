#include "Engine/UpdateEngineInterface.h"

#include <gtest/gtest.h>

#include <thread>

#include "TFFramework/ObjectBase/Wrappers.h"
#include "Tests/Engine/FakeUpdateEngine.h"
#include "Tests/Support/Engine/NotificationRecorder.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using namespace EngineTest;
using TF::kFailure;
using TF::kInvalidArgument;
using TF::kSuccess;
using TF::String;
using Definition = LUpdateEngineInterface::DeviceDefinition;
using Device = LFakeUpdateEngine::Device;
using Texts = std::vector<std::string>;

constexpr std::uint32_t kLongWaitMs = 30000;

FirmwareVersionInfo Version(std::uint32_t major, std::uint32_t minor, std::uint32_t patch,
                            std::uint32_t build) {
  return {major, minor, patch, build, String::Format(u"%d.%d.%d.%d", major, minor, patch, build)};
}

// A file and a device in update mode: a transfer may start.
void MakeReady(const FakeEngineOwner& engine, const TestSupport::TemporaryFolder& folder) {
  folder.WriteFile("fw.vbin", "x");
  ASSERT_EQ(engine->SetFirmwareFile(String(folder.InnerEntry("fw.vbin"))), kSuccess);
  engine->mDevices = {{true, REASON_NONE, {}}};
  engine->SetDeviceState(NO_DEVICE_FOUND);
  ASSERT_EQ(engine->ScanForDevice(), kSuccess);
  ASSERT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
}

TEST(UpdateEngineInterface, ScanMovesTheStateByWhatItFinds) {
  struct Case {
    std::vector<Device> devices;
    TFRESULT refresh;
    std::int32_t state;
    std::int32_t selected;
    Texts notifications;
  };
  const Device normal;
  const Device update{true, REASON_NONE, {}};
  const Device broken{false, REASON_FILE_ACCESS_FAILURE, {}};
  const Case cases[] = {
      {{}, kSuccess, NO_DEVICE_FOUND, -1, {}},
      {{normal}, kSuccess, DEVICE_NOT_IN_UPDATE_MODE, 0, {"device 5<3"}},
      {{update}, kSuccess, DEVICE_IN_UPDATE_MODE, 0, {"device 7<3"}},
      {{broken}, kSuccess, DEVICE_CANNOT_BE_UPDATED, 0, {"device 4<3"}},
      {{normal, update}, kSuccess, DEVICES_AVAILABLE_NONE_SELECTED, -1, {"device 3<1"}},
      {{normal}, kFailure, NO_DEVICE_FOUND, -1, {}},
  };
  for (const Case& entry : cases) {
    FakeEngineOwner engine;
    engine->SetDeviceState(NO_DEVICE_FOUND);
    NotificationRecorder recorder;
    engine->mDevices = entry.devices;
    engine->mRefreshResult = entry.refresh;
    EXPECT_EQ(engine->ScanForDevice(), entry.refresh);
    EXPECT_EQ(engine->GetDeviceState(), entry.state);
    EXPECT_EQ(engine->GetSelectedDevice(), entry.selected);
    EXPECT_EQ(recorder.Deliver(), entry.notifications);
  }
}

// Which operations each state allows.
TEST(UpdateEngineInterface, StatesForbidOperations) {
  for (std::int32_t state = NO_DEVICE_DEFINED; state <= UPDATE_IN_PROGRESS; ++state) {
    const bool busy =
        state == SCANNING_FOR_DEVICE || state == TRANSITIONING_TO_UPDATE_MODE || state == UPDATE_IN_PROGRESS;
    FakeEngineOwner engine;
    engine->mDevices = {Device()};
    const auto allowed = [&](auto operation) {
      engine->SetDeviceState(state);
      const TFRESULT result = operation();
      const bool refused = result == kFailure;
      EXPECT_TRUE(!refused || engine->GetDeviceState() == state);
      return !refused;
    };
    EXPECT_EQ(allowed([&] { return engine->SetDeviceDefinitions({Definition()}); }), !busy) << state;
    EXPECT_EQ(allowed([&] { return engine->ScanForDevice(); }), !busy) << state;
    EXPECT_EQ(allowed([&] { return engine->SelectDevice(0); }), !busy && state >= 3) << state;
    String version;
    EXPECT_EQ(allowed([&] { return engine->GetDeviceFirmwareVersion(version); }),
              state >= 4 && engine->GetSelectedDevice() == 0)
        << state;
    std::int32_t reason = 99;
    EXPECT_EQ(allowed([&] { return engine->GetCannotUpdateReason(reason); }),
              state == 4 && engine->GetSelectedDevice() == 0)
        << state;
    EXPECT_EQ(reason, REASON_NONE);
    EXPECT_FALSE(allowed([&] { return engine->StartUpdate(); })) << state;
  }
}

TEST(UpdateEngineInterface, SelectingOutOfRangeSelectsNothing) {
  for (const std::int32_t index : {1, -1, 0x7FFFFFFF}) {
    FakeEngineOwner engine;
    engine->mDevices = {Device()};
    engine->SetDeviceState(NO_DEVICE_FOUND);
    engine->ScanForDevice();
    EXPECT_EQ(engine->SelectDevice(index), kInvalidArgument);
    EXPECT_EQ(engine->GetDeviceState(), DEVICES_AVAILABLE_NONE_SELECTED);
    EXPECT_EQ(engine->GetSelectedDevice(), -1);
    String version;
    EXPECT_EQ(engine->GetDeviceFirmwareVersion(version), kFailure);
    EXPECT_EQ(version, u"N/A");
  }
}

TEST(UpdateEngineInterface, EqualStatesPostNothing) {
  FakeEngineOwner engine;
  NotificationRecorder recorder;
  engine->SetDeviceState(NO_DEVICE_DEFINED);
  engine->SetDeviceDefinitions({Definition()});
  engine->SetDeviceDefinitions({Definition()});
  EXPECT_EQ(recorder.Deliver(), Texts({"device 1<0"}));
  engine->SetNotificationsEnabled(false);
  engine->SetDeviceState(DEVICES_AVAILABLE_NONE_SELECTED);
  engine->OnFoundDeviceListChanged();
  EXPECT_EQ(recorder.Deliver().size(), 1u);
  engine->SetNotificationsEnabled(true);
  engine->OnFoundDeviceListChanged();
  EXPECT_EQ(recorder.Deliver().back(), "NID_FOUND_DEVICE_LIST_CHANGE");
}

TEST(UpdateEngineInterface, EveryExistingFileHasTheConstantVersion) {
  const TestSupport::TemporaryFolder folder;
  folder.WriteFile("fw.vbin", "anything");
  FakeEngineOwner engine;
  NotificationRecorder recorder;
  String text(u"before");
  EXPECT_EQ(engine->GetFirmwareFilePath(text), kFailure);
  const String missing(folder.InnerEntry("none.vbin"));
  EXPECT_EQ(engine->SetFirmwareFile(missing), kFailure);
  EXPECT_EQ(engine->GetFirmwareFilePath(text), kSuccess);
  EXPECT_EQ(text, missing);
  EXPECT_EQ(engine->GetFirmwareFileState(), FILE_INVALID);
  EXPECT_EQ(engine->GetFirmwareFileVersion(text), kFailure);
  EXPECT_EQ(text, u"N/A");
  EXPECT_EQ(engine->SetFirmwareFile(String(folder.InnerEntry("fw.vbin"))), kSuccess);
  EXPECT_EQ(engine->GetFirmwareFileVersion(text), kSuccess);
  EXPECT_EQ(text, u"1.6.0.47");
  EXPECT_EQ(engine->SetFirmwareFile(String(folder.InnerPath())), kFailure) << "a folder is no file";
  EXPECT_EQ(recorder.Deliver(), Texts({"file 1<0", "file 3<1", "file 1<3"}));
}

TEST(UpdateEngineInterface, TakesAVersionForTheFile) {
  const TestSupport::TemporaryFolder folder;
  folder.WriteFile("fw.vbin", "x");
  FakeEngineOwner engine;
  FirmwareVersionInfo version;
  EXPECT_EQ(engine->SetFirmwareFileAndVersion(String(), Version(1, 2, 3, 4)), kFailure);
  EXPECT_EQ(engine->GetFirmwareVersion(version), kFailure);
  EXPECT_EQ(version.mPatch, 3u);
  EXPECT_EQ(engine->SetFirmwareFileAndVersion(String(folder.InnerEntry("fw.vbin")), Version(2, 0, 0, 1)),
            kSuccess);
  EXPECT_EQ(engine->GetFirmwareVersion(version), kSuccess);
  EXPECT_EQ(version.mMajor, 2u);
  engine->ForceFileState(FILE_FOUND_VERSION_UNKNOWN);
  engine->SetFirmwareVersion(Version(3, 0, 0, 0));
  EXPECT_EQ(engine->GetFirmwareFileState(), FILE_FOUND_VERSION_KNOWN);
}

TEST(UpdateEngineInterface, ComparesThreeNumbersOfTheVersions) {
  struct Case {
    FirmwareVersionInfo file, device;
    bool newer;
  };
  const Case cases[] = {
      {Version(1, 6, 0, 47), Version(1, 6, 0, 46), false},
      {Version(1, 6, 1, 0), Version(1, 6, 0, 99), true},
      {Version(1, 7, 0, 0), Version(1, 6, 9, 0), true},
      {Version(2, 0, 0, 0), Version(1, 9, 9, 9), true},
      {Version(1, 5, 9, 0), Version(1, 6, 0, 0), false},
      {Version(0xFFFFFFFF, 0, 0, 0), Version(1, 0, 0, 0), true},
  };
  const TestSupport::TemporaryFolder folder;
  folder.WriteFile("fw.vbin", "x");
  for (const Case& entry : cases) {
    FakeEngineOwner engine;
    EXPECT_FALSE(engine->IsFirmwareFileNewer());
    engine->SetFirmwareFileAndVersion(String(folder.InnerEntry("fw.vbin")), entry.file);
    EXPECT_FALSE(engine->IsFirmwareFileNewer());
    engine->mDevices = {{false, REASON_NONE, entry.device}};
    engine->SetDeviceState(NO_DEVICE_FOUND);
    engine->ScanForDevice();
    EXPECT_EQ(engine->IsFirmwareFileNewer(), entry.newer) << TF::ToUtf8(entry.device.mText);
  }
}

TEST(UpdateEngineInterface, ReadsTheVersionFromTheFileName) {
  struct Case {
    const char16_t* path;
    const char* version;  // Null: refused.
  };
  const Case cases[] = {
      {u"\\x\\Firmware_V1_23.bin", "1.2.3"},
      {u"\\x\\Firmware_V12_34.bin", "12.3.4"},
      {u"\\x\\firmware_v1_23", "1.2.3"},
      {u"\\x\\Firmware_V123_45.bin", nullptr},
      {u"\\x\\Firmware_V1_2.bin", nullptr},
      {u"\\x\\Firmware_V", nullptr},
      {u"\\x\\Firmware_V1", nullptr},
      {u"\\x\\Firmware_V1_", nullptr},
      {u"\\x\\Firmware_Vx_12.bin", nullptr},
      {u"\\x_V1_23\\Firmware.bin", nullptr},
      {u"", nullptr},
  };
  for (const Case& entry : cases) {
    FakeEngineOwner engine;
    engine->SetFirmwareFileAndVersion(entry.path, Version(9, 9, 9, 9));
    EXPECT_EQ(engine->ParseFirmwareVersionFromFileName(), entry.version != nullptr) << TF::ToUtf8(entry.path);
    FirmwareVersionInfo version;
    engine->GetFirmwareVersion(version);
    EXPECT_EQ(TF::ToUtf8(version.mText), entry.version ? entry.version : "9.9.9.9");
    EXPECT_EQ(version.mBuild, entry.version ? 0u : 9u);
  }
}

TEST(UpdateEngineInterface, UpdateRunsOnTheWorkerAndReportsItsEnd) {
  const TestSupport::TemporaryFolder folder;
  for (const TFRESULT outcome : {kSuccess, kFailure}) {
    FakeEngineOwner engine;
    MakeReady(engine, folder);
    NotificationRecorder recorder;
    TF::Event go(true);
    engine->mUpdate = [&] {
      go.Wait(kLongWaitMs);
      return outcome;
    };
    ASSERT_EQ(engine->StartUpdate(), kSuccess);
    EXPECT_EQ(engine->GetUpdateResult(true), UPDATE_RUNNING) << "a running result is never cleared";
    EXPECT_EQ(engine->StartUpdate(), kFailure) << "one update at a time";
    EXPECT_EQ(engine->WaitForUpdateCompletion(1), kFailure);
    EXPECT_FALSE(engine->RequestExit());
    go.Set();
    EXPECT_EQ(engine->WaitForUpdateCompletion(kLongWaitMs), kSuccess);
    engine->Shutdown();
    EXPECT_EQ(recorder.Deliver(), Texts({"device 8<7", outcome == kSuccess ? "completed 1" : "completed 0"}));
    EXPECT_EQ(engine->GetUpdateResult(false), outcome == kSuccess ? UPDATE_SENT : UPDATE_FAILED);
    EXPECT_EQ(engine->GetUpdateResult(true), outcome == kSuccess ? UPDATE_SENT : UPDATE_FAILED);
    EXPECT_EQ(engine->GetUpdateResult(true), UPDATE_NONE);
  }
}

// The completion event may still be set by an earlier task.
TEST(UpdateEngineInterface, WaitIsNotFooledByAnEarlierCompletion) {
  const TestSupport::TemporaryFolder folder;
  FakeEngineOwner engine;
  MakeReady(engine, folder);
  ASSERT_EQ(engine->StartUpdate(), kSuccess);
  while (engine->GetUpdateResult(false) == UPDATE_RUNNING) std::this_thread::yield();
  engine->ForceResult(UPDATE_RUNNING);
  EXPECT_EQ(engine->WaitForUpdateCompletion(50), kFailure);
  engine->ForceResult(UPDATE_SENT);
  EXPECT_EQ(engine->WaitForUpdateCompletion(0), kSuccess);
}

TEST(UpdateEngineInterface, UpdateThatCannotBeHandedOverLeavesEverythingAsItWas) {
  const TestSupport::TemporaryFolder folder;
  FakeEngineOwner engine;
  MakeReady(engine, folder);
  engine->ForceResult(UPDATE_ABORTED);
  engine->StopThreader();
  EXPECT_EQ(engine->StartUpdate(), kFailure);
  EXPECT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
  EXPECT_EQ(engine->GetUpdateResult(false), UPDATE_ABORTED);
  EXPECT_EQ(engine->mUpdates, 0);
}

TEST(UpdateEngineInterface, NothingStartsOnceTheExitIsRequested) {
  const TestSupport::TemporaryFolder folder;
  FakeEngineOwner engine;
  MakeReady(engine, folder);
  EXPECT_TRUE(engine->RequestExit());
  EXPECT_EQ(engine->StartUpdate(), kFailure);
  EXPECT_EQ(engine->GetDeviceState(), DEVICE_IN_UPDATE_MODE);
}

TEST(UpdateEngineInterface, WorkerKnowsItsTwoTasks) {
  FakeEngineOwner engine;
  using Task = LUpdateEngineInterface::ThreadWorkerTask;
  EXPECT_EQ(engine->Work(nullptr), kFailure);
  EXPECT_EQ(engine->Work(TF::MakeRC<TF::LHolder<int>>(1)), kFailure);
  EXPECT_EQ(engine->Work(TF::MakeRC<TF::LHolder<Task>>(static_cast<Task>(2))), kFailure);
  EXPECT_EQ(engine->Work(TF::MakeRC<TF::LHolder<Task>>(LUpdateEngineInterface::TASK_ENTER_UPDATE_MODE)),
            kSuccess);
  EXPECT_EQ(engine->mSwitches, 1);
}

TEST(UpdateEngineInterface, AutomaticTransferSwitchesOnTheWorker) {
  FakeEngineOwner engine;
  engine->SetTransferAutomatic();
  engine->mStateAfterSwitch = DEVICE_IN_UPDATE_MODE;
  NotificationRecorder recorder;
  EXPECT_EQ(engine->EnterUpdateMode(), kSuccess);
  while (engine->GetDeviceState() != DEVICE_IN_UPDATE_MODE) std::this_thread::yield();
  engine->Shutdown();
  EXPECT_EQ(engine->mSwitches, 1);
  EXPECT_EQ(recorder.Deliver(), Texts({"device 6<0", "device 7<6"}));
}

TEST(UpdateEngineInterface, DiesWithItsOwner) {
  const std::int64_t before = TF::LRefCountedObject::GetLiveCount();
  {
    FakeEngineOwner engine;
    engine->GetDeviceState();
  }
  EXPECT_EQ(TF::LRefCountedObject::GetLiveCount(), before);
}

}  // namespace
