#pragma once

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace Platform {

// Ends the process with this status at once: what was printed goes out, but no destructor of
// a static object runs under a thread that could not be stopped.
[[noreturn]] inline void ExitProcess(int status) {
  std::cout.flush();
  std::cerr.flush();
  std::fflush(stdout);
  std::_Exit(status);
}

}  // namespace Platform
