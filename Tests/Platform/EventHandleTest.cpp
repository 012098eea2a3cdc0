#include "Platform/EventHandle.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace Platform {
namespace {

constexpr std::uint32_t kLongWait = 30000;

TEST(EventHandleTest, AutoResetLetsOneWaitThroughForAnyNumberOfSets) {
  EventHandle event(true);
  EXPECT_EQ(event.Wait(0), WaitStatus::kTimeout);
  EXPECT_TRUE(event.Set());
  EXPECT_TRUE(event.Set());
  EXPECT_EQ(event.Wait(kWaitForever), WaitStatus::kSignalled);
  EXPECT_EQ(event.Wait(0), WaitStatus::kTimeout);
}

TEST(EventHandleTest, ManualResetLetsEveryWaitThroughUntilReset) {
  EventHandle event(false);
  EXPECT_EQ(event.Wait(0), WaitStatus::kTimeout);
  EXPECT_TRUE(event.Set());
  EXPECT_EQ(event.Wait(0), WaitStatus::kSignalled);
  EXPECT_EQ(event.Wait(kWaitForever), WaitStatus::kSignalled);
  EXPECT_TRUE(event.Reset());
  EXPECT_TRUE(event.Reset());
  EXPECT_EQ(event.Wait(1), WaitStatus::kTimeout);
}

// A limit that overflowed would end the wait before the event is set; a late setter only makes
// the test longer.
TEST(EventHandleTest, WaitWithAHugeLimitLastsUntilTheEventIsSet) {
  for (const bool autoReset : {true, false}) {
    EventHandle event(autoReset);
    std::atomic<bool> set{false};
    std::thread setter([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      set = true;
      event.Set();
    });
    EXPECT_EQ(event.Wait(0xFFFFFFFE), WaitStatus::kSignalled);
    EXPECT_TRUE(set);
    setter.join();
  }
}

// Each signal interrupts the wait; the rest of the time must still be waited for.
TEST(EventHandleTest, SignalsDoNotShortenAWait) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
  for (const bool autoReset : {true, false}) {
    EventHandle event(autoReset);
    std::atomic<bool> done{false};
    std::chrono::steady_clock::duration waited{};
    std::thread waiter([&] {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_EQ(event.Wait(50), WaitStatus::kTimeout);
      waited = std::chrono::steady_clock::now() - start;
      done = true;
    });
    while (!done) {
      pthread_kill(waiter.native_handle(), SIGUSR1);
      std::this_thread::yield();
    }
    waiter.join();
    EXPECT_GE(waited, std::chrono::milliseconds(50));
  }
  sigaction(SIGUSR1, &before, nullptr);
}

// All waiters wake for each set, one gets it and the others must wait on.
TEST(EventHandleTest, EachSetLetsExactlyOneOfManyWaitersThrough) {
  constexpr int kRounds = 2000;
  EventHandle event(true);
  EventHandle passed(true);
  std::atomic<int> passes{0};
  std::atomic<bool> end{false};
  // The last set is handed on from waiter to waiter: one that was not back in its wait yet finds it there.
  const auto wait = [&] {
    while (event.Wait(kLongWait) == WaitStatus::kSignalled) {
      if (end) {
        event.Set();
        return;
      }
      ++passes;
      passed.Set();
    }
    ADD_FAILURE() << "a waiter was never let through";
  };
  std::vector<std::thread> waiters;
  for (int i = 0; i < 4; ++i) waiters.emplace_back(wait);
  for (int i = 0; i < kRounds && !HasFailure(); ++i) {
    event.Set();
    EXPECT_EQ(passed.Wait(kLongWait), WaitStatus::kSignalled);
    EXPECT_EQ(passes, i + 1);
  }
  end = true;
  event.Set();
  for (auto& waiter : waiters) waiter.join();
}

class WaitForAnyEventTest : public testing::TestWithParam<std::size_t> {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < GetParam(); ++i) {
      mEvents.push_back(std::make_unique<EventHandle>(true));
      mDescriptors.push_back(mEvents.back()->GetDescriptor());
    }
  }
  WaitStatus Wait(std::uint32_t milliseconds) { return WaitForAnyEvent(mDescriptors, milliseconds, mIndex); }

  std::vector<std::unique_ptr<EventHandle>> mEvents;
  std::vector<int> mDescriptors;
  std::size_t mIndex = 0;
};

TEST_P(WaitForAnyEventTest, ConsumesTheLowestSignalledEventAlone) {
  const std::size_t last = GetParam() - 1;
  EXPECT_EQ(Wait(1), WaitStatus::kTimeout);
  mEvents[last]->Set();
  mEvents[1]->Set();
  ASSERT_EQ(Wait(kWaitForever), WaitStatus::kSignalled);
  EXPECT_EQ(mIndex, 1U);
  ASSERT_EQ(Wait(kWaitForever), WaitStatus::kSignalled);
  EXPECT_EQ(mIndex, last);
  EXPECT_EQ(Wait(0), WaitStatus::kTimeout);
}

INSTANTIATE_TEST_SUITE_P(ListLengths, WaitForAnyEventTest, testing::Values(3, 16, 17, 40));

TEST(EventHandleTest, WaitForAnyFailsWithoutEventsAndWithAClosedOne) {
  std::size_t index = 0;
  EXPECT_EQ(WaitForAnyEvent({}, kWaitForever, index), WaitStatus::kFailed);
  const int closed = 1 << 20;
  EXPECT_EQ(WaitForAnyEvent({&closed, 1}, kWaitForever, index), WaitStatus::kFailed);
}

TEST(EventHandleTest, TellsWhenTheSystemHasNoEventLeft) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 0;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EventHandle event(true);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_FALSE(event.IsValid());
  EXPECT_FALSE(event.Set());
  EXPECT_FALSE(event.Reset());
  EXPECT_EQ(event.Wait(kWaitForever), WaitStatus::kFailed);
}

}  // namespace
}  // namespace Platform
