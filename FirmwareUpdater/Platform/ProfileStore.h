#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Platform {

// A small file of the user's with named values of bytes, such as the places of windows.
//
// Threads: main thread.
class ProfileStore {
 public:
  virtual ~ProfileStore() = default;

  // Nothing when there is none, or when the file cannot be read.
  virtual std::optional<std::vector<unsigned char>> Read(const std::string& section,
                                                         const std::string& name) = 0;
  // False when the file could not be written, which then is as it was.
  virtual bool Write(const std::string& section, const std::string& name,
                     std::span<const unsigned char> bytes) = 0;
};

}  // namespace Platform
