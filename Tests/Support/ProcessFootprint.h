#pragma once

#include <sys/types.h>

#include <cstddef>

namespace TestSupport {

// What a running process holds at a moment; zeros when it runs no more.
struct ProcessFootprint {
  std::size_t mDescriptors = 0;
  std::size_t mThreads = 0;
  std::size_t mPeakKibibytes = 0;  // Most resident memory since the program began.
};

ProcessFootprint MeasureFootprint(pid_t process);

// Bytes of this process's heap that are in use. Under a sanitizer, whose heap is another, it
// tells nothing and stays level.
std::size_t HeapBytesInUse();

}  // namespace TestSupport
