#include "Platform/NativeThread.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <stdexcept>

#include "Platform/Clock.h"
#include "Platform/EventHandle.h"

namespace Platform {
namespace {

int NiceOf(std::uint32_t id) {
  return getpriority(PRIO_PROCESS, id);
}

bool IsBlockedHere(int signal) {
  sigset_t blocked;
  EXPECT_EQ(pthread_sigmask(SIG_SETMASK, nullptr, &blocked), 0);
  return sigismember(&blocked, signal) == 1;
}

TEST(NativeThreadTest, EndSignalsAreBlockedOnTheThreadAndOpenOnItsCreator) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    bool blocked = false;
    NativeThread thread;
    ASSERT_TRUE(thread.Start([&] { blocked = IsBlockedHere(signal); }));
    thread.Join();
    EXPECT_TRUE(blocked) << signal;
    EXPECT_FALSE(IsBlockedHere(signal)) << signal;
  }
}

// A thread inherits the slack of its creator, which here differs from that of the process.
TEST(NativeThreadTest, BeginsWithTheTimerResolutionOfTheProcess) {
  constexpr int kFineSlackNanoseconds = 1000;
  constexpr int kForeignSlackNanoseconds = 77777;
  SetTimerResolution(true);
  ASSERT_EQ(prctl(PR_SET_TIMERSLACK, kForeignSlackNanoseconds), 0);
  int slack = 0;
  NativeThread thread;
  ASSERT_TRUE(thread.Start([&] { slack = prctl(PR_GET_TIMERSLACK); }));
  thread.Join();
  EXPECT_EQ(slack, kFineSlackNanoseconds);
  SetTimerResolution(false);
}

TEST(NativeThreadTest, ReportsARefusedThreadAndLetsGoOfItsBody) {
  auto held = std::make_shared<int>(0);
  NativeThread thread;
  const std::size_t before = SetThreadStackSize(SIZE_MAX / 4);
  const bool started = thread.Start([held] { *held = 1; });
  SetThreadStackSize(before);
  EXPECT_FALSE(started);
  EXPECT_EQ(held.use_count(), 1);
  thread.Join();
  EXPECT_EQ(*held, 0);
}

TEST(NativeThreadTest, WhatTheBodyHoldsIsGoneAfterJoin) {
  auto held = std::make_shared<int>(0);
  NativeThread thread;
  ASSERT_TRUE(thread.Start([held] { *held = 1; }));
  EXPECT_FALSE(thread.Start([] {}));
  thread.Join();
  EXPECT_EQ(*held, 1);
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(thread.GetId(), 0U);
}

TEST(NativeThreadTest, IsCurrentOnItsOwnThreadOnly) {
  NativeThread thread;
  NativeThread other;
  bool own = false;
  bool foreign = true;
  ASSERT_TRUE(thread.Start([&] {
    own = thread.IsCurrent();
    foreign = other.IsCurrent();
  }));
  thread.Join();
  EXPECT_TRUE(own);
  EXPECT_FALSE(foreign);
  EXPECT_FALSE(thread.IsCurrent());
}

// Lowering is always granted; raising depends on the rights of the user, and the answer must
// tell the truth.
TEST(NativeThreadTest, PriorityMovesTheNiceValueAsFarAsGranted) {
  struct Case {
    int asked;
    int nice;
  };
  constexpr Case kCases[] = {{-1, 5}, {-2, 10}, {-15, 10}, {1, -5}, {2, -10}, {15, -10}};
  const int base = NiceOf(static_cast<std::uint32_t>(getpid()));
  for (const bool beforeStart : {true, false}) {
    for (const Case& c : kCases) {
      EventHandle begun(true);
      EventHandle end(true);
      NativeThread thread;
      bool granted = beforeStart && thread.SetPriority(c.asked);
      ASSERT_TRUE(thread.Start([&] {
        begun.Set();
        (void)end.Wait(kWaitForever);
      }));
      ASSERT_EQ(begun.Wait(kWaitForever), WaitStatus::kSignalled);
      granted = thread.SetPriority(c.asked);
      EXPECT_EQ(NiceOf(thread.GetId()), granted ? base + c.nice : base) << c.asked;
      EXPECT_TRUE(granted || c.asked > 0);
      end.Set();
      thread.Join();
    }
  }
}

TEST(NativeThreadDeathTest, AnExceptionThatLeavesTheBodyEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        NativeThread thread;
        thread.Start([] { throw std::runtime_error("left the thread"); });
        thread.Join();
      },
      "left the thread");
}

}  // namespace
}  // namespace Platform
