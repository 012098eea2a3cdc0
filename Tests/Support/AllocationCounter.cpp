#include "Tests/Support/AllocationCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

// Constant-initialised: the first allocations come before any constructor has run.
constinit std::atomic<std::int64_t> allocations{0};

}  // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

// A sanitizer has an allocator of its own and calls back.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

void InstallHooks() {
  static const int installed = __sanitizer_install_malloc_and_free_hooks(
      [](const volatile void*, std::size_t) { allocations.fetch_add(1, std::memory_order_relaxed); },
      [](const volatile void*) {});
  static_cast<void>(installed);
}

}  // namespace

#else

// These stand before the C library's own; operator new ends here as well.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

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

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  *block = __libc_memalign(alignment, size);
  return *block ? 0 : ENOMEM;
}

}  // extern "C"

namespace {

void InstallHooks() {}

}  // namespace

#endif

AllocationCounter::AllocationCounter() {
  InstallHooks();
  mStart = allocations.load();
}

std::int64_t AllocationCounter::Count() const {
  return allocations.load() - mStart;
}
