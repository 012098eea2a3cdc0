#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

// What the screen shows, by what the engine says. It knows no controls: who applies it asks the labels' texts
// for the keys, and shows and hides what is there of the controls.

// The three numbers that say how an update stands: UpdateResult, DeviceState and FirmwareFileState.
struct ScreenState {
  std::int32_t mUpdateResult;
  std::int32_t mDeviceState;
  std::int32_t mFileState;
};

enum class DeviceVersion { kUnknown, kEmpty, kKnown };

// What decides beside them.
struct ScreenFacts {
  bool mFileIsNewer = false;  // Than the selected device's firmware.
  bool mDowngradeIsAllowed = false;
  bool mUpdateSent = false;  // The screen has started a transfer whose outcome is open.
  bool mScansInBackground = false;
  bool mHasTransitionControl = false;  // controlTransitioningToUpdateMode is in the skin.
  bool mHasInstallingText = false;     // There is a text for the time between a transfer and the restart.
  std::int32_t mTransitionMode = 0;    // DeviceTransitionMode; 0 for none of them.
  std::int32_t mCannotUpdateReason = 0;
  DeviceVersion mDeviceVersion = DeviceVersion::kUnknown;

  bool IsUpdateAllowed() const { return mDowngradeIsAllowed || mFileIsNewer; }
};

// The keys of the labels' texts; null leaves a label as it is.

inline constexpr const char16_t* kInstallingKey = u"LABEL_UPDATE_TRANSITIONING_AFTER_UPDATE";
inline constexpr const char16_t* kTransitioningKey = u"LABEL_UPDATE_TRANSITIONING_TO_UPDATE_MODE";

const char16_t* FindDeviceInformationKey(std::int32_t deviceState);
const char16_t* FindFirmwareFileInformationKey(std::int32_t fileState);
const char16_t* FindProcessInformationKey(const ScreenState& state, const ScreenFacts& facts);
const char16_t* FindCannotUpdateKey(const ScreenFacts& facts);

// In the order in which they are shown and hidden, since the focus goes by it.
enum class ScreenControl : std::size_t {
  kDeviceInformation,
  kFirmwareFileInformation,
  kProcessInformation,
  kFileFirmwareVersion,
  kDeviceFirmwareVersion,
  kCannotUpdateError,
  kProgressBar,
  kUpdateFirmware,
  kExit,
  kReinitialize,
  kScanForDevice,
  kManualReadyForUpdate,
  kManualHasUpdated,
  kAbort,
  kTransitioning,
  kDeviceNotFound,
  kCount,
};

// By ScreenControl.
using ScreenVisibility = std::array<bool, static_cast<std::size_t>(ScreenControl::kCount)>;

// Nothing for a result that is none of UpdateResult: everything stays as it is.
std::optional<ScreenVisibility> FindVisibility(const ScreenState& state, const ScreenFacts& facts);

// The button that chooses a firmware file goes by the file alone, whatever the result.
bool IsFileButtonVisible(std::int32_t fileState);
