#pragma once

#include <cstdint>

namespace TF {

// The bits of the conditions that a control publishes.
struct ControlCondition {
  static constexpr std::uint32_t kHasFocus = 0x0001;
  static constexpr std::uint32_t kContainsFocus = 0x0002;
  static constexpr std::uint32_t kHover = 0x0004;
  static constexpr std::uint32_t kHasCapture = 0x0008;
  static constexpr std::uint32_t kLeftDown = 0x0010;
  static constexpr std::uint32_t kMiddleDown = 0x0020;
  static constexpr std::uint32_t kRightDown = 0x0040;
  static constexpr std::uint32_t kLeftDrag = 0x0080;
  static constexpr std::uint32_t kMiddleDrag = 0x0100;
  static constexpr std::uint32_t kRightDrag = 0x0200;
  static constexpr std::uint32_t kEnabled = 0x0400;     // With all above it.
  static constexpr std::uint32_t kShown = 0x0800;       // With all above it, and not empty.
  static constexpr std::uint32_t kHoverBelow = 0x1000;  // The control or one below it has the mouse.
};

// Whether any of the bits has gone off or on.
inline bool Fell(std::uint32_t previous, std::uint32_t current, std::uint32_t bits) {
  return (previous & ~current & bits) != 0;
}
inline bool Rose(std::uint32_t previous, std::uint32_t current, std::uint32_t bits) {
  return Fell(current, previous, bits);
}

}  // namespace TF
