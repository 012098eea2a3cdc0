#pragma once

namespace TestSupport {

// Starts one X server of 800 by 600 with a window manager for the process and makes it the program's
// display: the window system lives as long as the process, and so must its display. Nothing at later calls.
void StartTestScreen();

}  // namespace TestSupport
