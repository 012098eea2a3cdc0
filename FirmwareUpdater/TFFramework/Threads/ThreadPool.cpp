#include "TFFramework/Threads/ThreadPool.h"

#include <algorithm>

namespace TF {

void* LThreadPool::LWorkerParams::operator new(std::size_t size) {
  return Blocks().Allocate(size);
}

void LThreadPool::LWorkerParams::operator delete(void* pointer) {
  Blocks().Free(pointer);
}

ReuseAllocator<LThreadPool::LWorkerParams, 1>& LThreadPool::LWorkerParams::Blocks() {
  static auto& blocks = *new ReuseAllocator<LWorkerParams, 1>(true);
  return blocks;
}

LThreadPool::LThreadPool(std::int32_t threadCount, std::int32_t queuePriority)
    : mThreadTotal(std::max(threadCount, 0)),
      mThreadCount(mThreadTotal),
      mEventPool(std::make_unique<EventPool>(mThreadTotal)),
      mThreads(std::make_unique<RetriggerableThreader[]>(static_cast<std::size_t>(mThreadTotal))),
      mQueueThreader(u"LThreadPool::mQueueThreader"),
      mQueueEvent(MakeRC<LEvent>()),
      mQueuePriority(queuePriority) {
  mQueueEvent->Set();  // The first run of the queue threader waits for no other.
}

LThreadPool::~LThreadPool() {
  Shutdown();
}

void LThreadPool::Enqueue(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
                          std::int32_t priority) {
  if (!worker || TryDispatch(worker, data, priority) || mThreadCount < 1) return;
  const RCPtr<LWorkerParams> item = MakeRC<LWorkerParams>(worker, data, priority);
  const MutexLock lock(mQueueMutex);
  if (mThreadCount < 1 || !mQueueThreader.IsThreadRunning()) return;
  const bool wasEmpty = mQueue.GetCount() == 0;
  mQueue.InsertAt(QueuePosition(priority), item);
  if (!wasEmpty) return;
  // The queue threader empties the queue as its last step under the lock, so all that it
  // still has to do before it sets the event needs no lock.
  mQueueEvent->Wait(kNoTimeout);
  mQueueThreader.Retrigger(RCPtr<LThreadWorker>(this), RCPtr<LRefCountedObject>(this), mQueueEvent,
                           mQueuePriority);
}

void LThreadPool::Shutdown() {
  mThreadCount = 0;
  ClearQueue();
  // The queue threader finds the queue empty and leaves, however long the items take that run.
  if (mThreadTotal > 0) mEventPool->GetEvent(0)->Set();
  mQueueThreader.Stop();
  for (std::int32_t i = mThreadTotal - 1; i >= 0; --i) mThreads[static_cast<std::size_t>(i)].Stop();
}

// Each item goes after the lock has been left, since its objects may do anything as they die.
void LThreadPool::ClearQueue() {
  for (;;) {
    RCPtr<LWorkerParams> item;
    const MutexLock lock(mQueueMutex);
    if (mQueue.GetCount() == 0) return;
    mQueue.RemoveLast(item);
  }
}

TFRESULT LThreadPool::Work(const RCPtr<LRefCountedObject>& /*data*/) {
  for (;;) {
    const std::int32_t index = mEventPool->WaitAny(kNoTimeout);
    if (index < 0) return kFailure;
    if (!DispatchNext(index)) return kSuccess;
  }
}

// Gives the next item to a thread that has just finished one. False when no item waits.
bool LThreadPool::DispatchNext(std::int32_t index) {
  RCPtr<LWorkerParams> item;
  const MutexLock lock(mQueueMutex);
  if (mQueue.GetCount() == 0) return false;
  // An item that was dispatched directly in the meantime has the thread; it sets the event again.
  if (mThreads[static_cast<std::size_t>(index)].IsBusy()) return true;
  mQueue.RemoveLast(item);
  Dispatch(index, item->mWorker, item->mData, item->mPriority);
  return mQueue.GetCount() != 0;
}

bool LThreadPool::TryDispatch(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
                              std::int32_t priority) {
  for (std::int32_t i = 0; i < mThreadCount; ++i) {
    const MutexLock lock(mQueueMutex);
    if (mThreadCount < 1) return false;
    // A single thread never overtakes the items that wait.
    if (mThreadCount == 1 && mQueue.GetCount() != 0) return false;
    if (mThreads[static_cast<std::size_t>(i)].IsBusy()) continue;
    if (Dispatch(i, worker, data, priority) == kSuccess) return true;
  }
  return false;
}

TFRESULT LThreadPool::Dispatch(std::int32_t index, const RCPtr<LThreadWorker>& worker,
                               const RCPtr<LRefCountedObject>& data, std::int32_t priority) {
  RetriggerableThreader& threader = mThreads[static_cast<std::size_t>(index)];
  threader.SetName(worker->ToString());
  return threader.Retrigger(worker, data, mEventPool->GetEvent(index), priority);
}

std::int32_t LThreadPool::QueuePosition(std::int32_t priority) const {
  std::int32_t position = 0;
  while (position < mQueue.GetCount() && mQueue.GetAt(position)->mPriority < priority) ++position;
  return position;
}

}  // namespace TF
