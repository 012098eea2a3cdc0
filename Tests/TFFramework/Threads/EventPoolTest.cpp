#include "TFFramework/Threads/EventPool.h"

#include <gtest/gtest.h>

#include <thread>

#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

TEST(EventPoolTest, WaitAnyTakesTheLowestSignalledEventAlone) {
  EventPool pool(3);
  ASSERT_EQ(pool.GetCount(), 3);
  EXPECT_EQ(pool.WaitAny(1), -1);
  pool.GetEvent(2)->Set();
  pool.GetEvent(1)->Set();
  EXPECT_EQ(pool.WaitAny(kNoTimeout), 1);
  EXPECT_TRUE(pool.GetEvent(2)->IsSignalled());
  EXPECT_EQ(pool.WaitAny(0), -1);
}

TEST(EventPoolTest, WaitAnyWithoutEventsFailsAtOnce) {
  EventPool pool(0);
  EXPECT_EQ(pool.WaitAny(kNoTimeout), -1);
}

TEST(EventPoolTest, AnyEventWakesTheWaiter) {
  EventPool pool(4);
  for (std::int32_t i = 0; i < pool.GetCount(); ++i) {
    std::int32_t woken = -1;
    std::thread waiter([&] { woken = pool.WaitAny(kTestWait); });
    while (!pool.HasWaiters()) std::this_thread::yield();
    pool.GetEvent(i)->Set();
    waiter.join();
    EXPECT_EQ(woken, i);
  }
  EXPECT_FALSE(pool.HasWaiters());
}

}  // namespace
}  // namespace TF
