#pragma once

#include <atomic>
#include <cstdint>

namespace TF {

// A number that no other shape of the process has; a shape that is copied or assigned gets a new one.
class ShapeHandle {
 public:
  ShapeHandle() = default;
  ShapeHandle(const ShapeHandle&) : ShapeHandle() {}
  ShapeHandle& operator=(const ShapeHandle&) {
    mValue = Next();
    return *this;
  }

  std::int32_t Get() const { return mValue; }

 private:
  static std::int32_t Next() {
    static std::atomic<std::int32_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
  }

  std::int32_t mValue = Next();
};

}  // namespace TF
