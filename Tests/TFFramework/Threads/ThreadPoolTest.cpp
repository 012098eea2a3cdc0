#include "TFFramework/Threads/ThreadPool.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "TFFramework/ObjectBase/Wrappers.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

// A pool whose first thread is held up by an item until Open.
class HeldPool {
 public:
  explicit HeldPool(std::int32_t threads = 1) : mPool(MakeRC<LThreadPool>(threads, 2)) {}
  ~HeldPool() {
    Open();
    mPool->Shutdown();
    // A pool that has let go of its thread does not wait for the item.
    if (mHeld) mLeft.Wait(kTestWait);
  }
  HeldPool(const HeldPool&) = delete;
  HeldPool& operator=(const HeldPool&) = delete;

  void Hold() {
    mOpen.Reset();
    mLeft.Reset();
    mHeld = true;
    mPool->Enqueue(mHolder, nullptr, 0);
    ASSERT_EQ(mEntered.Wait(kTestWait), kWaitSignalled);
  }
  void Open() { mOpen.Set(); }
  LThreadPool& operator*() const { return *mPool; }
  LThreadPool* operator->() const { return mPool.Get(); }

 private:
  Event mEntered{true};
  Event mOpen{false};
  Event mLeft{false};
  bool mHeld = false;
  const RCPtr<LThreadWorker> mHolder = MakeWorker([this](const auto&) {
    mEntered.Set();
    mOpen.Wait(kNoTimeout);
    mLeft.Set();
    return kSuccess;
  });
  const RCPtr<LThreadPool> mPool;
};

// While it lives the calling thread and those that it starts share one processor. A thread of
// low priority then stops wherever it wakes another one, which opens the narrow gaps.
class OneProcessor {
 public:
  OneProcessor() {
    EXPECT_EQ(sched_getaffinity(0, sizeof mBefore, &mBefore), 0);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    EXPECT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  }
  ~OneProcessor() { EXPECT_EQ(sched_setaffinity(0, sizeof mBefore, &mBefore), 0); }
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;

 private:
  cpu_set_t mBefore{};
};

constexpr std::int32_t kLowPriority = -2;

// Notes the numbers of its items in the order in which they run, and tells the last one.
class Recorder {
 public:
  explicit Recorder(std::size_t expected) : mExpected(expected) { mSeen.reserve(expected); }

  static RCPtr<LRefCountedObject> Item(int number) {
    return RCPtr<LRefCountedObject>(new LHolder<int>(number));
  }

  const RCPtr<LThreadWorker>& Worker() const { return mWorker; }
  bool WaitForAll() { return mComplete.Wait(kTestWait) == kWaitSignalled; }
  std::vector<int> Seen() {
    const std::scoped_lock lock(mMutex);
    return mSeen;
  }
  void Forget() {
    const std::scoped_lock lock(mMutex);
    mSeen.clear();
  }

 private:
  TFRESULT Note(const RCPtr<LRefCountedObject>& data) {
    const RCPtr<LHolder<int>> item = data;
    const std::scoped_lock lock(mMutex);
    mSeen.push_back(item->GetValue());
    if (mSeen.size() == mExpected) mComplete.Set();
    return kSuccess;
  }

  const std::size_t mExpected;
  std::mutex mMutex;
  std::vector<int> mSeen;
  Event mComplete{true};
  const RCPtr<LThreadWorker> mWorker = MakeWorker([this](const auto& data) { return Note(data); });
};

TEST(ThreadPoolTest, WaitingItemsRunByPriorityThenByArrival) {
  struct Case {
    std::vector<int> priorities;
    std::vector<int> order;
  };
  const Case cases[] = {
      {{0, 0, 0}, {0, 1, 2}},
      {{0, 2}, {1, 0}},
      {{0, 0, 2, 0, 2}, {2, 4, 0, 1, 3}},
      {{1, -1, 3, 1, -1, 3, 2}, {2, 5, 6, 0, 3, 1, 4}},
  };
  for (const Case& c : cases) {
    Recorder recorder(c.priorities.size());
    HeldPool pool;
    pool.Hold();
    for (std::size_t i = 0; i < c.priorities.size(); ++i) {
      pool->Enqueue(recorder.Worker(), Recorder::Item(static_cast<int>(i)), c.priorities[i]);
    }
    pool.Open();
    ASSERT_TRUE(recorder.WaitForAll());
    EXPECT_EQ(recorder.Seen(), c.order);
  }
}

