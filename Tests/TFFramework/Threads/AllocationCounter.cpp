#include "Tests/TFFramework/Threads/AllocationCounter.h"

#include <atomic>

// The two compilers tell of a sanitizer in different ways.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HEAP_IS_TAKEN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HEAP_IS_TAKEN 1
#endif
#endif

namespace {

std::atomic<std::size_t> allocations{0};

}  // namespace

#ifndef HEAP_IS_TAKEN

// The run-time library's own entries, which stay reachable when a program brings its own.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_realloc(block, size);
}
}

#endif

namespace TF {

bool CanCountAllocations() {
#ifdef HEAP_IS_TAKEN
  return false;
#else
  return true;
#endif
}

std::size_t AllocationsSoFar() {
  return allocations.load();
}

}  // namespace TF
