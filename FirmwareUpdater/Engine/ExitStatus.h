#pragma once

#include <cstdint>

// The exit status of the process: what a script learns of a run. 0 at program start. Any
// thread; the update processor alone sets it.

enum ExitStatus : std::int32_t {
  kExitNothingToReport = 0,
  kExitNoDevice = 1,
  kExitUpdateModeFileNotNewer = 2,
  kExitUpdateModeFileNewer = 3,
  kExitNormalFirmwareFileNotNewer = 4,
  kExitNormalFirmwareFileNewer = 5,
};

void SetExitStatus(std::int32_t status);
std::int32_t GetExitStatus();