TEST(ThreadPoolTest, EveryThreadTakesItemsAtOnceWhileOthersAreHeld) {
  constexpr std::int32_t kThreads = 3;
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(kThreads, 0);
  std::atomic<int> inside{0};
  Event full(true);
  Event open(false);
  const auto worker = MakeWorker([&](const auto&) {
    if (++inside == kThreads) full.Set();
    open.Wait(kNoTimeout);
    return kSuccess;
  });
  for (std::int32_t i = 0; i < kThreads; ++i) pool->Enqueue(worker, nullptr, 0);
  EXPECT_EQ(full.Wait(kTestWait), kWaitSignalled);
  open.Set();
  pool->Shutdown();
}

TEST(ThreadPoolTest, ShutdownDropsWaitingItemsAndFinishesTheRunningOne) {
  Event itemDied(true);
  std::atomic<int> runs{0};
  std::atomic<bool> finished{false};
  Event entered(true);
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(1, 2);
  const auto running = MakeWorker([&](const auto&) {
    entered.Set();
    itemDied.Wait(kTestWait);
    finished = true;
    return kSuccess;
  });
  const auto waiting = MakeWorker([&](const auto&) { return ++runs; });
  pool->Enqueue(running, nullptr, 0);
  ASSERT_EQ(entered.Wait(kTestWait), kWaitSignalled);
  pool->Enqueue(waiting, RCPtr<LRefCountedObject>(new DeathNotice(itemDied)), 0);
  pool->Shutdown();
  EXPECT_TRUE(finished);
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(waiting->GetRefCount(), 1);
  EXPECT_EQ(pool->GetRefCount(), 1);
}

TEST(ThreadPoolTest, ItemsAreDroppedAfterShutdownAndWithoutThreads) {
  const auto worker = MakeWorker([](const auto&) -> TFRESULT { throw std::logic_error("must not run"); });
  for (const std::int32_t threads : {0, 1, 2}) {
    const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(threads, 2);
    pool->Shutdown();
    pool->Enqueue(worker, nullptr, 0);
    pool->Shutdown();
    EXPECT_EQ(worker->GetRefCount(), 1);
  }
}

TEST(ThreadPoolTest, WithoutThreadsOfTheSystemItemsAreDropped) {
  const auto worker = MakeWorker([](const auto&) { return kSuccess; });
  const ThreadsRefused refused;
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(1, 2);
  for (int i = 0; i < 3; ++i) pool->Enqueue(worker, nullptr, 0);
  EXPECT_EQ(worker->GetRefCount(), 1);
}

// A producer's items have ascending numbers; its number stands in the lowest digit.
constexpr int kProducers = 2;
constexpr int kItemsOfEach = 5000;
constexpr int kItemsOfEachOnOneProcessor = 500;

void Produce(LThreadPool& pool, Recorder& recorder, int itemsOfEach) {
  std::vector<std::thread> producers;
  for (int p = 0; p < kProducers; ++p) {
    producers.emplace_back([&pool, &recorder, itemsOfEach, p] {
      for (int i = 0; i < itemsOfEach; ++i) {
        pool.Enqueue(recorder.Worker(), Recorder::Item(i * kProducers + p), 0);
        if (i % 100 == 0) std::this_thread::yield();  // Lets the pool run empty now and then.
      }
    });
  }
  for (auto& producer : producers) producer.join();
}

void ExpectTheOrderOfEachProducer(std::int32_t queuePriority, int itemsOfEach) {
  Recorder recorder(static_cast<std::size_t>(kProducers * itemsOfEach));
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(1, queuePriority);
  Produce(*pool, recorder, itemsOfEach);
  ASSERT_TRUE(recorder.WaitForAll());
  pool->Shutdown();
  std::vector<int> next(kProducers, 0);
  for (const int number : recorder.Seen()) {
    ASSERT_EQ(number / kProducers, next[static_cast<std::size_t>(number % kProducers)]++);
  }
}

TEST(ThreadPoolTest, OneThreadRunsItemsOfTwoProducersInTheOrderOfEach) {
  ExpectTheOrderOfEachProducer(2, kItemsOfEach);
  const OneProcessor narrow;
  ExpectTheOrderOfEachProducer(kLowPriority, kItemsOfEachOnOneProcessor);
}

TEST(ThreadPoolTest, SeveralThreadsLoseNoItemAndRunNoneTwice) {
  Recorder recorder(kProducers * kItemsOfEach);
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(3, 0);
  Produce(*pool, recorder, kItemsOfEach);
  ASSERT_TRUE(recorder.WaitForAll());
  pool->Shutdown();
  std::vector<int> seen = recorder.Seen();
  std::sort(seen.begin(), seen.end());
  for (std::size_t i = 0; i < seen.size(); ++i) ASSERT_EQ(seen[i], static_cast<int>(i));
}

