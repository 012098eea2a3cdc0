#include "UI/ScreenMap.h"

#include "Engine/UpdateStates.h"

namespace {

bool HasGoodFile(const ScreenState& state) {
  return state.mFileState == FILE_FOUND_VERSION_KNOWN;
}

bool IsDeviceInformationVisible(const ScreenState& state, const ScreenFacts& facts) {
  const std::int32_t device = state.mDeviceState;
  if (facts.mHasTransitionControl && device == TRANSITIONING_TO_UPDATE_MODE) return false;
  if (device == DEVICE_CANNOT_BE_UPDATED) return false;
  if (device < DEVICE_CANNOT_BE_UPDATED) return HasGoodFile(state);
  if (device == DEVICE_NOT_IN_UPDATE_MODE) return HasGoodFile(state) && facts.IsUpdateAllowed();
  return !HasGoodFile(state) || facts.IsUpdateAllowed();
}

bool IsFileInformationVisible(const ScreenState& state) {
  const std::int32_t device = state.mDeviceState;
  return (device < DEVICE_CANNOT_BE_UPDATED || device == DEVICE_NOT_IN_UPDATE_MODE) && !HasGoodFile(state);
}

bool CanUpdateStart(const ScreenState& state, const ScreenFacts& facts) {
  const std::int32_t device = state.mDeviceState;
  return HasGoodFile(state) && facts.IsUpdateAllowed() &&
         (device == DEVICE_NOT_IN_UPDATE_MODE || device == DEVICE_IN_UPDATE_MODE);
}

bool IsDeviceVersionVisible(const ScreenState& state, const ScreenFacts& facts) {
  if (facts.mDeviceVersion == DeviceVersion::kUnknown || !HasGoodFile(state)) return false;
  const bool isNormal = state.mDeviceState == DEVICE_NOT_IN_UPDATE_MODE;
  const bool isSwitching = state.mDeviceState == TRANSITIONING_TO_UPDATE_MODE;
  if (facts.mTransitionMode == 0 && isSwitching) return true;
  return facts.mDeviceVersion == DeviceVersion::kKnown && isNormal;
}

bool IsCannotUpdateVisible(const ScreenState& state, const ScreenFacts& facts) {
  const std::int32_t device = state.mDeviceState;
  if (facts.mHasTransitionControl && device == TRANSITIONING_TO_UPDATE_MODE) return false;
  if (device <= DEVICE_CANNOT_BE_UPDATED) return device == DEVICE_CANNOT_BE_UPDATED;
  return HasGoodFile(state) && !facts.IsUpdateAllowed();
}

// After a transfer: again with the old version, or not there at all, once nobody waits for it any more.
bool IsRestartWorthwhile(const ScreenState& state, const ScreenFacts& facts) {
  if (facts.mUpdateSent) return false;
  return state.mDeviceState != DEVICE_NOT_IN_UPDATE_MODE || facts.mFileIsNewer;
}

class Visibility {
 public:
  explicit Visibility(const ScreenState& state, const ScreenFacts& facts) {
    Show(ScreenControl::kDeviceFirmwareVersion, IsDeviceVersionVisible(state, facts));
  }
  Visibility& Show(ScreenControl control, bool shown = true) {
    mShown[static_cast<std::size_t>(control)] = shown;
    return *this;
  }
  const ScreenVisibility& Get() const { return mShown; }

 private:
  ScreenVisibility mShown{};
};

ScreenVisibility FindVisibilityBefore(const ScreenState& state, const ScreenFacts& facts) {
  const std::int32_t device = state.mDeviceState;
  const bool isSwitching = device == TRANSITIONING_TO_UPDATE_MODE;
  const bool isBusy = device == UPDATE_IN_PROGRESS;
  const bool canStart = CanUpdateStart(state, facts);
  const bool isFileThere = state.mFileState >= FILE_FOUND_VERSION_UNKNOWN;
  const bool canScan = device == NO_DEVICE_FOUND || device == DEVICES_AVAILABLE_NONE_SELECTED;
  return Visibility(state, facts)
      .Show(ScreenControl::kDeviceInformation, IsDeviceInformationVisible(state, facts))
      .Show(ScreenControl::kFirmwareFileInformation, IsFileInformationVisible(state))
      .Show(ScreenControl::kProcessInformation, canStart || isSwitching || isBusy)
      .Show(ScreenControl::kFileFirmwareVersion, HasGoodFile(state))
      .Show(ScreenControl::kCannotUpdateError, IsCannotUpdateVisible(state, facts))
      .Show(ScreenControl::kProgressBar, isBusy)
      .Show(ScreenControl::kUpdateFirmware, canStart)
      .Show(ScreenControl::kExit, !isSwitching)
      .Show(ScreenControl::kReinitialize, device == DEVICE_CANNOT_BE_UPDATED && isFileThere)
      .Show(ScreenControl::kScanForDevice, !facts.mScansInBackground && HasGoodFile(state) && canScan)
      .Show(ScreenControl::kManualReadyForUpdate, isSwitching)
      .Show(ScreenControl::kAbort)
      .Show(ScreenControl::kTransitioning, isSwitching)
      .Show(ScreenControl::kDeviceNotFound, device == NO_DEVICE_FOUND && isFileThere)
      .Get();
}

}  // namespace

