#pragma once

#include <cstdint>

// The millisecond clock of waits and pauses. Any thread may call any operation.
namespace Platform {

// Milliseconds of a clock that never jumps; wraps after 49 days, so only differences count.
std::uint32_t MillisecondTicks();

// The wall clock in the user's time zone.
struct LocalTime {
  std::uint32_t mYear = 0;
  std::uint32_t mMonth = 0;      // From 1.
  std::uint32_t mDayOfWeek = 0;  // From 0, which is Sunday.
  std::uint32_t mDay = 0;        // From 1.
  std::uint32_t mHour = 0;
  std::uint32_t mMinute = 0;
  std::uint32_t mSecond = 0;
  std::uint32_t mMilliseconds = 0;
};
LocalTime GetLocalTime();

// Sleeps at least this long, signals or not.
void SleepMilliseconds(std::uint32_t milliseconds);

// Asks for fine (1 microsecond slack) or ordinary sleeps in this process: the calling thread
// changes at once, every other one when it calls ApplyTimerResolution, best as it starts.
void SetTimerResolution(bool fine);
void ApplyTimerResolution();

}  // namespace Platform
