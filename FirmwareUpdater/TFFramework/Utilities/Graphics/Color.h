#pragma once

#include <cstdint>

namespace TF {

// A colour with alpha, each channel from 0 to 1. Packed it is 0xAARRGGBB.
struct LColor {
  float mRed = 0;
  float mGreen = 0;
  float mBlue = 0;
  float mAlpha = 0;

  static LColor FromPacked(std::uint32_t argb);
  // Each channel to its nearest byte, half away from zero, and clamped; 0 for what is no number.
  std::uint32_t ToPacked() const;

  bool operator==(const LColor&) const = default;
};

}  // namespace TF
