#include "Platform/MidiThreads.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

#include "Platform/MidiDriver.h"
#include "Platform/NativeThread.h"

namespace Platform {
namespace {

struct ThreadCount {
  std::mutex mutex;
  std::condition_variable fell;
  int running = 0;
};

// Never destroyed: a thread may leave while the process ends.
ThreadCount& Threads() {
  static auto& threads = *new ThreadCount;
  return threads;
}

void Enter() {
  const std::lock_guard lock(Threads().mutex);
  ++Threads().running;
}

void Leave() {
  const std::lock_guard lock(Threads().mutex);
  --Threads().running;
  Threads().fell.notify_all();
}

}  // namespace

bool StartMidiThread(std::function<void()> body) {
  Enter();
  NativeThread thread;
  const bool started = thread.Start([run = std::move(body)]() mutable {
    std::exchange(run, nullptr)();
    Leave();
  });
  if (started) {
    thread.Detach();
  } else {
    Leave();
  }
  return started;
}

bool WaitForMidiThreads(std::uint32_t milliseconds) {
  std::unique_lock lock(Threads().mutex);
  return Threads().fell.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                 [] { return Threads().running == 0; });
}

}  // namespace Platform
