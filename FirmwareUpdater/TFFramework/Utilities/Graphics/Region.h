#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// A set of pixels as a list of rectangles that do not overlap and are not empty. A rectangle that
// joins and covers all others leaves itself as the only one. Not thread-safe.
class Region {
 public:
  using Rect = RectT<std::int32_t>;

  Region() = default;
  explicit Region(const Rect& rect) { Add(rect); }

  bool IsEmpty() const { return mRects.empty(); }
  std::int32_t GetCount() const { return static_cast<std::int32_t>(mRects.size()); }
  // index from 0 to GetCount() - 1.
  const Rect& operator[](std::int32_t index) const { return mRects[static_cast<std::size_t>(index)]; }
  std::vector<Rect>::const_iterator begin() const { return mRects.begin(); }
  std::vector<Rect>::const_iterator end() const { return mRects.end(); }

  // The smallest rectangle around all; 0, 0, 0, 0 for none.
  Rect GetBounds() const;
  bool Contains(const PointT<std::int32_t>& point) const;
  // True when the region is this one rectangle.
  bool IsRect(const Rect& rect) const { return mRects.size() == 1 && mRects.front() == rect; }
  // True when both hold the same pixels, however they are divided.
  bool HasSamePixels(const Region& other) const;

  void Clear() { mRects.clear(); }
  void Add(const Rect& rect);
  void Add(const Region& other);
  void Subtract(const Rect& rect);
  void Subtract(const Region& other);
  void Intersect(const Rect& rect);
  void Intersect(const Region& other);
  // What leaves the 32-bit limits is lost.
  void Translate(const PointT<std::int32_t>& offset);

 private:
  void Join();

  std::vector<Rect> mRects;
};

}  // namespace TF
