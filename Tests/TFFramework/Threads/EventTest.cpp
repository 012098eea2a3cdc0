#include "TFFramework/Threads/Event.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Threads/TrafficLight.h"
#include "Tests/TFFramework/Threads/ThreadsTestSupport.h"

namespace TF {
namespace {

TEST(EventTest, WaitTellsSignalFromTimeout) {
  Event event(true);
  EXPECT_EQ(event.Wait(1), 258U);
  event.Set();
  EXPECT_EQ(event.Wait(0xFFFFFFFF), 0U);
}

TEST(EventTest, IsSignalledConsumesAutoResetOnly) {
  Event once(true);
  Event always(false);
  for (Event* event : {&once, &always}) {
    EXPECT_FALSE(event->IsSignalled());
    EXPECT_TRUE(event->Set());
    EXPECT_TRUE(event->IsSignalled());
  }
  EXPECT_FALSE(once.IsSignalled());
  EXPECT_TRUE(always.IsSignalled());
  EXPECT_TRUE(always.Reset());
  EXPECT_FALSE(always.IsSignalled());
}

TEST(EventTest, SharedEventIsAutoResetWhateverIsAskedFor) {
  for (const bool autoReset : {true, false}) {
    LEvent event(autoReset);
    EXPECT_FALSE(event.IsSignalled());
    event.Set();
    EXPECT_TRUE(event.IsSignalled());
    EXPECT_FALSE(event.IsSignalled());
  }
}

TEST(EventTest, HasWaitersWhileAThreadWaits) {
  Event event(true);
  EXPECT_FALSE(event.HasWaiters());
  std::thread waiter([&] { EXPECT_EQ(event.Wait(kTestWait), kWaitSignalled); });
  while (!event.HasWaiters()) std::this_thread::yield();
  event.Set();
  waiter.join();
  EXPECT_FALSE(event.HasWaiters());
}

TEST(EventTest, ThrowsWhenTheSystemHasNoEventLeft) {
  // The sanitizers open descriptors to look at the first object of a type, so one comes before.
  EXPECT_THROW(Throw<std::runtime_error>("", "TF::EventTest"), std::runtime_error);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 0;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  // The block alone: sanitizers need descriptors of their own to look at objects with virtual
  // operations.
  EXPECT_THROW(EventBlock(true), std::runtime_error);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}

// The setter may still be inside Set when the waiter has the event destroyed.
TEST(EventTest, WaiterMayDestroyTheEventAtOnce) {
  for (int i = 0; i < 100; ++i) {
    for (const bool autoReset : {true, false}) {
      auto event = std::make_unique<Event>(autoReset);
      std::thread setter([raw = event.get()] { raw->Set(); });
      ASSERT_EQ(event->Wait(kTestWait), kWaitSignalled);
      event.reset();
      setter.join();
    }
  }
}

TEST(TrafficLightTest, StartsRedAndLetsAllThroughWhileGreen) {
  TrafficLight light;
  EXPECT_FALSE(light.IsGreen());
  EXPECT_EQ(light.Wait(1), kWaitTimeout);
  EXPECT_TRUE(light.SetGreen());
  EXPECT_EQ(light.Wait(0), kWaitSignalled);
  EXPECT_EQ(light.Wait(kNoTimeout), kWaitSignalled);
  EXPECT_TRUE(light.SetRed());
  EXPECT_FALSE(light.IsGreen());
}

TEST(TrafficLightTest, WaiterReceivesThePayloadLeftBeforeGreen) {
  Event died(true);
  {
    TrafficLightWithData light;
    std::thread giver([&] {
      light.SetData(RCPtr<LRefCountedObject>(new LHolder<int>(7)));
      light.SetGreen();
    });
    ASSERT_EQ(light.Wait(kTestWait), kWaitSignalled);
    const RCPtr<LHolder<int>> data = light.GetData();
    giver.join();
    ASSERT_TRUE(data);
    EXPECT_EQ(data->GetValue(), 7);
    light.SetData(RCPtr<LRefCountedObject>(new DeathNotice(died)));
    EXPECT_FALSE(died.IsSignalled());
  }
  EXPECT_TRUE(died.IsSignalled());
}

}  // namespace
}  // namespace TF
