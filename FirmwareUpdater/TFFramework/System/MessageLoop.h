#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "Platform/WindowSystem.h"
#include "TFFramework/Threads/Event.h"

namespace TF {

// The main thread's loop: hands out input, has the windows painted, idles, and sleeps until there is more
// to do or the timer's interval is over. Without a window system it has its idling and sleeping alone.
//
// Paints start no idling: what idles may ask for one each time.
//
// Threads: main thread; PostQuit and Wake on any.
class MessageLoop {
 public:
  // How long a notification that a worker has posted may wait.
  static constexpr std::uint32_t kTimerIntervalMs = 33;

  // Called with 0, 1, 2, ... until it returns false, after input, a wake-up or the timer.
  using IdleFunction = std::function<bool(std::int32_t count)>;

  explicit MessageLoop(IdleFunction onIdle, std::uint32_t timerIntervalMs = kTimerIntervalMs)
      : mOnIdle(std::move(onIdle)), mTimerInterval(timerIntervalMs) {}

  // Feeds the loop from now on and must outlive it; before Run. onQuitRequest: the display wants the
  // program to end.
  void SetWindowSystem(Platform::WindowSystem& windowSystem, std::function<void()> onQuitRequest);

  // Returns the status of PostQuit; at once, without idling, when that was called before. What a listener
  // or the idle function throws comes out of here; the loop can be run again.
  std::int32_t Run();
  // A loop in the loop, as long as goesOn says so; false when a quit has ended it.
  bool RunWhile(const std::function<bool()>& goesOn);
  void PostQuit(std::int32_t status);
  void Wake();

 private:
  bool HandleEvents();
  bool IsTimerDue();
  bool Sleep();

  const IdleFunction mOnIdle;
  const std::uint32_t mTimerInterval;  // Milliseconds.
  std::function<void()> mOnQuitRequest;
  std::atomic<Platform::WindowSystem*> mWindowSystem{nullptr};
  Event mWake{true};
  std::uint32_t mLastTimer = 0;  // Milliseconds of the application's clock.
  std::atomic<bool> mQuit{false};
  std::atomic<std::int32_t> mStatus{0};
};

}  // namespace TF
