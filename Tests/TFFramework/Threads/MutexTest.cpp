#include "TFFramework/Threads/Mutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "TFFramework/Threads/LightMutex.h"

namespace TF {
namespace {

constexpr int kMutexThreads = 4;
constexpr int kMutexRounds = 20000;

template <class Body>
void RunOnThreads(Body body) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kMutexThreads; ++i) threads.emplace_back(body);
  for (auto& thread : threads) thread.join();
}

TEST(MutexTest, HolderMayTakeItAgainAndOthersStayOut) {
  Mutex mutex;
  int count = 0;
  RunOnThreads([&] {
    for (int i = 0; i < kMutexRounds; ++i) {
      const MutexLock outer(mutex);
      const int seen = count;
      {
        const MutexLock inner(mutex);
        ++count;
      }
      ASSERT_EQ(count, seen + 1);
      ++count;
    }
  });
  EXPECT_EQ(count, 2 * kMutexThreads * kMutexRounds);
}

TEST(LightMutexTest, KeepsOthersOutAndWakesEveryWaiter) {
  LightMutex mutex;
  int count = 0;
  RunOnThreads([&] {
    for (int i = 0; i < kMutexRounds; ++i) {
      const LightMutexLock lock(mutex);
      ++count;
      if (i % 64 == 0) std::this_thread::yield();  // Lets the others run into the lock.
    }
  });
  EXPECT_EQ(count, kMutexThreads * kMutexRounds);
}

}  // namespace
}  // namespace TF
