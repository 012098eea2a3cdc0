#include "TFFramework/Threads/RetriggerableThreader.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>

#include "TFFramework/ObjectBase/Wrappers.h"
#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

// A worker that reports its start and waits to be let go.
struct Blocker {
  RCPtr<LThreadWorker> worker = MakeWorker([this](const auto&) {
    entered.Set();
    open.Wait(kNoTimeout);
    return kNothingDone;
  });
  Event entered{true};
  Event open{false};
};

TEST(RetriggerableThreaderTest, CompletedItemHasLeftNothingBehind) {
  RetriggerableThreader threader(u"name");
  EXPECT_TRUE(threader.ToString() == u"name");
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  RCPtr<LRefCountedObject> seen;
  const RCPtr<LThreadWorker> worker = MakeWorker([&](const auto& data) {
    seen = data;
    return kAborted;
  });
  const RCPtr<LRefCountedObject> data(new LHolder<int>(1));
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(threader.Retrigger(worker, data, completion, 0), kSuccess);
    ASSERT_EQ(completion->Wait(kTestWait), kWaitSignalled);
    ASSERT_FALSE(threader.IsBusy());
    ASSERT_EQ(threader.GetResult(), kAborted);
    ASSERT_TRUE(seen == data);
    seen = nullptr;
    ASSERT_EQ(data->GetRefCount(), 1);
    ASSERT_EQ(worker->GetRefCount(), 1);
  }
}

TEST(RetriggerableThreaderTest, RetriggerWhileBusyFailsAndChangesNothing) {
  Blocker blocker;
  std::atomic<int> others{0};
  RetriggerableThreader threader;
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  const RCPtr<LEvent> other = MakeRC<LEvent>();
  ASSERT_EQ(threader.Retrigger(blocker.worker, nullptr, completion, 0), kSuccess);
  ASSERT_EQ(blocker.entered.Wait(kTestWait), kWaitSignalled);
  EXPECT_TRUE(threader.IsBusy());
  other->Set();
  const auto count = MakeWorker([&](const auto&) { return ++others; });
  EXPECT_EQ(threader.Retrigger(count, nullptr, other, 0), kFailure);
  EXPECT_TRUE(other->IsSignalled());
  EXPECT_EQ(count->GetRefCount(), 1);
  blocker.open.Set();
  ASSERT_EQ(completion->Wait(kTestWait), kWaitSignalled);
  EXPECT_EQ(others, 0);
  EXPECT_EQ(threader.GetResult(), kNothingDone);
}

TEST(RetriggerableThreaderTest, CompletionIsResetWhenAnItemIsHandedOver) {
  Blocker blocker;
  RetriggerableThreader threader;
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  completion->Set();
  ASSERT_EQ(threader.Retrigger(blocker.worker, nullptr, completion, 0), kSuccess);
  EXPECT_EQ(completion->Wait(1), kWaitTimeout);
  blocker.open.Set();
  EXPECT_EQ(completion->Wait(kTestWait), kWaitSignalled);
}

TEST(RetriggerableThreaderTest, TakesNothingAfterStop) {
  RetriggerableThreader threader;
  EXPECT_TRUE(threader.IsThreadRunning());
  threader.Stop();
  EXPECT_FALSE(threader.IsThreadRunning());
  const auto worker = MakeWorker([](const auto&) { return kSuccess; });
  EXPECT_EQ(threader.Retrigger(worker, nullptr, nullptr, 0), kFailure);
  EXPECT_EQ(worker->GetRefCount(), 1);
}

TEST(RetriggerableThreaderTest, DestructorWaitsForTheRunningItem) {
  Event entered(true);
  std::atomic<bool> done{false};
  {
    RetriggerableThreader threader;
    const auto worker = MakeWorker([&](const auto&) {
      entered.Set();
      while (threader.IsThreadRunning()) std::this_thread::yield();
      done = true;
      return kSuccess;
    });
    ASSERT_EQ(threader.Retrigger(worker, nullptr, nullptr, 0), kSuccess);
    ASSERT_EQ(entered.Wait(kTestWait), kWaitSignalled);
  }
  EXPECT_TRUE(done);
}

