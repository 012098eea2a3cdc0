#include "Platform/Signals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "Tests/Support/ProcessState.h"

namespace Platform {
namespace {

// Collects the signals under a lock that the caller takes too.
class Arrivals {
 public:
  SignalWatcher::Callback Callback() {
    return [this](int signal) {
      const std::lock_guard lock(mMutex);
      mSignals.push_back(signal);
      mThread = std::this_thread::get_id();
      mChanged.notify_all();
    };
  }

  std::vector<int> WaitFor(std::size_t count) {
    std::unique_lock lock(mMutex);
    mChanged.wait_for(lock, std::chrono::seconds(20), [&] { return mSignals.size() >= count; });
    return mSignals;
  }

  std::thread::id Thread() {
    const std::lock_guard lock(mMutex);
    return mThread;
  }

 private:
  std::mutex mMutex;
  std::condition_variable mChanged;
  std::vector<int> mSignals;
  std::thread::id mThread;
};

bool IsBlocked(int signal) {
  sigset_t blocked;
  return pthread_sigmask(SIG_BLOCK, nullptr, &blocked) == 0 && sigismember(&blocked, signal) == 1;
}

TEST(Signals, EndingSignalsComeAsCallsOnAnotherThread) {
  Arrivals arrivals;
  const SignalWatcher watcher(arrivals.Callback());
  std::vector<int> expected;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGTERM}) {
    expected.push_back(signal);
    ASSERT_EQ(kill(getpid(), signal), 0);
    EXPECT_EQ(arrivals.WaitFor(expected.size()), expected);
  }
  EXPECT_NE(arrivals.Thread(), std::this_thread::get_id());
}

TEST(Signals, LaterThreadsAreSparedUntilTheWatcherHasGone) {
  {
    const SignalWatcher watcher([](int) {});
    bool blocked = false;
    std::thread([&] { blocked = IsBlocked(SIGINT) && IsBlocked(SIGTERM) && IsBlocked(SIGHUP); }).join();
    EXPECT_TRUE(blocked);
    EXPECT_FALSE(IsBlocked(SIGUSR1));
  }
  EXPECT_FALSE(IsBlocked(SIGINT) || IsBlocked(SIGTERM) || IsBlocked(SIGHUP));
}

TEST(Signals, WithoutTheWatcherASignalEndsTheProcessAgain) {
  const auto result = TestSupport::RunInChild([] {
    {
      const SignalWatcher watcher([](int) {});
    }
    kill(getpid(), SIGTERM);
  });
  EXPECT_EQ(result.exitStatus, -1);
}

TEST(Signals, IgnoredSignalStaysIgnored) {
  struct sigaction ignore {};
  struct sigaction former {};
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(sigaction(SIGHUP, &ignore, &former), 0);
  {
    Arrivals arrivals;
    const SignalWatcher watcher(arrivals.Callback());
    ASSERT_EQ(kill(getpid(), SIGHUP), 0);
    ASSERT_EQ(kill(getpid(), SIGTERM), 0);
    EXPECT_EQ(arrivals.WaitFor(1), std::vector<int>{SIGTERM});
  }
  EXPECT_EQ(sigaction(SIGHUP, &former, nullptr), 0);
}

TEST(Signals, BrokenPipeIsAnErrorAndNoEnd) {
  const auto result = TestSupport::RunInChild([] {
    const SignalWatcher watcher([](int) {});
    std::array<int, 2> ends;
    if (pipe(ends.data()) != 0) _exit(10);
    close(ends[0]);
    const bool failed = write(ends[1], "x", 1) == -1 && errno == EPIPE;
    _exit(failed ? 0 : 11);
  });
  EXPECT_EQ(result.exitStatus, 0);
}

}  // namespace
}  // namespace Platform
