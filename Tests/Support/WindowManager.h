#pragma once

#include "Tests/Support/ChildProgram.h"

namespace TestSupport {

// Frames and focus for the windows on the X server of DISPLAY, without which no window gets the keyboard.
// Throws runtime_error when it does not come up.
class WindowManager {
 public:
  WindowManager();

 private:
  ChildProgram mProgram;
};

}  // namespace TestSupport
