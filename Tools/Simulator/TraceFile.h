#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Simulator {

// A text file with one line for each event: milliseconds since it was opened, what it was, and
// bytes in hexadecimal. Lines are in the file as soon as they are written. One thread at a time.
class TraceFile {
 public:
  explicit TraceFile(std::string path);  // Empty: nothing is traced.

  // Begins the file anew. Throws std::runtime_error with a sentence.
  void Open();

  // Throws std::runtime_error when the line cannot be written.
  void Write(std::string_view event, std::span<const std::uint8_t> bytes);

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::string mPath;
  std::unique_ptr<std::FILE, Closer> mFile;
  std::chrono::steady_clock::time_point mOpened;
};

}  // namespace Simulator
