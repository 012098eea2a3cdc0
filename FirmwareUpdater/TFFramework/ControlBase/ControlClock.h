#pragma once

#include <cstdint>

#include "TFFramework/Application/FrameworkApp.h"

namespace TF {

// The application's clock; it stands still without an application.

// Milliseconds of a clock that wraps.
inline std::uint32_t GetControlTicks() {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  return application ? application->GetTickCount() : 0;
}

// Seconds.
inline double GetControlTime() {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  return application ? application->GetTime() : 0;
}

}  // namespace TF
