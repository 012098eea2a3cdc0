#include "TFFramework/Threads/RetriggerableThreader.h"

#include <atomic>
#include <utility>

namespace TF {

// All that the thread touches. mBusy hands the plain fields over: the caller of Retrigger
// writes them while it is false, the thread uses them while it is true.
struct RetriggerableThreader::Shared {
  Event mTrigger{true};
  RCPtr<LEvent> mCompletionEvent;
  std::atomic<bool> mBusy{false};
  std::atomic<bool> mQuit{false};
  RCPtr<LThreadWorker> mWorker;
  RCPtr<LRefCountedObject> mData;
  std::atomic<TFRESULT> mResult{kSuccess};
};

RetriggerableThreader::RetriggerableThreader(const String& name)
    : mShared(std::make_shared<Shared>()), mThread(&ThreadFunction, mShared), mName(name) {
  mThread.SetPriorityBoost(false);
  mHasThread = mThread.Start();
}

RetriggerableThreader::~RetriggerableThreader() {
  Stop();
}

TFRESULT RetriggerableThreader::ThreadFunction(void* argument) {
  auto& shared = *static_cast<Shared*>(argument);
  while (!shared.mQuit) {
    if (shared.mTrigger.Wait(kNoTimeout) != kWaitSignalled) return kFailure;
    RunItem(shared);
  }
  RunItem(shared);  // What was handed over just before the end is let go of, not run.
  return kSuccess;
}

void RetriggerableThreader::RunItem(Shared& shared) {
  if (!shared.mBusy) return;  // Woken to quit.
  if (!shared.mQuit && shared.mWorker) shared.mResult = shared.mWorker->Work(shared.mData);
  shared.mData = nullptr;
  shared.mWorker = nullptr;
  const RCPtr<LEvent> completion = std::move(shared.mCompletionEvent);
  shared.mBusy = false;
  if (completion) completion->Set();
}

TFRESULT RetriggerableThreader::Retrigger(const RCPtr<LThreadWorker>& worker,
                                          const RCPtr<LRefCountedObject>& data,
                                          const RCPtr<LEvent>& completion, std::int32_t priority) {
  if (mShared->mQuit) return kFailure;
  if (!mHasThread) return kSuccess;
  if (mShared->mBusy) return kFailure;
  mThread.SetPriority(priority);
  mShared->mWorker = worker;
  mShared->mData = data;
  mShared->mCompletionEvent = completion;
  if (completion) completion->Reset();
  mShared->mBusy = true;
  return mShared->mTrigger.Set() ? kSuccess : kFailure;
}

void RetriggerableThreader::Stop() {
  mShared->mQuit = true;
  mShared->mTrigger.Set();
  mThread.Finish(mName);
}

bool RetriggerableThreader::IsBusy() const {
  return mShared->mBusy;
}

bool RetriggerableThreader::IsThreadRunning() const {
  return mHasThread && !mShared->mQuit;
}

TFRESULT RetriggerableThreader::GetResult() const {
  return mShared->mResult;
}

}  // namespace TF
