#include "TFFramework/Threads/Thread.h"

#include <gtest/gtest.h>

#include <memory>

#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

// Runs until it is let go.
struct Gate {
  static TFRESULT Pass(void* argument) {
    auto& gate = *static_cast<Gate*>(argument);
    gate.entered.Set();
    gate.open.Wait(kNoTimeout);
    return kSuccess;
  }
  ~Gate() {
    if (died) died->Set();
  }

  Event entered{true};
  Event open{false};
  Event* died = nullptr;
};

TEST(ThreadTest, RunsOnceBetweenStartAndFinish) {
  const auto gate = std::make_shared<Gate>();
  Thread thread(&Gate::Pass, gate);
  EXPECT_FALSE(thread.IsFinished());
  EXPECT_TRUE(thread.Start());
  EXPECT_FALSE(thread.Start());
  ASSERT_EQ(gate->entered.Wait(kTestWait), kWaitSignalled);
  EXPECT_NE(thread.GetThreadId(), 0U);
  EXPECT_FALSE(thread.IsFinished());
  EXPECT_FALSE(thread.Wait(1));
  gate->open.Set();
  EXPECT_TRUE(thread.Wait(kTestWait));
  EXPECT_TRUE(thread.IsFinished());
  EXPECT_TRUE(thread.Wait(0));
  EXPECT_FALSE(thread.Start());
  EXPECT_FALSE(gate->entered.IsSignalled());
}

TEST(ThreadTest, ThreadThatHasJustBegunIsNotFinished) {
  for (int i = 0; i < 300; ++i) {
    const auto gate = std::make_shared<Gate>();
    Thread thread(&Gate::Pass, gate);
    ASSERT_TRUE(thread.Start());
    for (int look = 0; look < 20; ++look) ASSERT_FALSE(thread.IsFinished());
    gate->open.Set();
  }
}

TEST(ThreadTest, NeverStartedThreadIsNotWaitedFor) {
  const auto gate = std::make_shared<Gate>();
  {
    Thread thread(&Gate::Pass, gate);
    EXPECT_FALSE(thread.Wait(kNoTimeout));
    EXPECT_FALSE(thread.IsFinished());
    EXPECT_EQ(thread.GetThreadId(), 0U);
  }
  EXPECT_EQ(gate.use_count(), 1);
}

TEST(ThreadTest, RefusedThreadCountsAsFinished) {
  const auto gate = std::make_shared<Gate>();
  {
    const ThreadsRefused refused;
    const RecordsCaught records;
    Thread thread(&Gate::Pass, gate);
    EXPECT_FALSE(thread.Start());
    EXPECT_TRUE(thread.IsFinished());
    EXPECT_TRUE(thread.Wait(kNoTimeout));
    EXPECT_FALSE(thread.Start());
    EXPECT_NE(records.GetText(), "");
  }
  EXPECT_EQ(gate.use_count(), 1);
}

TEST(ThreadTest, CountsThreadObjectsStartedOrNot) {
  const std::int32_t before = Thread::GetThreadCount();
  {
    const auto gate = std::make_shared<Gate>();
    Thread idle(&Gate::Pass, gate);
    Thread running(&Gate::Pass, gate);
    running.Start();
    EXPECT_EQ(Thread::GetThreadCount(), before + 2);
    gate->open.Set();
  }
  EXPECT_EQ(Thread::GetThreadCount(), before);
}

TEST(ThreadTest, DestructorReturnsWhenTheThreadHasLetGoOfItsArgument) {
  for (int i = 0; i < 100; ++i) {
    const auto gate = std::make_shared<Gate>();
    gate->open.Set();
    {
      Thread thread(&Gate::Pass, gate);
      ASSERT_TRUE(thread.Start());
    }
    ASSERT_EQ(gate.use_count(), 1);
  }
}

TEST(ThreadTest, ThreadThatDoesNotEndIsLeftWithItsArgument) {
  Event died(true);
  auto gate = std::make_shared<Gate>();
  gate->died = &died;
  Event& open = gate->open;
  {
    const StopWait shortWait(1);
    Thread thread(&Gate::Pass, gate);
    ASSERT_TRUE(thread.Start());
  }
  EXPECT_TRUE(Thread::HasAbandonedThreads());
  gate.reset();
  EXPECT_FALSE(died.IsSignalled());
  open.Set();
  EXPECT_EQ(died.Wait(kTestWait), kWaitSignalled);
}

// Its owner is the last thing that the thread itself lets go of.
TEST(ThreadTest, ThreadDestroyedOnItselfIsNotWaitedFor) {
  struct Owner {
    static TFRESULT DropThread(void* argument) {
      auto& owner = *static_cast<Owner*>(argument);
      owner.begin.Wait(kNoTimeout);
      owner.thread.reset();
      owner.dropped.Set();
      return kSuccess;
    }
    Event begin{true};
    Event dropped{true};
    std::unique_ptr<Thread> thread;
  };
  const auto owner = std::make_shared<Owner>();
  owner->thread = std::make_unique<Thread>(&Owner::DropThread, owner);
  ASSERT_TRUE(owner->thread->Start());
  owner->begin.Set();
  EXPECT_EQ(owner->dropped.Wait(kTestWait), kWaitSignalled);
}

}  // namespace
}  // namespace TF
