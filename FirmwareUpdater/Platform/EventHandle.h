#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Platform {

// Milliseconds that stand for a wait without a limit.
inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

enum class WaitStatus { kSignalled, kTimeout, kFailed };

// An event of the system that threads wait for, with a raw handle to wait for one of many.
// An auto-reset event lets one waiter through for each time it is set (setting it twice
// before a wait counts once); a manual-reset event lets all through until Reset.
//
// Threads: all operations from any thread. What a thread did before Set is visible to the
// thread whose wait that Set ends.
class EventHandle {
 public:
  // The event starts unsignalled. IsValid tells whether the system had one to give; without
  // one Set and Reset answer false and every wait fails.
  explicit EventHandle(bool autoReset);
  ~EventHandle();
  EventHandle(const EventHandle&) = delete;
  EventHandle& operator=(const EventHandle&) = delete;

  bool IsValid() const { return mDescriptor >= 0; }
  int GetDescriptor() const { return mDescriptor; }

  bool Set();
  bool Reset();
  WaitStatus Wait(std::uint32_t milliseconds);

 private:
  WaitStatus TryPass(std::uint32_t milliseconds);

  const int mDescriptor;
  const bool mAutoReset;
  std::atomic<std::uint32_t> mSetCount{0};
};

// Waits for any of several auto-reset events, given by their descriptors. kSignalled stores
// the lowest signalled position in index and consumes that event alone. An empty list fails.
WaitStatus WaitForAnyEvent(std::span<const int> descriptors, std::uint32_t milliseconds, std::size_t& index);

}  // namespace Platform
