#pragma once

#include <cstddef>

namespace TF {

// Counts what the whole process takes from the heap. Not available under a sanitizer, which
// has the heap to itself.
bool CanCountAllocations();
std::size_t AllocationsSoFar();

}  // namespace TF
