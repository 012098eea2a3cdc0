#include "Engine/UpdateStates.h"

#include <cstddef>

namespace {

template <std::size_t N>
const char* NameAt(const char* const (&names)[N], std::int32_t value) {
  return value >= 0 && static_cast<std::size_t>(value) < N ? names[value] : "unknown";
}

}  // namespace

const char* NameOfDeviceState(std::int32_t state) {
  static constexpr const char* kNames[] = {
      "no device defined",        "no device found",          "scanning for device",
      "several devices found",    "device cannot be updated", "device runs its normal firmware",
      "switching to update mode", "device in update mode",    "update in progress"};
  return NameAt(kNames, state);
}

const char* NameOfFirmwareFileState(std::int32_t state) {
  static constexpr const char* kNames[] = {"no file defined", "file not found", "file found, version unknown",
                                           "file found, version known"};
  return NameAt(kNames, state);
}

const char* NameOfCannotUpdateReason(std::int32_t reason) {
  static constexpr const char* kNames[] = {"no reason", "driver too old", "system failure",
                                           "firmware file cannot be read", "device cannot be reached"};
  return NameAt(kNames, reason);
}
