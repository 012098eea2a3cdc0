#pragma once

#include <cstdint>

// The millisecond clock of waits and pauses. Any thread may call any operation.
namespace Platform {

// Milliseconds of a clock that never jumps; wraps after 49 days, so only differences count.
std::uint32_t MillisecondTicks();

// Sleeps at least this long, signals or not.
void SleepMilliseconds(std::uint32_t milliseconds);

// Asks for fine (1 microsecond slack) or ordinary sleeps in this process: the calling thread
// changes at once, every other one when it calls ApplyTimerResolution, best as it starts.
void SetTimerResolution(bool fine);
void ApplyTimerResolution();

}  // namespace Platform
