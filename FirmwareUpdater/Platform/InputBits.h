#pragma once

#include <cstdint>

namespace Platform {

// The modifiers that go with an event, as of that event. A side is set together with the general bit.
namespace ModifierBit {
inline constexpr std::uint32_t kCtrl = 0x1;
inline constexpr std::uint32_t kLeftCtrl = 0x2;
inline constexpr std::uint32_t kRightCtrl = 0x4;
inline constexpr std::uint32_t kShift = 0x8;
inline constexpr std::uint32_t kLeftShift = 0x10;
inline constexpr std::uint32_t kRightShift = 0x20;
inline constexpr std::uint32_t kAlt = 0x40;
inline constexpr std::uint32_t kLeftAlt = 0x80;
inline constexpr std::uint32_t kRightAlt = 0x100;
inline constexpr std::uint32_t kCommand = 0x200;
inline constexpr std::uint32_t kLeftCommand = 0x400;
inline constexpr std::uint32_t kRightCommand = 0x800;
inline constexpr std::uint32_t kFifth = 0x1000;  // No keyboard sets it.
}  // namespace ModifierBit

namespace MouseButton {
inline constexpr std::uint32_t kLeft = 1;
inline constexpr std::uint32_t kMiddle = 2;
inline constexpr std::uint32_t kRight = 4;
}  // namespace MouseButton

}  // namespace Platform
