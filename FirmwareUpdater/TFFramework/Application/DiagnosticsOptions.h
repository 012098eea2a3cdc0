#pragma once

#include <cstdint>
#include <string>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Where the command line sends the diagnostics: "-DEBUG_CONSOLE" to the terminal,
// "-DEBUG_CONSOLE:port" or "-DEBUG_CONSOLE:port:host" as datagrams.
struct DiagnosticsOptions {
  enum class Route { kDebugger, kConsole, kDatagrams };

  Route mRoute = Route::kDebugger;
  std::int32_t mPort = -1;
  std::string mHost;  // In upper case; empty when none is given.
};

// A port of fewer than two digits is no port: nothing changes then.
DiagnosticsOptions ParseDiagnosticsOptions(const String& commandLine);

// Sets the route of the process's log. Before any other thread exists.
void ApplyDiagnosticsOptions(const DiagnosticsOptions& options);

}  // namespace TF
