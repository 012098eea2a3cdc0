#pragma once

#include <cairo.h>

#include <cstdint>

namespace Platform {

// What messages are drawn with: 0xRRGGBB, opaque.
namespace MessageColor {
inline constexpr std::uint32_t kGround = 0xFFFFFF;
inline constexpr std::uint32_t kFooterGround = 0xF4F7F8;
inline constexpr std::uint32_t kInk = 0x17212B;
inline constexpr std::uint32_t kAccent = 0x0A626C;
inline constexpr std::uint32_t kAccentHover = 0x085660;
inline constexpr std::uint32_t kAccentDeep = 0x064A52;
inline constexpr std::uint32_t kOnAccent = 0xFFFFFF;
inline constexpr std::uint32_t kTint = 0xE0F0F1;
inline constexpr std::uint32_t kTintDeep = 0xBFDFE2;
inline constexpr std::uint32_t kBorder = 0x8FA1AC;
inline constexpr std::uint32_t kWarning = 0xB45309;
inline constexpr std::uint32_t kError = 0xB3261E;
inline constexpr std::uint32_t kSign = 0xFFFFFF;
}  // namespace MessageColor

inline void SetColor(cairo_t* cairo, std::uint32_t color) {
  const auto channel = [color](int shift) { return static_cast<double>(color >> shift & 0xFF) / 0xFF; };
  cairo_set_source_rgb(cairo, channel(16), channel(8), channel(0));
}

}  // namespace Platform
