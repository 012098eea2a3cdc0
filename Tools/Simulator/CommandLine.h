#pragma once

#include <span>
#include <string>
#include <string_view>

#include "Tools/Simulator/SimulatorServer.h"

namespace Simulator {

struct CommandLine {
  ServerOptions mServer;
  std::string mReadyFile;  // Empty: none.
  bool mHelp = false;      // Nothing else counts.
};

// Reads the arguments behind the program's name; "--option VALUE" and "--option=VALUE" are the
// same. Throws std::invalid_argument with a sentence that names the option and what is wrong.
CommandLine ParseCommandLine(std::span<const std::string> arguments);

std::string_view HelpText();

}  // namespace Simulator
