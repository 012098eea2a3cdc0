#pragma once

#include <cstdint>

enum DeviceState : std::int32_t {
  NO_DEVICE_DEFINED = 0,
  NO_DEVICE_FOUND = 1,      // Definitions exist, no defined device is connected.
  SCANNING_FOR_DEVICE = 2,  // For a scan in the background; nothing enters it.
  DEVICES_AVAILABLE_NONE_SELECTED = 3,
  DEVICE_CANNOT_BE_UPDATED = 4,
  DEVICE_NOT_IN_UPDATE_MODE = 5,  // Runs its normal firmware.
  TRANSITIONING_TO_UPDATE_MODE = 6,
  DEVICE_IN_UPDATE_MODE = 7,  // A transfer may start.
  UPDATE_IN_PROGRESS = 8,
};

enum FirmwareFileState : std::int32_t {
  NO_FILE_DEFINED = 0,
  FILE_INVALID = 1,  // The path names nothing that exists.
  FILE_FOUND_VERSION_UNKNOWN = 2,
  FILE_FOUND_VERSION_KNOWN = 3,
};

// Outcome of the last transfer.
enum UpdateResult : std::int32_t {
  UPDATE_NONE = 0,
  UPDATE_RUNNING = 1,
  UPDATE_FAILED = 2,
  UPDATE_ABORTED = 3,
  UPDATE_SENT = 4,  // Whether the device took it all shows only after it has restarted.
};

// Why a device cannot be updated. The first two are for engines that can tell them.
enum CannotUpdateReason : std::int32_t {
  REASON_NONE = 0,
  REASON_DRIVER_TOO_OLD = 1,
  REASON_SYSTEM_FAILURE = 2,
  REASON_FILE_ACCESS_FAILURE = 3,
  REASON_DEVICE_ACCESS_FAILURE = 4,
};

// What the screen expects of the device around its restarts.
enum DeviceTransitionMode : std::int32_t {
  TRANSITION_FOLLOWED_AFTER_TRANSFER = 1,
  TRANSITION_AWAITED_BEFORE_TRANSFER = 3,
  TRANSITION_AWAITED_AND_FOLLOWED = 4,
};

// The names above, for diagnostics.
const char* NameOfDeviceState(std::int32_t state);
const char* NameOfFirmwareFileState(std::int32_t state);
const char* NameOfCannotUpdateReason(std::int32_t reason);
