#include "TFFramework/Utilities/Storage/RCPtrQueue.h"

#include <gtest/gtest.h>

#include <mutex>
#include <random>
#include <thread>

namespace CountedTestTypes {

class LNote : public virtual TF::LRefCountedObject {
 public:
  explicit LNote(int number) : mNumber(number) {}
  const int mNumber;
};

}  // namespace CountedTestTypes

namespace {

using CountedTestTypes::LNote;
using TF::MakeRC;
using TF::RCPtr;

class CheckedLock {
 public:
  void Lock() {
    mMutex.lock();
    ++mTaken;
  }
  void Unlock() { mMutex.unlock(); }
  int mTaken = 0;

 private:
  std::mutex mMutex;
};

using Queue = TF::RCPtrQueue<LNote, 4, CheckedLock>;

// Any mix of posting and taking, from every ring size, gives the items in their order.
TEST(RCPtrQueue, KeepsTheOrderWhereverItsRingIsFull) {
  for (std::int32_t slots = 0; slots < 8; ++slots) {
    for (int ahead = 0; ahead < 12; ++ahead) {
      SCOPED_TRACE(testing::Message() << slots << " slots, " << ahead << " ahead");
      Queue queue(slots);
      int written = 0;
      int read = 0;
      for (; written < ahead; ++written) {
        queue.Enqueue(MakeRC<LNote>(written));
        ASSERT_EQ(queue.Dequeue()->mNumber, read++);
      }
      for (int burst = 1; burst < 10; ++burst) {
        for (int i = 0; i < burst; ++i) queue.Enqueue(MakeRC<LNote>(written++));
        ASSERT_EQ(queue.GetCount(), written - read);
        for (int i = 0; i < burst / 2; ++i) ASSERT_EQ(queue.Dequeue()->mNumber, read++);
      }
      while (!queue.IsEmpty()) ASSERT_EQ(queue.Dequeue()->mNumber, read++);
      ASSERT_EQ(read, written);
    }
  }
}

TEST(RCPtrQueue, HoldsItsItemsAndLetsThemGo) {
  const auto note = MakeRC<LNote>(1);
  Queue queue(4);
  queue.Enqueue(note);
  EXPECT_EQ(note->GetRefCount(), 2);
  {
    const RCPtr<LNote> taken = queue.Dequeue();
    EXPECT_EQ(note->GetRefCount(), 2) << "the slot is clear";
  }
  EXPECT_EQ(note->GetRefCount(), 1);
  {
    Queue dying(2);
    dying.Enqueue(note);
  }
  EXPECT_EQ(note->GetRefCount(), 1);
}

TEST(RCPtrQueue, NamesItselfWhenItIsEmpty) {
  CheckedLock lock;
  Queue queue(4, &lock);
  try {
    queue.Dequeue();
    FAIL() << "an empty queue gave something";
  } catch (const std::runtime_error& error) {
    const std::string expected =
        "Runtime Error : TF::RCPtrQueue<class CountedTestTypes::LNote,4>::Dequeue : ";
    EXPECT_EQ(std::string(error.what()).substr(0, expected.size()), expected);
  }
  queue.Enqueue(MakeRC<LNote>(1));
  EXPECT_EQ(queue.GetCount(), 1) << "the lock is free again";
  EXPECT_EQ(lock.mTaken, 3);
}

TEST(RCPtrQueue, GivesEachThreadsItemsInOrderUnderItsLock) {
  constexpr int kThreads = 3;
  constexpr int kItems = 3000;
  CheckedLock lock;
  Queue queue(4, &lock);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&queue, thread] {
      for (int i = 0; i < kItems; ++i) queue.Enqueue(MakeRC<LNote>(thread * kItems + i));
    });
  }
  int next[kThreads] = {};
  for (int received = 0; received < kThreads * kItems;) {
    if (queue.IsEmpty()) {
      std::this_thread::yield();
      continue;
    }
    const int number = queue.Dequeue()->mNumber;
    EXPECT_EQ(number % kItems, next[number / kItems]++);
    ++received;
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(queue.IsEmpty());
}

}  // namespace
