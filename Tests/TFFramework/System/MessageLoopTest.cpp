#include "TFFramework/System/MessageLoop.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Tests/Support/FakeWindowSystem.h"

namespace {

using TF::MessageLoop;
using Texts = std::vector<std::string>;

// The timer never adds to what a test expects.
constexpr std::uint32_t kNoTimerMs = 600000;

TEST(MessageLoop, IdlesUntilThereIsNothingToDoAndWakesForMore) {
  Texts calls;
  std::thread other;
  MessageLoop* running = nullptr;
  MessageLoop loop(
      [&](std::int32_t count) {
        calls.push_back(std::to_string(count));
        if (calls.size() == 3) other = std::thread([&] { running->Wake(); });
        if (calls.size() == 5) running->PostQuit(7);
        if (calls.size() > 5) throw std::logic_error("no idling after the end");
        return count < 2;
      },
      kNoTimerMs);
  running = &loop;
  EXPECT_EQ(loop.Run(), 7);
  other.join();
  EXPECT_EQ(calls, Texts({"0", "1", "2", "0", "1"}));
  EXPECT_EQ(loop.Run(), 7);
}

class FedMessageLoop : public testing::Test {
 protected:
  FedMessageLoop() {
    mLoop.SetWindowSystem(mSystem, [this] { mCalls.push_back("quit wish"); });
  }

  void Note(const char* text) { mCalls.push_back(text); }

  TestSupport::FakeWindowSystem mSystem;
  Texts mCalls;
  bool mThrows = false;
  MessageLoop mLoop{[this](std::int32_t count) {
                      if (std::exchange(mThrows, false)) throw std::runtime_error("in the idle phase");
                      mCalls.push_back("idle " + std::to_string(count));
                      return count < 1;
                    },
                    kNoTimerMs};
};

TEST_F(FedMessageLoop, InputStartsTheIdlePhaseAnewAndPaintsDoNot) {
  mSystem.mWaits = {[this] { mSystem.mInput.push_back([this] { Note("input"); }); },  // Idles once more.
                    [] {},                                                            // A paint alone.
                    [this] { mLoop.Wake(); },
                    [this] {
                      mSystem.mQuitRequest = true;
                      mLoop.PostQuit(3);
                    }};
  EXPECT_EQ(mLoop.Run(), 3);
  EXPECT_EQ(mCalls, Texts({"idle 0", "idle 1", "input", "idle 0", "idle 1", "idle 0", "idle 1"}));
}

TEST_F(FedMessageLoop, TellsOfTheDisplaysWishToEnd) {
  mSystem.mWaits = {[this] { mSystem.mQuitRequest = true; }, [this] { mLoop.PostQuit(0); }};
  mLoop.Run();
  EXPECT_EQ(mCalls, Texts({"idle 0", "idle 1", "quit wish"}));
}

TEST(MessageLoopTimer, StartsTheIdlePhaseWithoutAnyInput) {
  int phases = 0;
  MessageLoop* running = nullptr;
  MessageLoop loop([&](std::int32_t) {
    if (++phases == 3) running->PostQuit(0);
    return false;
  });
  running = &loop;
  loop.Run();
  EXPECT_EQ(phases, 3);
}

TEST_F(FedMessageLoop, GoesOnAfterAnException) {
  mThrows = true;
  EXPECT_THROW(mLoop.Run(), std::runtime_error);
  mSystem.mWaits = {[this] { mLoop.PostQuit(1); }};
  EXPECT_EQ(mLoop.Run(), 1);
  EXPECT_EQ(mCalls, Texts({"idle 0", "idle 1"}));
}

TEST_F(FedMessageLoop, ALoopInTheLoopEndsByItsConditionOrByAQuitForBoth) {
  bool goesOn = true;
  mSystem.mWaits = {[&] { goesOn = false; }};
  EXPECT_TRUE(mLoop.RunWhile([&] { return goesOn; }));
  goesOn = true;
  mSystem.mWaits = {[&] { mLoop.PostQuit(5); }};
  EXPECT_FALSE(mLoop.RunWhile([&] { return goesOn; }));
  EXPECT_EQ(mLoop.Run(), 5);
}

}  // namespace