// Each item comes while the queue threader is about to leave an empty queue.
TEST(ThreadPoolTest, ItemsThatEnqueueTheNextOneNeverStall) {
  constexpr int kItems = 500;
  const OneProcessor narrow;
  const RCPtr<LThreadPool> pool = MakeRC<LThreadPool>(1, kLowPriority);
  Event done(true);
  int runs = 0;
  FunctionWorker* next = nullptr;
  const RCPtr<FunctionWorker> worker(new FunctionWorker([&](const auto&) {
    if (++runs == kItems)
      done.Set();
    else
      pool->Enqueue(RCPtr<LThreadWorker>(next), nullptr, 0);
    return kSuccess;
  }));
  next = worker.Get();
  pool->Enqueue(RCPtr<LThreadWorker>(worker), nullptr, 0);
  EXPECT_EQ(done.Wait(kTestWait), kWaitSignalled);
  pool->Shutdown();
}

TEST(ThreadPoolTest, QueueIsLeftAtOnceWhenTheRunningItemDoesNotEnd) {
  HeldPool pool;
  pool.Hold();
  const auto waiting = MakeWorker([](const auto&) { return kSuccess; });
  pool->Enqueue(waiting, nullptr, 0);
  {
    const StopWait shortWait(1);
    pool->Shutdown();
  }
  const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(kTestWait);
  while (pool->GetRefCount() > 1 && std::chrono::steady_clock::now() < limit) std::this_thread::yield();
  EXPECT_EQ(pool->GetRefCount(), 1);
  EXPECT_EQ(waiting->GetRefCount(), 1);
}

// Producers stand at the queue's lock while the queue is emptied. No item may slip in behind.
TEST(ThreadPoolTest, ShutdownMayMeetProducers) {
  constexpr int kItemsBeforeShutdown = 50;
  for (int round = 0; round < 40; ++round) {
    const auto worker = MakeWorker([](const auto&) { return kSuccess; });
    HeldPool pool(1 + round % 2);
    pool.Hold();
    std::atomic<int> enqueued{0};
    std::atomic<bool> end{false};
    std::vector<std::thread> producers;
    for (int p = 0; p < 3; ++p) {
      producers.emplace_back([&] {
        for (; !end; ++enqueued) pool->Enqueue(worker, nullptr, 0);
      });
    }
    while (enqueued < kItemsBeforeShutdown) std::this_thread::yield();
    pool.Open();
    pool->Shutdown();
    end = true;
    for (auto& producer : producers) producer.join();
    ASSERT_EQ(worker->GetRefCount(), 1);
    ASSERT_EQ(pool->GetRefCount(), 1);
  }
}

// The item's worker owns the pool and goes with its item, on a thread of the pool.
TEST(ThreadPoolTest, PoolMayDieOnItsOwnThread) {
  class Owner : public LThreadWorker {
   public:
    explicit Owner(Event& died) : mDied(died) {}
    ~Owner() override {
      mPool->Shutdown();
      mPool = nullptr;
      mDied.Set();
    }
    TFRESULT Work(const RCPtr<LRefCountedObject>&) override {
      mGo.Wait(kNoTimeout);
      return kSuccess;
    }
    Event& mDied;
    Event mGo{false};
    RCPtr<LThreadPool> mPool = MakeRC<LThreadPool>(1, 2);
  };
  for (int i = 0; i < 50; ++i) {
    Event died(true);
    RCPtr<Owner> owner = MakeRC<Owner>(died);
    for (int item = 0; item <= i % 3; ++item) owner->mPool->Enqueue(RCPtr<LThreadWorker>(owner), nullptr, 0);
    Event& go = owner->mGo;
    owner = nullptr;
    go.Set();
    ASSERT_EQ(died.Wait(kTestWait), kWaitSignalled);
  }
}

TEST(ThreadPoolTest, ItemsCostNoHeapOnceTheQueueHasHadThisLength) {
  constexpr int kItems = 10000;
  constexpr int kSpareItems = 8;  // The threads may still hold the last ones of the run before.
  Recorder recorder(kItems);
  const auto spare = MakeWorker([](const auto&) { return kSuccess; });
  const RCPtr<LRefCountedObject> data = Recorder::Item(1);
  HeldPool pool;
  const auto run = [&](int spareItems) {
    const AllocationCounter counter;
    pool.Hold();
    for (int i = 0; i < spareItems; ++i) pool->Enqueue(spare, nullptr, 0);
    for (int i = 0; i < kItems; ++i) pool->Enqueue(recorder.Worker(), data, 0);
    pool.Open();
    EXPECT_TRUE(recorder.WaitForAll());
    recorder.Forget();
    return counter.Count();
  };
  const AllocationCounter every;
  GetSystemAllocator().Free(GetSystemAllocator().Allocate(1));
  ASSERT_GT(every.Count(), 0);
  run(kSpareItems);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(run(0), 0);
}

}  // namespace
}  // namespace TF
