#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "TFFramework/Threads/EventPool.h"
#include "TFFramework/Threads/Mutex.h"
#include "TFFramework/Threads/RetriggerableThreader.h"
#include "TFFramework/Threads/ReuseAllocator.h"
#include "TFFramework/Threads/ReuseBufferAllocator.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// A fixed set of threads with a waiting room. An item goes to an idle thread at once or waits
// in the queue, from which higher priorities go first and equal ones in the order in which
// they came. With one thread no item overtakes a waiting one of its priority.
//
// A pool lives behind an RCPtr. While items wait it holds itself, and each item holds its
// worker: whoever owns a pool calls Shutdown before it lets go of it.
//
// Threads: all operations from any thread. Workers run on the pool's threads with no lock
// held.
class LThreadPool : private LThreadWorker {
 public:
  // queuePriority is the priority of the thread that serves the queue.
  LThreadPool(std::int32_t threadCount, std::int32_t queuePriority);
  // Shuts down.
  ~LThreadPool() override;

  // Has worker->Work(data) run at this priority. After Shutdown the item is dropped.
  void Enqueue(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
               std::int32_t priority);

  // Drops the items that have not started and waits for those that run, for each thread up to
  // the stop wait of Thread. Does not wait for a thread that it is called on.
  void Shutdown();

  using LThreadWorker::AddRef;
  using LThreadWorker::CreateCopy;
  using LThreadWorker::GetRefCount;
  using LThreadWorker::IsShareable;
  using LThreadWorker::Release;

 private:
  // A waiting item; its memory is recycled.
  class LWorkerParams : public virtual LRefCountedObject {
   public:
    LWorkerParams(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
                  std::int32_t priority)
        : mWorker(worker), mData(data), mPriority(priority) {}

    static void* operator new(std::size_t size);
    static void operator delete(void* pointer);

    const RCPtr<LThreadWorker> mWorker;
    const RCPtr<LRefCountedObject> mData;
    const std::int32_t mPriority;

   private:
    static ReuseAllocator<LWorkerParams, 1>& Blocks();
  };

  TFRESULT Work(const RCPtr<LRefCountedObject>& data) override;
  bool TryDispatch(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
                   std::int32_t priority);
  TFRESULT Dispatch(std::int32_t index, const RCPtr<LThreadWorker>& worker,
                    const RCPtr<LRefCountedObject>& data, std::int32_t priority);
  bool DispatchNext(std::int32_t index);
  std::int32_t QueuePosition(std::int32_t priority) const;
  void ClearQueue();

  const std::int32_t mThreadTotal;
  std::atomic<std::int32_t> mThreadCount;  // 0 once the pool is shut down.
  const std::unique_ptr<EventPool> mEventPool;
  const std::unique_ptr<RetriggerableThreader[]> mThreads;
  RetriggerableThreader mQueueThreader;
  const RCPtr<LEvent> mQueueEvent;
  RCPtrArray<LWorkerParams, 16, 16, GetReuseBufferAllocator> mQueue;
  Mutex mQueueMutex;  // Guards mQueue and every call on a threader.
  const std::int32_t mQueuePriority;
};

}  // namespace TF
