#include "Platform/Clock.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace Platform {
namespace {

TEST(Clock, LocalTimeIsTheUsersWallClock) {
  setenv("TZ", "UTC-5:30", 1);
  tzset();
  const std::time_t before = std::time(nullptr);
  const Platform::LocalTime time = Platform::GetLocalTime();
  const std::time_t after = std::time(nullptr);
  unsetenv("TZ");
  tzset();
  std::tm fields{};
  fields.tm_year = static_cast<int>(time.mYear) - 1900;
  fields.tm_mon = static_cast<int>(time.mMonth) - 1;
  fields.tm_mday = static_cast<int>(time.mDay);
  fields.tm_hour = static_cast<int>(time.mHour);
  fields.tm_min = static_cast<int>(time.mMinute);
  fields.tm_sec = static_cast<int>(time.mSecond);
  const std::time_t told = timegm(&fields) - (5 * 60 + 30) * 60;
  EXPECT_GE(told, before);
  EXPECT_LE(told, after);
  EXPECT_EQ(static_cast<int>(time.mDayOfWeek), fields.tm_wday);
  EXPECT_LT(time.mMilliseconds, 1000U);
}

TEST(Clock, SignalsDoNotShortenASleep) {
  static std::atomic<int> signals{0};
  struct sigaction action {};
  struct sigaction former {};
  action.sa_handler = [](int) { ++signals; };
  ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
  std::atomic<bool> done{false};
  std::uint32_t ticks = 0;
  std::chrono::steady_clock::duration slept{};
  std::thread sleeper([&] {
    const auto start = std::chrono::steady_clock::now();
    const std::uint32_t before = MillisecondTicks();
    SleepMilliseconds(150);
    ticks = MillisecondTicks() - before;
    slept = std::chrono::steady_clock::now() - start;
    done = true;
  });
  while (!done) {
    pthread_kill(sleeper.native_handle(), SIGUSR1);
    std::this_thread::yield();
  }
  sleeper.join();
  EXPECT_GT(signals, 0);
  EXPECT_GE(slept, std::chrono::milliseconds(150));
  EXPECT_GE(ticks, 149u);  // The two readings are cut to whole milliseconds.
  EXPECT_EQ(sigaction(SIGUSR1, &former, nullptr), 0);
}

TEST(Clock, FineResolutionReachesThreadsThatAskForIt) {
  SetTimerResolution(true);
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0), 1'000);
  int applied = 0;
  std::thread([&] {
    prctl(PR_SET_TIMERSLACK, 70'000, 0, 0, 0);
    ApplyTimerResolution();
    applied = prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0);
  }).join();
  EXPECT_EQ(applied, 1'000);
  SetTimerResolution(false);
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0), 50'000);
}

}  // namespace
}  // namespace Platform
