#pragma once

#include <functional>

#include "Engine/UpdateEngineInterface.h"

namespace EngineTest {

// The state model over devices that a test writes down instead of a transport.
class LFakeUpdateEngine : public LUpdateEngineInterface {
 public:
  struct Device {
    bool mInUpdateMode = false;
    std::int32_t mReason = REASON_NONE;
    FirmwareVersionInfo mVersion;
  };

  TFRESULT Initialize(const TF::String& commandLine) override {
    mInitializedWith.push_back(commandLine);
    return mInitializeResult;
  }
  TFRESULT GetFoundDevices(TF::Array<DeviceDefinition>&) override { return TF::kSuccess; }
  TFRESULT RefreshDeviceState() override { return TF::kSuccess; }
  TFRESULT SwitchDeviceToUpdateMode() override {
    ++mSwitches;
    SetDeviceState(mStateAfterSwitch);
    return TF::kSuccess;
  }
  TFRESULT AbortUpdate() override { return TF::kSuccess; }
  TFRESULT RefreshDeviceList() override { return mRefreshResult; }
  std::uint32_t GetDeviceCount() override { return static_cast<std::uint32_t>(mDevices.size()); }
  bool IsDeviceInUpdateMode(std::uint32_t index) override { return mDevices.at(index).mInUpdateMode; }
  TFRESULT GetDeviceStatus(std::uint32_t index, std::int32_t& reason) override {
    if (index >= mDevices.size()) return TF::kFailure;
    reason = mDevices[index].mReason;
    return TF::kSuccess;
  }
  TFRESULT GetDeviceVersion(std::uint32_t index, FirmwareVersionInfo& out) override {
    if (index >= mDevices.size()) return TF::kFailure;
    out = mDevices[index].mVersion;
    return TF::kSuccess;
  }
  TFRESULT ExecuteUpdate() override {
    ++mUpdates;
    const TFRESULT result = mUpdate ? mUpdate() : TF::kSuccess;
    mUpdateResult = TF::Failed(result) ? UPDATE_FAILED : UPDATE_SENT;
    return result;
  }

  void StopThreader() { mThreader.Stop(); }
  void SetTransferAutomatic() { mTransferAutomatic = true; }
  void ForceResult(std::int32_t result) { mUpdateResult = result; }
  // Nothing in the program knows a file without its version.
  void ForceFileState(std::int32_t state) { mFirmwareFileState = state; }

  std::vector<Device> mDevices;
  TFRESULT mRefreshResult = TF::kSuccess;
  TFRESULT mInitializeResult = TF::kSuccess;
  std::int32_t mStateAfterSwitch = TRANSITIONING_TO_UPDATE_MODE;
  std::vector<TF::String> mInitializedWith;
  std::atomic<int> mSwitches{0};
  std::atomic<int> mUpdates{0};
  std::function<TFRESULT()> mUpdate;
};

// Gives up what an engine holds of itself when the test ends.
class FakeEngineOwner {
 public:
  FakeEngineOwner() : mEngine(TF::MakeRC<LFakeUpdateEngine>()) {}
  ~FakeEngineOwner() { mEngine->Shutdown(); }
  FakeEngineOwner(const FakeEngineOwner&) = delete;
  FakeEngineOwner& operator=(const FakeEngineOwner&) = delete;
  LFakeUpdateEngine* operator->() const { return mEngine.Get(); }
  const TF::RCPtr<LFakeUpdateEngine>& Get() const { return mEngine; }

 private:
  TF::RCPtr<LFakeUpdateEngine> mEngine;
};

}  // namespace EngineTest
