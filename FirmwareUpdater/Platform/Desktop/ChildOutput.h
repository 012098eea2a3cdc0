#pragma once

#include <string>
#include <vector>

namespace Platform {

// How a program ended and what it printed until then.
struct ChildOutput {
  enum class End { kNotStarted, kCancelled, kKilled, kExited };

  End mEnd = End::kNotStarted;
  int mStatus = 0;      // Of one that exited.
  std::string mOutput;  // Without what its own children printed after its end.
  std::string mError;   // Why it was not started or was killed.
};

// Runs a program that is found like in a shell, by its name in front, and waits for its end. It inherits
// the environment, standard error, and nothing else; text that it prints is UTF-8 with programs of GTK. A
// descriptor that can be read from kills it, as does output that never ends.
//
// Threads: any.
ChildOutput RunForOutput(const std::vector<std::string>& arguments, int cancelDescriptor);

}  // namespace Platform
