#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "Platform/EventHandle.h"

namespace TF {

// Results of a wait.
inline constexpr std::uint32_t kWaitSignalled = 0;
inline constexpr std::uint32_t kWaitTimeout = 258;
inline constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;

// Milliseconds that stand for a wait without a limit.
inline constexpr std::uint32_t kNoTimeout = Platform::kWaitForever;

// What the event classes stand on: the system's event and how many threads wait for it.
class EventBlock {
 public:
  // Throws runtime_error when the system has no more events to give.
  explicit EventBlock(bool autoReset);
  EventBlock(const EventBlock&) = delete;
  EventBlock& operator=(const EventBlock&) = delete;

  std::uint32_t Wait(std::uint32_t milliseconds);
  bool IsSignalled() { return Wait(0) != kWaitTimeout; }
  bool HasWaiters() const { return mWaiters.load() > 0; }
  bool Set() { return mHandle.Set(); }
  bool Reset() { return mHandle.Reset(); }
  int GetRawHandle() const { return mHandle.GetDescriptor(); }

 private:
  Platform::EventHandle mHandle;
  std::atomic<std::int32_t> mWaiters{0};
};

// A signal that threads wait for. An auto-reset event lets one waiter through for each Set, a
// manual-reset event lets all through until Reset. It starts unsignalled.
//
// Threads: all operations from any thread. Who was let through may destroy the event at
// once, even while Set has not returned on the other thread.
class Event {
 public:
  explicit Event(bool autoReset);
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;
  virtual ~Event() = default;

  // kWaitSignalled, kWaitTimeout, or kWaitFailed when the system refuses.
  std::uint32_t Wait(std::uint32_t milliseconds) { return mBlock->Wait(milliseconds); }
  // A wait of no length: it consumes the signal of an auto-reset event.
  bool IsSignalled() { return mBlock->IsSignalled(); }
  bool HasWaiters() const { return mBlock->HasWaiters(); }

  // Both tell whether they succeeded.
  bool Set();
  bool Reset() { return mBlock->Reset(); }

 private:
  const std::shared_ptr<EventBlock> mBlock;
};

}  // namespace TF
