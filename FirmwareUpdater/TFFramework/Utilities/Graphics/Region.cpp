#include "TFFramework/Utilities/Graphics/Region.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace TF {

namespace {

using Rect = Region::Rect;
using Limits = std::numeric_limits<std::int32_t>;

std::int64_t RightOf(const Rect& rect) {
  return std::int64_t{rect.mX} + rect.mWidth;
}

std::int64_t BottomOf(const Rect& rect) {
  return std::int64_t{rect.mY} + rect.mHeight;
}

// Nothing when the edges enclose nothing or leave the limits of a rectangle.
std::optional<Rect> FromEdges(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
  const std::int64_t width = right - left;
  const std::int64_t height = bottom - top;
  const bool fits = left >= Limits::min() && top >= Limits::min() && left <= Limits::max() &&
                    top <= Limits::max() && width <= Limits::max() && height <= Limits::max();
  if (!fits || width <= 0 || height <= 0) return std::nullopt;
  return Rect{static_cast<std::int32_t>(left), static_cast<std::int32_t>(top),
              static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
}

bool Covers(const Rect& outer, const Rect& inner) {
  return outer.mX <= inner.mX && outer.mY <= inner.mY && RightOf(outer) >= RightOf(inner) &&
         BottomOf(outer) >= BottomOf(inner);
}

// Full-width strips above and below the hole, and what remains beside it.
void AppendDifference(const Rect& rect, const Rect& hole, std::vector<Rect>& pieces) {
  const Rect cut = Intersect(rect, hole);
  if (IsEmpty(cut)) {
    pieces.push_back(rect);
    return;
  }
  const std::optional<Rect> around[] = {
      FromEdges(rect.mX, rect.mY, RightOf(rect), cut.mY),
      FromEdges(rect.mX, cut.mY, cut.mX, BottomOf(cut)),
      FromEdges(RightOf(cut), cut.mY, RightOf(rect), BottomOf(cut)),
      FromEdges(rect.mX, BottomOf(cut), RightOf(rect), BottomOf(rect)),
  };
  for (const auto& piece : around) {
    if (piece) pieces.push_back(*piece);
  }
}

// The two as one, when they share a whole edge.
std::optional<Rect> JoinPair(const Rect& a, const Rect& b) {
  const bool sideBySide =
      a.mY == b.mY && a.mHeight == b.mHeight && (RightOf(a) == b.mX || RightOf(b) == a.mX);
  const bool stacked = a.mX == b.mX && a.mWidth == b.mWidth && (BottomOf(a) == b.mY || BottomOf(b) == a.mY);
  if (!sideBySide && !stacked) return std::nullopt;
  return FromEdges(std::min(a.mX, b.mX), std::min(a.mY, b.mY), std::max(RightOf(a), RightOf(b)),
                   std::max(BottomOf(a), BottomOf(b)));
}

std::int32_t Saturated(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

}  // namespace

Region::Rect Region::GetBounds() const {
  if (mRects.empty()) return {};
  std::int64_t left = Limits::max(), top = Limits::max(), right = Limits::min(), bottom = Limits::min();
  for (const Rect& rect : mRects) {
    left = std::min<std::int64_t>(left, rect.mX);
    top = std::min<std::int64_t>(top, rect.mY);
    right = std::max(right, RightOf(rect));
    bottom = std::max(bottom, BottomOf(rect));
  }
  return {static_cast<std::int32_t>(left), static_cast<std::int32_t>(top), Saturated(right - left),
          Saturated(bottom - top)};
}

bool Region::Contains(const PointT<std::int32_t>& point) const {
  return std::any_of(mRects.begin(), mRects.end(), [&](const Rect& rect) {
    return point.mX >= rect.mX && point.mY >= rect.mY && point.mX < RightOf(rect) &&
           point.mY < BottomOf(rect);
  });
}

bool Region::HasSamePixels(const Region& other) const {
  Region onlyHere = *this;
  Region onlyThere = other;
  onlyHere.Subtract(other);
  onlyThere.Subtract(*this);
  return onlyHere.IsEmpty() && onlyThere.IsEmpty();
}

void Region::Add(const Rect& rect) {
  if (TF::IsEmpty(rect)) return;
  if (std::any_of(mRects.begin(), mRects.end(), [&](const Rect& old) { return Covers(old, rect); })) return;
  // The new rectangle stays whole: it is what a caller repaints in one go.
  Subtract(rect);
  mRects.push_back(rect);
  Join();
}

void Region::Add(const Region& other) {
  if (this == &other) return;
  for (const Rect& rect : other) Add(rect);
}

void Region::Subtract(const Rect& rect) {
  std::vector<Rect> pieces;
  pieces.reserve(mRects.size());
  for (const Rect& old : mRects) AppendDifference(old, rect, pieces);
  mRects = std::move(pieces);
}

void Region::Subtract(const Region& other) {
  if (this == &other) return Clear();
  for (const Rect& rect : other) Subtract(rect);
}

void Region::Intersect(const Rect& rect) {
  for (Rect& old : mRects) old = TF::Intersect(old, rect);
  std::erase_if(mRects, [](const Rect& old) { return TF::IsEmpty(old); });
}

void Region::Intersect(const Region& other) {
  std::vector<Rect> both;
  for (const Rect& rect : mRects) {
    for (const Rect& limit : other) {
      const Rect cut = TF::Intersect(rect, limit);
      if (!TF::IsEmpty(cut)) both.push_back(cut);
    }
  }
  mRects = std::move(both);
}

void Region::Translate(const PointT<std::int32_t>& offset) {
  std::vector<Rect> moved;
  moved.reserve(mRects.size());
  for (const Rect& rect : mRects) {
    const std::int64_t left = std::int64_t{rect.mX} + offset.mX;
    const std::int64_t top = std::int64_t{rect.mY} + offset.mY;
    const auto inside =
        FromEdges(std::max<std::int64_t>(left, Limits::min()), std::max<std::int64_t>(top, Limits::min()),
                  std::min<std::int64_t>(left + rect.mWidth, Limits::max()),
                  std::min<std::int64_t>(top + rect.mHeight, Limits::max()));
    if (inside) moved.push_back(*inside);
  }
  mRects = std::move(moved);
}

// Only the newest rectangle can have become joinable, and each joint makes a new one.
void Region::Join() {
  for (std::size_t index = 0; index + 1 < mRects.size();) {
    const auto joined = JoinPair(mRects[index], mRects.back());
    if (!joined) {
      ++index;
      continue;
    }
    mRects.pop_back();
    mRects.erase(mRects.begin() + static_cast<std::ptrdiff_t>(index));
    mRects.push_back(*joined);
    index = 0;
  }
}

}  // namespace TF