const char16_t* FindDeviceInformationKey(std::int32_t deviceState) {
  switch (deviceState) {
    case NO_DEVICE_DEFINED:
      return u"LABEL_NO_DEVICE_DEFINED";
    case NO_DEVICE_FOUND:
      return u"LABEL_NO_DEVICE_FOUND";
    case SCANNING_FOR_DEVICE:
      return u"LABEL_SCANNING_FOR_DEVICE";
    case DEVICES_AVAILABLE_NONE_SELECTED:
      return u"LABEL_DEVICES_AVAILABLE_NONE_SELECTED";
    case DEVICE_NOT_IN_UPDATE_MODE:
      return u"LABEL_DEVICE_NOT_IN_UPDATE_MODE";
    case DEVICE_IN_UPDATE_MODE:
      return u"LABEL_DEVICE_IN_UPDATE_MODE";
    default:
      return nullptr;
  }
}

const char16_t* FindFirmwareFileInformationKey(std::int32_t fileState) {
  switch (fileState) {
    case NO_FILE_DEFINED:
      return u"LABEL_NO_FILE_DEFINED";
    case FILE_INVALID:
    case FILE_FOUND_VERSION_UNKNOWN:
      return u"LABEL_FIRMARE_FILE_INVALID";
    case FILE_FOUND_VERSION_KNOWN:
      return u"LABEL_FIRMARE_FILE_FOUND_VERSION_KNOWN";
    default:
      return nullptr;
  }
}

const char16_t* FindProcessInformationKey(const ScreenState& state, const ScreenFacts& facts) {
  switch (state.mUpdateResult) {
    case UPDATE_NONE:
      if (state.mDeviceState == TRANSITIONING_TO_UPDATE_MODE) return kTransitioningKey;
      if (state.mDeviceState == DEVICE_IN_UPDATE_MODE) return nullptr;
      return facts.mFileIsNewer ? u"LABEL_READY_FOR_UPDATE" : u"LABEL_READY_FOR_DOWNGRADE_UPDATE";
    case UPDATE_RUNNING:
      return u"LABEL_UPDATE_IN_PROGRESS";
    case UPDATE_ABORTED:
      return u"LABEL_UPDATE_ABORTED";
    case UPDATE_SENT:
      // Whether a lower version may be sent says nothing of what the device runs now.
      if (state.mDeviceState == DEVICE_NOT_IN_UPDATE_MODE)
        return facts.mFileIsNewer ? u"LABEL_UPDATE_SENT_BUT_NOT_SUCCESSFUL" : u"LABEL_UPDATE_SUCCEEDED";
      if (!facts.mUpdateSent) return u"LABEL_UPDATE_SUCESS_UNKNOWN";
      return facts.mHasInstallingText ? kInstallingKey : u"LABEL_UPDATE_IN_PROGRESS";
    default:
      return nullptr;
  }
}

const char16_t* FindCannotUpdateKey(const ScreenFacts& facts) {
  if (facts.mCannotUpdateReason == REASON_DRIVER_TOO_OLD) return u"LABEL_DRIVER_IS_TOO_OLD";
  if (!facts.IsUpdateAllowed()) return u"LABEL_UPDATE_NOT_NEEDED";
  switch (facts.mCannotUpdateReason) {
    case REASON_NONE:
      return u"LABEL_DEVICE_CANNOT_BE_UPDATED_NO_REASON";
    case REASON_SYSTEM_FAILURE:
      return u"LABEL_CANNOT_UPDATE_SYSTEM_FAILURE";
    case REASON_FILE_ACCESS_FAILURE:
      return u"LABEL_CANNOT_UPDATE_FILE_ACCESS_FAILURE";
    case REASON_DEVICE_ACCESS_FAILURE:
      return u"LABEL_DEVICE_DEVICE_ACCESS_FAILURE";
    default:
      return nullptr;
  }
}

std::optional<ScreenVisibility> FindVisibility(const ScreenState& state, const ScreenFacts& facts) {
  const std::int32_t result = state.mUpdateResult;
  if (result == UPDATE_NONE) return FindVisibilityBefore(state, facts);
  if (result < UPDATE_NONE || result > UPDATE_SENT) return std::nullopt;
  const bool isRunning = result == UPDATE_RUNNING;
  const bool hasFailed = result == UPDATE_FAILED;
  const bool isSent = result == UPDATE_SENT;
  return Visibility(state, facts)
      .Show(ScreenControl::kFirmwareFileInformation, hasFailed)
      .Show(ScreenControl::kProcessInformation, !hasFailed)
      .Show(ScreenControl::kFileFirmwareVersion)
      .Show(ScreenControl::kCannotUpdateError, hasFailed)
      .Show(ScreenControl::kProgressBar, isRunning)
      .Show(ScreenControl::kExit, !isRunning)
      .Show(ScreenControl::kReinitialize, isSent ? IsRestartWorthwhile(state, facts) : !isRunning)
      .Show(ScreenControl::kManualHasUpdated, isSent && state.mDeviceState != DEVICE_NOT_IN_UPDATE_MODE)
      .Show(ScreenControl::kAbort, isRunning)
      .Get();
}

bool IsFileButtonVisible(std::int32_t fileState) {
  return fileState != FILE_FOUND_VERSION_KNOWN;
}
