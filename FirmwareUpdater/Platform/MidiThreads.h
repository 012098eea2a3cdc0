#pragma once

#include <functional>

namespace Platform {

// Runs body on a thread of its own that nobody joins. WaitForMidiThreads counts it until body
// and all that it holds are gone. False if the system grants no thread.
bool StartMidiThread(std::function<void()> body);

}  // namespace Platform
