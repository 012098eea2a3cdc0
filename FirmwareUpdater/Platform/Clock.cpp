#include "Platform/Clock.h"

#include <sys/prctl.h>
#include <time.h>

#include <atomic>
#include <cerrno>

namespace Platform {

namespace {

constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr long kNanosecondsPerMillisecond = 1'000'000;
constexpr long kNanosecondsPerSecond = 1'000'000'000;
constexpr unsigned long kFineSlackNanoseconds = 1'000;
constexpr unsigned long kOrdinarySlackNanoseconds = 50'000;  // What the system starts a process with.

std::atomic<bool> gFineResolution{false};

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);  // Cannot fail: the clock exists and the pointer is good.
  return now;
}

}  // namespace

std::uint32_t MillisecondTicks() {
  const timespec now = Now();
  return static_cast<std::uint32_t>(now.tv_sec) * kMillisecondsPerSecond +
         static_cast<std::uint32_t>(now.tv_nsec / kNanosecondsPerMillisecond);
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  timespec until = Now();
  until.tv_sec += milliseconds / kMillisecondsPerSecond;
  until.tv_nsec += static_cast<long>(milliseconds % kMillisecondsPerSecond) * kNanosecondsPerMillisecond;
  if (until.tv_nsec >= kNanosecondsPerSecond) {
    until.tv_nsec -= kNanosecondsPerSecond;
    ++until.tv_sec;
  }
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

void SetTimerResolution(bool fine) {
  gFineResolution.store(fine);
  ApplyTimerResolution();
}

void ApplyTimerResolution() {
  // A kernel without the call leaves sleeps as they are, which is no error to anyone.
  prctl(PR_SET_TIMERSLACK, gFineResolution.load() ? kFineSlackNanoseconds : kOrdinarySlackNanoseconds, 0, 0,
        0);
}

}  // namespace Platform
