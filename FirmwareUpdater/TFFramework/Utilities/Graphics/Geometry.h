#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace TF {

// Half away from zero; beyond the 32-bit limits the limit itself, and 0 for what is no number.
inline std::int32_t RoundToInt32(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  const double limited = std::clamp<double>(std::round(value), Limits::min(), Limits::max());
  return static_cast<std::int32_t>(limited);
}

// Towards zero, with the same limits.
inline std::int32_t TruncateToInt32(double value) {
  return RoundToInt32(std::trunc(value));
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

// A side of at most this length holds nothing.
template <class T>
constexpr T kEmptySide = std::is_floating_point_v<T> ? static_cast<T>(std::numeric_limits<double>::epsilon())
                                                     : T{};

template <class T>
bool IsEmpty(const RectT<T>& rect) {
  return !(rect.mWidth > kEmptySide<T> && rect.mHeight > kEmptySide<T>);
}

// Near edges belong to a rectangle, far ones do not.
template <class T>
bool Contains(const RectT<T>& rect, const PointT<T>& point) {
  return point.mX >= rect.mX && point.mX < rect.GetRight() && point.mY >= rect.mY &&
         point.mY < rect.GetBottom();
}

// The part that both have. Where they do not overlap, a rectangle of width and height 0.
template <class T>
RectT<T> Intersect(const RectT<T>& a, const RectT<T>& b) {
  // Far edges of integer rectangles may lie beyond the limits of their type.
  using Edge = std::conditional_t<std::is_integral_v<T>, std::int64_t, T>;
  const T x = std::max(a.mX, b.mX);
  const T y = std::max(a.mY, b.mY);
  const Edge width = std::min(Edge{a.mX} + a.mWidth, Edge{b.mX} + b.mWidth) - x;
  const Edge height = std::min(Edge{a.mY} + a.mHeight, Edge{b.mY} + b.mHeight) - y;
  if (!(width > kEmptySide<T> && height > kEmptySide<T>)) return {x, y, T{}, T{}};
  return {x, y, static_cast<T>(width), static_cast<T>(height)};
}

// The same rectangle with a width and height of at least 0.
template <class T>
RectT<T> Normalize(RectT<T> rect) {
  if (rect.mWidth < 0) {
    rect.mX += rect.mWidth;
    rect.mWidth = -rect.mWidth;
  }
  if (rect.mHeight < 0) {
    rect.mY += rect.mHeight;
    rect.mHeight = -rect.mHeight;
  }
  return rect;
}

}  // namespace TF
