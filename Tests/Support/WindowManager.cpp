#include "Tests/Support/WindowManager.h"

#include <cstdlib>
#include <stdexcept>

#include "Tests/Support/Eventually.h"

namespace TestSupport {

WindowManager::WindowManager() : mProgram({"openbox", "--sm-disable"}) {
  const auto answers = [] { return std::system("wmctrl -m >/dev/null 2>&1") == 0; };
  if (!Eventually([&] { return !mProgram.IsRunning() || answers(); }) || !mProgram.IsRunning())
    throw std::runtime_error("the window manager does not start");
}

}  // namespace TestSupport
