#include "TFFramework/Threads/ReuseBufferAllocator.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

namespace TF {

// Stands before the room of each block and keeps it aligned for any type.
struct alignas(std::max_align_t) ReuseBufferAllocator::Header {
  std::size_t capacity;  // Of the room behind it; above the largest class for heap blocks.
  Header* next;          // While the block is free.
};

namespace {

constexpr int kSmallestClassShift = std::countr_zero(ReuseBufferAllocator::kSmallestClassBytes);

bool IsRecycled(std::size_t capacity) {
  return capacity <= ReuseBufferAllocator::kLargestClassBytes;
}

std::size_t CapacityFor(std::size_t size) {
  if (!IsRecycled(size)) return size;
  return std::bit_ceil(std::max(size, ReuseBufferAllocator::kSmallestClassBytes));
}

std::size_t ClassOf(std::size_t capacity) {
  return static_cast<std::size_t>(std::countr_zero(capacity) - kSmallestClassShift);
}

}  // namespace

ReuseBufferAllocator::~ReuseBufferAllocator() {
  for (Header* header : mFree) {
    while (header) {
      Header* next = header->next;
      GetSystemAllocator().Free(header);
      header = next;
    }
  }
}

void* ReuseBufferAllocator::Allocate(std::size_t size) {
  static_assert(kSmallestClassBytes << (kClassCount - 1) == kLargestClassBytes);
  const std::size_t capacity = CapacityFor(size);
  if (capacity > SIZE_MAX - sizeof(Header)) return nullptr;
  Header* header = TakeFree(capacity);
  if (!header) {
    void* memory = GetSystemAllocator().Allocate(sizeof(Header) + capacity);
    if (!memory) return nullptr;
    header = new (memory) Header{capacity, nullptr};
  }
  return header + 1;
}

void* ReuseBufferAllocator::AllocateZeroed(std::size_t count, std::size_t size) {
  if (size != 0 && count > SIZE_MAX / size) return nullptr;
  void* block = Allocate(count * size);
  if (block) std::memset(block, 0, count * size);
  return block;
}

void* ReuseBufferAllocator::Reallocate(void* block, std::size_t size) {
  if (!block) return Allocate(size);
  const std::size_t before = (static_cast<Header*>(block) - 1)->capacity;
  if (CapacityFor(size) == before) return block;
  void* moved = Allocate(size);
  if (!moved) return nullptr;
  std::memcpy(moved, block, std::min(before, size));
  Free(block);
  return moved;
}

void ReuseBufferAllocator::Free(void* block) {
  if (!block) return;
  Header* header = static_cast<Header*>(block) - 1;
  {
    const LightMutexLock lock(mLock);
    if (IsRecycled(header->capacity) && mRetainedBytes + header->capacity <= kRetainedBytesLimit) {
      Header*& first = mFree[ClassOf(header->capacity)];
      header->next = first;
      first = header;
      mRetainedBytes += header->capacity;
      return;
    }
  }
  GetSystemAllocator().Free(header);
}

std::size_t ReuseBufferAllocator::GetRetainedBytes() {
  const LightMutexLock lock(mLock);
  return mRetainedBytes;
}

ReuseBufferAllocator::Header* ReuseBufferAllocator::TakeFree(std::size_t capacity) {
  if (!IsRecycled(capacity)) return nullptr;
  const LightMutexLock lock(mLock);
  Header*& first = mFree[ClassOf(capacity)];
  Header* header = first;
  if (!header) return nullptr;
  first = header->next;
  mRetainedBytes -= capacity;
  return header;
}

IAllocator& GetReuseBufferAllocator() {
  static auto& instance = *new ReuseBufferAllocator;
  return instance;
}

}  // namespace TF
