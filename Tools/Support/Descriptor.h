#pragma once

#include <utility>

namespace Tools {

// Owns a file descriptor of the system and closes it; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : mDescriptor(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { Close(); }

  int Get() const { return mDescriptor; }
  explicit operator bool() const { return mDescriptor >= 0; }
  // The caller owns it from here on.
  int Release() { return std::exchange(mDescriptor, -1); }
  void Close();

 private:
  int mDescriptor = -1;
};

}  // namespace Tools
