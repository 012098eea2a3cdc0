#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "TFFramework/Threads/Event.h"

namespace TF {

// The main thread's loop while no window feeds it: it idles, sleeps until it is woken or the
// timer's interval is over, and idles again.
//
// Threads: Run on the main thread; PostQuit and Wake on any.
class MessageLoop {
 public:
  // How long a notification that a worker has posted may wait.
  static constexpr std::uint32_t kTimerIntervalMs = 33;

  // Called with 0, 1, 2, ... until it returns false; then the loop sleeps.
  using IdleFunction = std::function<bool(std::int32_t count)>;

  MessageLoop() : mWake(true) {}

  // Returns the status of PostQuit; at once, without idling, when that was called before.
  std::int32_t Run(const IdleFunction& onIdle);
  void PostQuit(std::int32_t status);
  void Wake();

 private:
  Event mWake;
  std::atomic<bool> mQuit{false};
  std::atomic<std::int32_t> mStatus{0};
};

}  // namespace TF
