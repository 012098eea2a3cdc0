#pragma once

#include <atomic>
#include <cstdint>

#include "Engine/FirmwareUpdateNotifications.h"
#include "Engine/FirmwareVersionInfo.h"
#include "Engine/UpdateStates.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Threads/LEvent.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Threads/RetriggerableThreader.h"
#include "TFFramework/Threads/ThreadWorker.h"
#include "TFFramework/Utilities/Storage/Array.h"
#include "TFFramework/Utilities/Storage/StringT.h"

// The heart of the program: in which state the device is, what is known of the firmware
// file, how far an update has come, and which operation is allowed when. What belongs to one
// transport is left pure. An operation that its state forbids gives kFailure and changes
// nothing.
//
// Every change is posted on the center "application", and leaves a diagnostics record.
//
// Threads: all operations on the main thread, but Work and with it ExecuteUpdate, which run
// on the engine's worker. While the device state is UPDATE_IN_PROGRESS the worker alone
// changes states.
class LUpdateEngineInterface : public virtual TF::LThreadWorker, public virtual TF::LRefCountedObject {
 public:
  // What travels to the worker.
  enum ThreadWorkerTask : std::int32_t {
    TASK_ENTER_UPDATE_MODE = 0,
    TASK_PERFORM_UPDATE = 1,
  };

  // How to reach one kind of device.
  struct DeviceDefinition {
    std::uint32_t mUserData[4] = {};
    TF::String mCapturePortName;
    TF::String mUpdateCapturePortName;
    TF::String mRenderPortName;
    TF::String mUpdateRenderPortName;
    TF::String mDescription;
  };

  static constexpr std::int32_t kNoDeviceSelected = -1;

  LUpdateEngineInterface();
  // The owner has called Shutdown before.
  ~LUpdateEngineInterface() override;

  virtual TFRESULT Initialize(const TF::String& commandLine);
  virtual std::int32_t GetDeviceState();
  virtual TFRESULT Reserved(unsigned value);
  virtual TFRESULT SetDeviceDefinitions(const TF::Array<DeviceDefinition>& definitions);
  // Looks for the defined devices and selects the one that is there.
  virtual TFRESULT ScanForDevice();
  virtual TFRESULT GetFoundDevices(TF::Array<DeviceDefinition>& out) = 0;
  // kInvalidArgument, with no device selected, when index is out of range.
  virtual TFRESULT SelectDevice(std::int32_t index);
  virtual std::int32_t GetSelectedDevice();
  virtual TFRESULT GetCannotUpdateReason(std::int32_t& reason);
  // "N/A" with a failure.
  virtual TFRESULT GetDeviceFirmwareVersion(TF::String& out);
  virtual TFRESULT RefreshDeviceState() = 0;
  virtual std::int32_t GetDeviceTransitionMode();
  virtual TFRESULT SwitchDeviceToUpdateMode() = 0;
  virtual TFRESULT EnterUpdateMode();
  virtual bool IsFirmwareFileNewer();
  virtual bool IsUpdateSupported();
  // Starts the transfer on the worker; the update result is UPDATE_RUNNING from here on. When
  // the worker cannot take it, kFailure, and the device state is 7 and the result as before.
  virtual TFRESULT StartUpdate();
  // kFailure when a running transfer does not end within timeoutMs in all; it runs on.
  virtual TFRESULT WaitForUpdateCompletion(std::uint32_t timeoutMs);
  virtual TFRESULT AbortUpdate() = 0;
  // With clearIfDone a finished result becomes UPDATE_NONE after it was read.
  virtual std::int32_t GetUpdateResult(bool clearIfDone);
  virtual std::int32_t GetFirmwareFileState();
  virtual TFRESULT SetFirmwareFileAndVersion(const TF::String& path, const FirmwareVersionInfo& version);
  // Keeps the path in any case. Every existing file counts as version 1.6.0.47.
  virtual TFRESULT SetFirmwareFile(const TF::String& path);
  virtual void SetFirmwareVersion(const FirmwareVersionInfo& version);
  virtual TFRESULT GetFirmwareFilePath(TF::String& out);
  // "N/A" with a failure.
  virtual TFRESULT GetFirmwareFileVersion(TF::String& out);
  virtual TFRESULT GetFirmwareVersion(FirmwareVersionInfo& out);
  // Takes the version from a file name that holds "_V", one or two digits, "_", two digits.
  virtual bool ParseFirmwareVersionFromFileName();
  virtual void SetDeviceState(std::int32_t state);
  virtual bool IsTransferAutomatic();
  // progress from 0.0 to 1.0; secondsRemaining -1 when unknown.
  virtual void PostUpdateProgress(std::uint32_t stage, double progress, bool estimateTimeLocally,
                                  std::int32_t secondsRemaining, bool reservedFlag, TF::String statusText);
  virtual void OnDeviceStateChanged(std::int32_t newState, std::int32_t oldState);
  virtual void OnFirmwareFileStateChanged(std::int32_t newState, std::int32_t oldState);
  virtual void OnFoundDeviceListChanged();
  virtual void OnUpdateCompleted(bool success);
  virtual void SetFirmwareFileState(std::int32_t state);
  // Rebuilds the list of found devices.
  virtual TFRESULT RefreshDeviceList() = 0;
  virtual std::uint32_t GetDeviceCount() = 0;
  virtual bool IsDeviceInUpdateMode(std::uint32_t index) = 0;
  virtual TFRESULT GetDeviceStatus(std::uint32_t index, std::int32_t& reason) = 0;
  virtual TFRESULT GetDeviceVersion(std::uint32_t index, FirmwareVersionInfo& out) = 0;
  virtual TFRESULT ExecuteUpdate() = 0;

  TFRESULT Work(const TF::RCPtr<TF::LRefCountedObject>& data) override;

  // Asks a run to end, from any thread: probes give up, and no update starts any more. False,
  // and nothing happens, while an update is in progress.
  bool RequestExit();
  bool IsExitRequested() const { return mExitRequested; }

  // Waits for a running transfer up to the stop wait of the framework's threads and gives up
  // what the engine holds of itself. The owner calls it before it lets go.
  virtual void Shutdown();

  void SetNotificationsEnabled(bool enabled) { mNotificationsEnabled = enabled; }

 protected:
  // True when the selected device is one of the found ones.
  bool HasSelectedDevice();
  // Wakes whoever waits for a device, on the thread of RequestExit.
  virtual void OnExitRequested() {}

  std::atomic<bool> mNotificationsEnabled{true};
  TF::RetriggerableThreader mThreader;
  TF::RCPtr<TF::LEvent> mWorkDoneEvent;
  std::atomic<std::int32_t> mDeviceState{NO_DEVICE_DEFINED};
  TF::Array<DeviceDefinition> mDeviceDefinitions;
  std::atomic<std::int32_t> mSelectedDevice{kNoDeviceSelected};
  std::atomic<std::int32_t> mUpdateResult{UPDATE_NONE};
  std::atomic<bool> mAbortRequested{false};
  bool mTransferAutomatic = false;
  std::int32_t mFirmwareFileState = NO_FILE_DEFINED;
  TF::String mFirmwareFilePath;
  FirmwareVersionInfo mFirmwareVersion;

 private:
  bool IsBusyState() const;
  TFRESULT StartTransfer();
  TFRESULT RetriggerWorker(ThreadWorkerTask task);

  TF::Mutex mExitMutex;  // Keeps an exit request and the start of an update apart.
  std::atomic<bool> mExitRequested{false};
};
