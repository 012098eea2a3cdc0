#include "Engine/ExitStatus.h"

#include <atomic>

namespace {

std::atomic<std::int32_t> gExitStatus{kExitNothingToReport};

}  // namespace

void SetExitStatus(std::int32_t status) {
  gExitStatus.store(status);
}

std::int32_t GetExitStatus() {
  return gExitStatus.load();
}
