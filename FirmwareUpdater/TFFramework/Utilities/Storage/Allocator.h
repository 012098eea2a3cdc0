#pragma once

#include <cstddef>

namespace TF {

// Where buffers get their blocks from. Each operation gives null when there is no memory.
class IAllocator {
 public:
  virtual void* Allocate(std::size_t size) = 0;
  virtual void* AllocateZeroed(std::size_t count, std::size_t size) = 0;
  virtual void* Reallocate(void* block, std::size_t size) = 0;
  virtual void Free(void* block) = 0;

 protected:
  ~IAllocator() = default;
};

// The run-time library's heap. Any thread.
class SystemAllocator final : public IAllocator {
 public:
  void* Allocate(std::size_t size) override;
  void* AllocateZeroed(std::size_t count, std::size_t size) override;
  void* Reallocate(void* block, std::size_t size) override;
  void Free(void* block) override;
};

// The one instance of the process; lives until its end.
IAllocator& GetSystemAllocator();

}  // namespace TF
