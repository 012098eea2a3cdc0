#pragma once

#include <utility>

namespace Platform {

// A descriptor of the system that closes with its owner.
class OwnedDescriptor {
 public:
  static constexpr int kNone = -1;

  OwnedDescriptor() = default;
  explicit OwnedDescriptor(int descriptor) : mDescriptor(descriptor) {}
  OwnedDescriptor(OwnedDescriptor&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, kNone)) {}
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
    Reset(std::exchange(other.mDescriptor, kNone));
    return *this;
  }
  ~OwnedDescriptor() { Reset(); }

  explicit operator bool() const { return mDescriptor != kNone; }
  int Get() const { return mDescriptor; }
  // Takes another descriptor over and closes the former one.
  void Reset(int descriptor = kNone);

 private:
  int mDescriptor = kNone;
};

}  // namespace Platform
