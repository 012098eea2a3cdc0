#pragma once

#include <cstdint>
#include <memory>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// A thread of the system that runs one function once. What the function touches must live
// in its argument, which the thread shares with the owner: a thread cannot be forced to end,
// so one that does not end in time is let go and runs on with what it holds.
//
// Threads: all operations from any thread, but while one of them waits in Wait or Finish the
// others wait for it. Wait, Finish and the destructor on the thread itself do not wait.
class Thread {
 public:
  using Function = TFRESULT (*)(void* argument);

  // How long the owner of a thread waits for its end before it lets go.
  static constexpr std::uint32_t kStopWaitMilliseconds = 60000;

  Thread(Function function, std::shared_ptr<void> argument);
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  // Finishes; what the thread has let go of by then is gone when this returns.
  virtual ~Thread();

  // True if this call started the thread. False ever after the system has refused one.
  bool Start();
  // True once the function has returned, and when there never will be a thread.
  bool IsFinished();
  // True when the function returned within the time. A thread that was never started gives
  // false at once.
  bool Wait(std::uint32_t milliseconds);

  // Waits up to the stop wait. If the function has not returned by then, writes one
  // diagnostics record with the owner's name, and the thread counts as abandoned.
  void Finish(const String& ownerName);

  // 0 is normal, 2 highest; true as far as the system grants it.
  bool SetPriority(std::int32_t priority);
  // The scheduler here gives a waking thread no boost, so either setting holds already.
  void SetPriorityBoost(bool /*enabled*/) {}

  // Number of the thread in the system, 0 while it does not run.
  std::uint32_t GetThreadId() const;

  // Thread objects alive in the process, started or not.
  static std::int32_t GetThreadCount();
  // True once an owner has let go of a thread that did not end. Such a process must end
  // without running the destructors of its globals.
  static bool HasAbandonedThreads();
  // Replaces the stop wait in the whole process and gives back the one that held before.
  static std::uint32_t SetStopWait(std::uint32_t milliseconds);

 private:
  struct Block;
  static void Run(Block& block);

  const std::shared_ptr<Block> mBlock;
};

}  // namespace TF
