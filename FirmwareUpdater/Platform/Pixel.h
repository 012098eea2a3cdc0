#pragma once

#include <cstdint>

namespace Platform {

// 0xAARRGGBB with each colour multiplied by alpha / 255, to the nearest.
constexpr std::uint32_t Premultiply(std::uint32_t argb) {
  constexpr std::uint32_t kMaxByte = 255;
  const std::uint32_t alpha = argb >> 24;
  if (alpha == kMaxByte) return argb;
  std::uint32_t result = alpha << 24;
  for (int shift = 0; shift < 24; shift += 8) {
    result |= ((argb >> shift & kMaxByte) * alpha + kMaxByte / 2) / kMaxByte << shift;
  }
  return result;
}

}  // namespace Platform