// Run or not, the item is let go of and its completion is told.
TEST(RetriggerableThreaderTest, ItemHandedOverJustBeforeStopIsCompleted) {
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  const auto worker = MakeWorker([](const auto&) { return kSuccess; });
  for (int i = 0; i < 500; ++i) {
    RetriggerableThreader threader;
    // The second item meets a thread that is on its way round the loop.
    for (int item = 0; item < 2; ++item) {
      while (threader.IsBusy()) std::this_thread::yield();
      ASSERT_EQ(threader.Retrigger(worker, nullptr, completion, 0), kSuccess);
    }
    threader.Stop();
    ASSERT_TRUE(completion->IsSignalled());
    ASSERT_FALSE(threader.IsBusy());
    ASSERT_EQ(worker->GetRefCount(), 1);
  }
}

TEST(RetriggerableThreaderTest, WithoutAThreadItemsAreAcceptedAndDropped) {
  const ThreadsRefused refused;
  RetriggerableThreader threader;
  EXPECT_FALSE(threader.IsThreadRunning());
  const auto worker = MakeWorker([](const auto&) { return kSuccess; });
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  for (int i = 0; i < 2; ++i) EXPECT_EQ(threader.Retrigger(worker, nullptr, completion, 0), kSuccess);
  EXPECT_FALSE(completion->IsSignalled());
  EXPECT_EQ(worker->GetRefCount(), 1);
}

TEST(RetriggerableThreaderTest, RunsAtThePriorityOfTheItem) {
  RetriggerableThreader threader;
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  int nice = 0;
  const auto worker = MakeWorker([&](const auto&) {
    nice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    return kSuccess;
  });
  const int base = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
  ASSERT_EQ(threader.Retrigger(worker, nullptr, completion, -1), kSuccess);
  ASSERT_EQ(completion->Wait(kTestWait), kWaitSignalled);
  EXPECT_GT(nice, base);
}

// The worker owns the threader, and the item holds its last reference: the thread destroys
// its own threader and must not wait for itself.
TEST(RetriggerableThreaderTest, DestroyedOnItsOwnThreadItDoesNotWait) {
  class Owner : public LThreadWorker {
   public:
    explicit Owner(Event& died) : mDied(died) {}
    ~Owner() override {
      mThreader.reset();
      mDied.Set();
    }
    TFRESULT Work(const RCPtr<LRefCountedObject>&) override {
      mGo.Wait(kNoTimeout);
      return kSuccess;
    }
    Event& mDied;
    Event mGo{true};
    std::unique_ptr<RetriggerableThreader> mThreader = std::make_unique<RetriggerableThreader>();
  };
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  for (int i = 0; i < 50; ++i) {
    Event died(true);
    RCPtr<Owner> owner = MakeRC<Owner>(died);
    ASSERT_EQ(owner->mThreader->Retrigger(RCPtr<LThreadWorker>(owner), nullptr, completion, 0), kSuccess);
    Event& go = owner->mGo;
    owner = nullptr;
    go.Set();
    ASSERT_EQ(died.Wait(kTestWait), kWaitSignalled);
    ASSERT_EQ(completion->Wait(kTestWait), kWaitSignalled);
  }
}

TEST(RetriggerableThreaderTest, ItemThatDoesNotEndKeepsItsObjectsAfterTheOwnerHasGone) {
  Event died(true);
  Blocker blocker;
  const RCPtr<LEvent> completion = MakeRC<LEvent>();
  const RecordsCaught records;
  {
    const StopWait shortWait(1);
    RetriggerableThreader threader(u"transfer");
    const RCPtr<LRefCountedObject> data(new DeathNotice(died));
    ASSERT_EQ(threader.Retrigger(blocker.worker, data, completion, 0), kSuccess);
    ASSERT_EQ(blocker.entered.Wait(kTestWait), kWaitSignalled);
    threader.Stop();
  }
  EXPECT_TRUE(Thread::HasAbandonedThreads());
  EXPECT_EQ(records.GetText(), "Thread \"transfer\" has not ended within 1 ms and is left running\n");
  EXPECT_FALSE(died.IsSignalled());
  blocker.open.Set();
  EXPECT_EQ(died.Wait(kTestWait), kWaitSignalled);
  EXPECT_EQ(completion->Wait(kTestWait), kWaitSignalled);
}

}  // namespace
}  // namespace TF
