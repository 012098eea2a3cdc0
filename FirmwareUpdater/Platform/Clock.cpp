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

// How late the system wakes a sleeper at the most, as a rule. With fine resolution a sleep ends
// this much early and the rest is watched, so that the many short pauses of a transfer do not
// add up to more than their sum.
constexpr long kWakeLatencyNanoseconds = 150'000;

std::atomic<bool> gFineResolution{false};

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);  // Cannot fail: the clock exists and the pointer is good.
  return now;
}

bool IsBefore(const timespec& left, const timespec& right) {
  return left.tv_sec != right.tv_sec ? left.tv_sec < right.tv_sec : left.tv_nsec < right.tv_nsec;
}

timespec Moved(timespec time, long nanoseconds) {
  time.tv_nsec += nanoseconds;
  if (time.tv_nsec >= kNanosecondsPerSecond) {
    time.tv_nsec -= kNanosecondsPerSecond;
    ++time.tv_sec;
  } else if (time.tv_nsec < 0) {
    time.tv_nsec += kNanosecondsPerSecond;
    --time.tv_sec;
  }
  return time;
}

void SleepUntil(const timespec& until) {
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

}  // namespace

std::uint32_t MillisecondTicks() {
  const timespec now = Now();
  return static_cast<std::uint32_t>(now.tv_sec) * kMillisecondsPerSecond +
         static_cast<std::uint32_t>(now.tv_nsec / kNanosecondsPerMillisecond);
}

LocalTime GetLocalTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm fields{};
  if (!localtime_r(&now.tv_sec, &fields)) return {};
  constexpr int kFirstYear = 1900;
  const auto number = [](long value) { return static_cast<std::uint32_t>(value); };
  return {number(fields.tm_year + kFirstYear),
          number(fields.tm_mon + 1),
          number(fields.tm_wday),
          number(fields.tm_mday),
          number(fields.tm_hour),
          number(fields.tm_min),
          number(fields.tm_sec),
          number(now.tv_nsec / kNanosecondsPerMillisecond)};
}

void SleepMilliseconds(std::uint32_t milliseconds) {
  timespec until = Now();
  until.tv_sec += milliseconds / kMillisecondsPerSecond;
  until = Moved(until, static_cast<long>(milliseconds % kMillisecondsPerSecond) * kNanosecondsPerMillisecond);
  if (milliseconds == 0 || !gFineResolution.load()) return SleepUntil(until);
  SleepUntil(Moved(until, -kWakeLatencyNanoseconds));
  while (IsBefore(Now(), until)) {
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
