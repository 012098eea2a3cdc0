#include "Tests/Support/TestScreen.h"

#include <cstdlib>

#include "Tests/Support/WindowManager.h"
#include "Tests/Support/XServer.h"

namespace TestSupport {

namespace {

struct Screen {
  XServer mServer{"800x600x24"};
  WindowManager mManager;
};

}  // namespace

void StartTestScreen() {
  static const Screen screen;
  setenv("DISPLAY", screen.mServer.GetDisplay().c_str(), 1);
  unsetenv("WAYLAND_DISPLAY");
}

}  // namespace TestSupport
