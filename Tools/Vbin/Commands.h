#pragma once

#include <iosfwd>
#include <span>
#include <string>

namespace Vbin {

inline constexpr int kStatusDone = 0;     // Also: the image is valid.
inline constexpr int kStatusInvalid = 1;  // The image is invalid.
inline constexpr int kStatusTrouble = 2;  // Bad arguments, or a file that cannot be read or written.

// The program behind its name: runs one command, writes results to out and complaints to err,
// and gives the exit status.
int RunCommand(std::span<const std::string> arguments, std::ostream& out, std::ostream& err);

}  // namespace Vbin
