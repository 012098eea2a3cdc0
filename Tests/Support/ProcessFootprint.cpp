#include "Tests/Support/ProcessFootprint.h"

#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace TestSupport {

namespace {

std::size_t CountEntries(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  std::size_t count = 0;
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) ++count;
  return count;
}

std::size_t ReadPeak(const std::filesystem::path& status) {
  std::ifstream file(status);
  for (std::string word; file >> word;) {
    std::size_t kibibytes = 0;
    if (word == "VmHWM:" && file >> kibibytes) return kibibytes;
  }
  return 0;
}

}  // namespace

ProcessFootprint MeasureFootprint(pid_t process) {
  const std::filesystem::path folder = "/proc/" + std::to_string(process);
  return {CountEntries(folder / "fd"), CountEntries(folder / "task"), ReadPeak(folder / "status")};
}

std::size_t HeapBytesInUse() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

}  // namespace TestSupport
