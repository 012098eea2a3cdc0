#include "TFFramework/Utilities/Storage/Allocator.h"

#include <cstdlib>
#include <new>

namespace TF {

void* SystemAllocator::Allocate(std::size_t size) {
  return std::malloc(size);
}

void* SystemAllocator::AllocateZeroed(std::size_t count, std::size_t size) {
  return std::calloc(count, size);
}

void* SystemAllocator::Reallocate(void* block, std::size_t size) {
  return std::realloc(block, size);
}

void SystemAllocator::Free(void* block) {
  std::free(block);
}

IAllocator& GetSystemAllocator() {
  // Trivially destructible, so that buffers of statics may still be freed at process end.
  static SystemAllocator allocator;
  return allocator;
}

}  // namespace TF
