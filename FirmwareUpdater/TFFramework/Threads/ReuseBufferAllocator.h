#pragma once

#include <array>
#include <cstddef>

#include "TFFramework/Threads/LightMutex.h"
#include "TFFramework/Utilities/Storage/Allocator.h"

namespace TF {

// Recycles the blocks of buffers that come and go all the time, as the bytes of captured
// messages do. Sizes are rounded up to powers of two; what is larger than the largest class
// comes from the heap. Any thread.
class ReuseBufferAllocator final : public IAllocator {
 public:
  static constexpr std::size_t kSmallestClassBytes = 16;
  static constexpr std::size_t kLargestClassBytes = std::size_t{1} << 20;
  // Free blocks beyond this sum go back to the heap.
  static constexpr std::size_t kRetainedBytesLimit = std::size_t{4} << 20;

  ReuseBufferAllocator() = default;
  ReuseBufferAllocator(const ReuseBufferAllocator&) = delete;
  ReuseBufferAllocator& operator=(const ReuseBufferAllocator&) = delete;
  ~ReuseBufferAllocator();

  void* Allocate(std::size_t size) override;
  void* AllocateZeroed(std::size_t count, std::size_t size) override;
  // Keeps the contents up to the smaller of both sizes. When it gives null, block is as it was.
  void* Reallocate(void* block, std::size_t size) override;
  void Free(void* block) override;

  // Bytes in free blocks that wait to be used again.
  std::size_t GetRetainedBytes();

 private:
  struct Header;
  static constexpr std::size_t kClassCount = 17;

  Header* TakeFree(std::size_t capacity);

  LightMutex mLock;
  std::array<Header*, kClassCount> mFree{};
  std::size_t mRetainedBytes = 0;
};

// The one instance of the process; lives until its end.
IAllocator& GetReuseBufferAllocator();

}  // namespace TF
