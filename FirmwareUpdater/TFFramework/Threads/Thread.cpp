#include "TFFramework/Threads/Thread.h"

#include <fmt/format.h>

#include <atomic>
#include <utility>

#include "Platform/NativeThread.h"
#include "TFFramework/ObjectBase/Wrappers.h"
#include "TFFramework/Threads/LightMutex.h"
#include "TFFramework/Threads/TrafficLight.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

std::atomic<std::int32_t> threadCount{0};
std::atomic<bool> threadsAbandoned{false};
std::atomic<std::uint32_t> stopWait{Thread::kStopWaitMilliseconds};

enum class ThreadState : std::uint32_t { kCreated, kStarted, kCreationFailed };

using DoneLight = LWrapper<TrafficLight, LRefCountedObject>;

}  // namespace

// The owner's part and what the running thread needs after its owner has let go.
struct Thread::Block {
  Block(Function function, std::shared_ptr<void> argument)
      : mFunction(function), mArgument(std::move(argument)) {}

  const Function mFunction;
  std::shared_ptr<void> mArgument;
  Platform::NativeThread mHandle;
  LightMutex mLock;  // Guards mState, mAbandoned.
  ThreadState mState = ThreadState::kCreated;
  bool mAbandoned = false;
  // Green while the function does not run.
  RCPtr<DoneLight> mDoneLight = MakeRC<DoneLight>();
};

Thread::Thread(Function function, std::shared_ptr<void> argument)
    : mBlock(std::make_shared<Block>(function, std::move(argument))) {
  mBlock->mDoneLight->SetGreen();
  threadCount.fetch_add(1);
}

Thread::~Thread() {
  Finish(String());
  if (IsFinished() && !mBlock->mHandle.IsCurrent())
    mBlock->mHandle.Join();
  else
    mBlock->mHandle.Detach();
  threadCount.fetch_sub(1);
}

// The light turns red before the thread exists, so that a thread that has not come to its
// first step yet never looks like one that has finished.
bool Thread::Start() {
  const LightMutexLock lock(mBlock->mLock);
  if (mBlock->mState != ThreadState::kCreated) return false;
  mBlock->mDoneLight->SetRed();
  const bool started = mBlock->mHandle.Start([block = mBlock] { Run(*block); });
  mBlock->mState = started ? ThreadState::kStarted : ThreadState::kCreationFailed;
  if (!started) {
    mBlock->mDoneLight->SetGreen();
    LogRecord("The system has refused a thread: what it was to do will not be done");
  }
  return started;
}

void Thread::Run(Block& block) {
  const RCPtr<DoneLight> light = block.mDoneLight;
  block.mFunction(block.mArgument.get());
  light->SetGreen();
}

bool Thread::IsFinished() {
  const LightMutexLock lock(mBlock->mLock);
  if (mBlock->mState == ThreadState::kCreated) return false;
  return mBlock->mDoneLight->IsGreen();
}

bool Thread::Wait(std::uint32_t milliseconds) {
  if (mBlock->mHandle.IsCurrent()) return false;
  const LightMutexLock lock(mBlock->mLock);
  if (mBlock->mState == ThreadState::kCreated) return false;
  return mBlock->mDoneLight->Wait(milliseconds) == kWaitSignalled;
}

void Thread::Finish(const String& ownerName) {
  if (mBlock->mHandle.IsCurrent()) return;
  const std::uint32_t limit = stopWait.load();
  const LightMutexLock lock(mBlock->mLock);
  if (mBlock->mState != ThreadState::kStarted || mBlock->mAbandoned) return;
  if (mBlock->mDoneLight->Wait(limit) == kWaitSignalled) return;
  mBlock->mAbandoned = true;
  threadsAbandoned.store(true);
  LogRecord(
      fmt::format("Thread \"{}\" has not ended within {} ms and is left running", ToUtf8(ownerName), limit));
}

bool Thread::SetPriority(std::int32_t priority) {
  return mBlock->mHandle.SetPriority(priority);
}

std::uint32_t Thread::GetThreadId() const {
  return mBlock->mHandle.GetId();
}

std::int32_t Thread::GetThreadCount() {
  return threadCount.load();
}

bool Thread::HasAbandonedThreads() {
  return threadsAbandoned.load();
}

std::uint32_t Thread::SetStopWait(std::uint32_t milliseconds) {
  return stopWait.exchange(milliseconds);
}

}  // namespace TF
