#pragma once

#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// Ring of counted objects, first in, first out, in an array with capacity steps of N slots.
// One slot always stays empty. A full ring grows; nothing is ever dropped.
//
// Threads: with a lock every operation runs under it, from any thread; without one the queue
// belongs to one thread at a time. The lock outlives the queue.
template <class T, std::int32_t N, class Lock>
class RCPtrQueue {
 public:
  // Starts empty with this many slots.
  explicit RCPtrQueue(std::int32_t slots = 0, Lock* lock = nullptr) : mLock(lock) { mSlots.SetCount(slots); }
  RCPtrQueue(const RCPtrQueue&) = delete;
  RCPtrQueue& operator=(const RCPtrQueue&) = delete;

  std::int32_t GetCount() const {
    const Guard guard(mLock);
    return Count();
  }
  bool IsEmpty() const { return GetCount() == 0; }

  void Enqueue(const RCPtr<T>& item) {
    const Guard guard(mLock);
    if (mSlots.GetCount() < kFirstSlots) Start();
    if (Count() == mSlots.GetCount() - 1) Grow();
    mSlots[mWriteIndex] = item;
    mWriteIndex = Next(mWriteIndex);
  }

  // Throws runtime_error when the queue is empty.
  RCPtr<T> Dequeue() {
    const Guard guard(mLock);
    if (Count() == 0) {
      Throw<std::runtime_error>("", ContainerOperationName("RCPtrQueue", typeid(T), {N}, "Dequeue"));
    }
    RCPtr<T> item = std::move(mSlots[mReadIndex]);
    mReadIndex = Next(mReadIndex);
    return item;
  }

 private:
  static constexpr std::int32_t kFirstSlots = 2;

  class Guard {
   public:
    explicit Guard(Lock* lock) : mHeld(lock) {
      if (mHeld) mHeld->Lock();
    }
    ~Guard() {
      if (mHeld) mHeld->Unlock();
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    Lock* const mHeld;
  };

  std::int32_t Count() const {
    const std::int32_t count = mWriteIndex - mReadIndex;
    return count < 0 ? count + mSlots.GetCount() : count;
  }
  std::int32_t Next(std::int32_t index) const { return (index + 1) % mSlots.GetCount(); }

  void Start() {
    mSlots.SetCount(kFirstSlots);
    mWriteIndex = 0;
    mReadIndex = 0;
  }

  // Opens a slot before the oldest item, which is where the empty one ends.
  void Grow() {
    mSlots.InsertItems(mReadIndex, 1);
    if (mWriteIndex > mReadIndex) ++mWriteIndex;
    mReadIndex = Next(mReadIndex);
  }

  RCPtrArray<T, N, N> mSlots;
  std::int32_t mWriteIndex = 0;
  std::int32_t mReadIndex = 0;
  Lock* const mLock;
};

}  // namespace TF
