#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace TF {

// Half away from zero; beyond the 32-bit limits the limit itself, and 0 for what is no number.
inline std::int32_t RoundToInt32(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  const double limited = std::clamp<double>(std::round(value), Limits::min(), Limits::max());
  return static_cast<std::int32_t>(limited);
}

template <class T>
struct PointT {
  T mX{};
  T mY{};

  bool operator==(const PointT&) const = default;
};

template <class T>
struct SizeT {
  T mWidth{};
  T mHeight{};

  bool operator==(const SizeT&) const = default;
};

// A width or height at or below 0 is an empty rectangle; operations that need another order say so.
template <class T>
struct RectT {
  T mX{};
  T mY{};
  T mWidth{};
  T mHeight{};

  T GetRight() const { return mX + mWidth; }
  T GetBottom() const { return mY + mHeight; }

  bool operator==(const RectT&) const = default;
};

}  // namespace TF
