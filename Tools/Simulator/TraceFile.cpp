#include "Tools/Simulator/TraceFile.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace Simulator {

TraceFile::TraceFile(std::string path) : mPath(std::move(path)) {}

void TraceFile::Open() {
  if (mPath.empty()) return;
  mFile.reset(std::fopen(mPath.c_str(), "we"));
  if (!mFile) throw std::runtime_error(fmt::format("{}: cannot create: {}", mPath, std::strerror(errno)));
  mOpened = std::chrono::steady_clock::now();
}

void TraceFile::Write(std::string_view event, std::span<const std::uint8_t> bytes) {
  if (!mFile) return;
  const std::chrono::duration<double, std::milli> age = std::chrono::steady_clock::now() - mOpened;
  const std::string line =
      fmt::format("{:.3f} {}{}{:02X}\n", age.count(), event, bytes.empty() ? "" : " ", fmt::join(bytes, " "));
  if (std::fwrite(line.data(), 1, line.size(), mFile.get()) != line.size() || std::fflush(mFile.get()) != 0)
    throw std::runtime_error(fmt::format("{}: cannot write: {}", mPath, std::strerror(errno)));
}

}  // namespace Simulator
