#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "TFFramework/Threads/LightMutex.h"
#include "TFFramework/Utilities/Storage/ArrayBuffer.h"

namespace TF {

// Recycles blocks for objects of one type, so that making and dropping them costs no heap
// traffic once enough blocks exist. A block that comes back is the next to go out. Blocks are
// kept until the allocator dies; N is the step in which its lists grow.
//
// A class uses one process-wide instance, which must never be destroyed, in its own operator
// new and operator delete. Threads: any thread, if made thread-safe.
template <class T, std::uint32_t N>
class ReuseAllocator {
 public:
  explicit ReuseAllocator(bool threadSafe) : mLock(threadSafe ? std::make_unique<LightMutex>() : nullptr) {}
  ReuseAllocator(const ReuseAllocator&) = delete;
  ReuseAllocator& operator=(const ReuseAllocator&) = delete;
  ~ReuseAllocator() {
    for (Buf* block : mBlocks) GetSystemAllocator().Free(block);
  }

  // Room for one T; any other size, as for a derived class, comes from the heap. Throws
  // bad_alloc when there is no memory.
  void* Allocate(std::size_t size) {
    if (size != sizeof(T)) return RoomOf(NewBlock(size, kHeapBlock));
    const LightMutexLock lock(mLock.get());
    if (mFreeCount > 0) return RoomOf(mBlocks[static_cast<std::int32_t>(mFree[--mFreeCount])]);
    return RoomOf(AddBlock());
  }

  // Takes back what Allocate gave; null does nothing.
  void Free(void* pointer) noexcept {
    if (!pointer) return;
    Buf* block = reinterpret_cast<Buf*>(static_cast<std::byte*>(pointer) - sizeof(Buf));
    if (block->mIndex == kHeapBlock) return GetSystemAllocator().Free(block);
    const LightMutexLock lock(mLock.get());
    mFree[mFreeCount++] = block->mIndex;
  }

 private:
  static_assert(alignof(T) <= alignof(std::max_align_t));

  // Stands before the room of each block and keeps it aligned for any T.
  struct alignas(std::max_align_t) Buf {
    std::uint32_t mIndex;
  };
  static constexpr std::uint32_t kHeapBlock = 0xFFFFFFFF;
  static constexpr std::uint32_t kListSlack = 1600;

  static void* RoomOf(Buf* block) { return block + 1; }

  static Buf* NewBlock(std::size_t size, std::uint32_t index) {
    void* memory =
        size <= SIZE_MAX - sizeof(Buf) ? GetSystemAllocator().Allocate(sizeof(Buf) + size) : nullptr;
    if (!memory) Throw<std::bad_alloc>("", "TF::ReuseAllocator::Allocate");
    return new (memory) Buf{index};
  }

  // Both lists grow here, so that giving a block back never needs memory.
  Buf* AddBlock() {
    const std::int32_t index = mBlocks.GetCount();
    if (mFree.GetCount() <= index) mFree.SetCount(index + 1);
    mBlocks.SetCount(index + 1);
    try {
      return mBlocks[index] = NewBlock(sizeof(T), static_cast<std::uint32_t>(index));
    } catch (...) {
      mBlocks.SetCount(index);
      throw;
    }
  }

  ArrayBuffer<Buf*, N, kListSlack, 1, 8, GetSystemAllocator> mBlocks;  // Every block ever made.
  ArrayBuffer<std::uint32_t, N, kListSlack, 1, 8, GetSystemAllocator>
      mFree;  // The first mFreeCount are free.
  std::int32_t mFreeCount = 0;
  const std::unique_ptr<LightMutex> mLock;
};

}  // namespace TF
