#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace Platform {

// The framework's thread priorities; larger steps are clipped.
inline constexpr int kThreadPriorityLowest = -2;
inline constexpr int kThreadPriorityNormal = 0;
inline constexpr int kThreadPriorityHighest = 2;

// One thread of the system. It begins with the process's timer resolution and with the
// signals that ask the program to end blocked, so that those reach the main thread.
//
// Threads: the owner's thread calls all operations, except where noted.
class NativeThread {
 public:
  NativeThread() = default;
  NativeThread(const NativeThread&) = delete;
  NativeThread& operator=(const NativeThread&) = delete;
  // Lets a thread go that was neither joined nor detached.
  ~NativeThread();

  // Runs body on a new thread. False when the system had none to give, or when this object
  // has started one before. An exception that leaves body ends the process.
  bool Start(std::function<void()> body);

  // Number of the thread in the system; 0 before it has begun and after it has ended. Any thread.
  std::uint32_t GetId() const;
  // True on the thread that this object has started. Any thread.
  bool IsCurrent() const;

  // Takes effect as far as the system grants it, before the start too; true when it did or
  // was in effect already. Any thread.
  bool SetPriority(int priority);

  // Waits without a limit until the thread has ended. Not on the thread itself.
  void Join();
  // Lets the thread run on by itself.
  void Detach();

 private:
  struct State;
  static void* Run(void* startup);

  std::shared_ptr<State> mState = MakeState();
  static std::shared_ptr<State> MakeState();
};

// Stack size of the threads started from now on, in bytes; 0 is the system's own choice.
// Gives back the size that held before. A size that does not fit the address space makes
// every start fail.
std::size_t SetThreadStackSize(std::size_t bytes);

}  // namespace Platform
