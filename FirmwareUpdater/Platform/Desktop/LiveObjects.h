#pragma once

#include <cstdint>

namespace Platform {

// Counts the objects of the module that hold something of the libraries: as long as there are any,
// the libraries must keep what they share.
class LiveObject {
 public:
  LiveObject() { ++sCount; }
  LiveObject(const LiveObject&) = delete;
  LiveObject& operator=(const LiveObject&) = delete;
  ~LiveObject() { --sCount; }

  static std::int64_t GetCount() { return sCount; }

 private:
  static inline std::int64_t sCount = 0;
};

}  // namespace Platform
