#include "Tools/Support/FileAccess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "Tools/Support/Descriptor.h"

namespace Tools {
namespace {

[[noreturn]] void Fail(const std::string& path, const char* action, int error) {
  throw std::runtime_error(fmt::format("{}: cannot {}: {}", path, action, std::strerror(error)));
}

std::uint64_t RegularSize(int file, const std::string& path) {
  struct stat status {};
  if (fstat(file, &status) != 0) Fail(path, "examine", errno);
  if (!S_ISREG(status.st_mode)) throw std::runtime_error(path + ": is not a regular file");
  return static_cast<std::uint64_t>(status.st_size);
}

// Non-blocking, so that a FIFO without a writer is refused instead of waited for.
Descriptor OpenForReading(const std::string& path) {
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) Fail(path, "open", errno);
  return file;
}

void WriteAll(int file, std::span<const std::uint8_t> bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) Fail(path, "write", errno);
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
}

}  // namespace

std::uint64_t FileSize(const std::string& path) {
  const Descriptor file = OpenForReading(path);
  return RegularSize(file.Get(), path);
}

std::vector<std::uint8_t> ReadFile(const std::string& path, std::uint64_t limit) {
  const Descriptor file = OpenForReading(path);
  const std::uint64_t size = RegularSize(file.Get(), path);
  if (size > limit)
    throw std::runtime_error(fmt::format("{}: has {} bytes, at most {} are taken", path, size, limit));
  std::vector<std::uint8_t> bytes(size);
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t count = read(file.Get(), bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno != EINTR) Fail(path, "read", errno);
    if (count == 0) throw std::runtime_error(path + ": became shorter while it was read");
    if (count > 0) filled += static_cast<std::size_t>(count);
  }
  return bytes;
}

void ReplaceFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  constexpr mode_t kMode = 0666;
  const std::string fresh = fmt::format("{}.{}.new", path, getpid());
  try {
    Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode));
    if (!file) Fail(path, "create", errno);
    WriteAll(file.Get(), bytes, path);
    if (close(file.Release()) != 0) Fail(path, "write", errno);
    if (std::rename(fresh.c_str(), path.c_str()) != 0) Fail(path, "replace", errno);
  } catch (...) {
    unlink(fresh.c_str());
    throw;
  }
}

}  // namespace Tools
