#pragma once

#include <cstdint>

// Counts what the whole process takes from the heap, on every thread: operator new, malloc
// and their relatives. Freeing does not count.
class AllocationCounter {
 public:
  // Counts from here on.
  AllocationCounter();

  // Allocations since then.
  std::int64_t Count() const;

 private:
  std::int64_t mStart;
};
