#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Platform/Canvas.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// A pixel's coordinate. What lies beyond all surfaces is pulled in, so that a rectangle between two
// coordinates stays within the limits of its numbers.
inline std::int32_t ToPixel(double coordinate) {
  constexpr double kFarOut = (1 << 30) - 1;
  return RoundToInt32(std::clamp(coordinate, -kFarOut, kFarOut));
}

// Both edges are rounded, not the size, so that neighbours stay neighbours.
inline Platform::PixelRect ToPixels(const RectT<double>& rect) {
  const std::int32_t x = ToPixel(rect.mX);
  const std::int32_t y = ToPixel(rect.mY);
  return {x, y, ToPixel(rect.mX + rect.mWidth) - x, ToPixel(rect.mY + rect.mHeight) - y};
}

}  // namespace TF
