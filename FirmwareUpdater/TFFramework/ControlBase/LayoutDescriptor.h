#pragma once

#include <array>
#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// What the position of a control counts from. With a parent the first two are its frame and its
// client area; without one they are the screen and the active window.
enum class PositionReference : std::uint32_t { kParent = 0, kClient = 1, kNamed = 2 };
// What the far edge of a control counts from; with kSelf the size is a number of its own.
enum class SizeReference : std::uint32_t { kParent = 0, kClient = 1, kSelf = 2, kNamed = 3 };
// How a text that is larger than its rectangle acts on the frame.
enum class TextOverflow : std::uint32_t { kClip = 0, kExpand = 1, kWrap = 2 };

enum class LayoutAxis : std::uint32_t { kX = 0, kY = 1 };
inline constexpr std::size_t kAxisCount = 2;
// False for a number that a caller made into an axis.
constexpr bool IsAxis(LayoutAxis axis) {
  return axis == LayoutAxis::kX || axis == LayoutAxis::kY;
}

// Where a control stands on one axis: `XPlacementAnchor`, `XPositionToControl`, `XPositionRel`,
// `XPositionAbs` and `XIsDocked` of a skin, and the same with Y.
struct LayoutPosition {
  float mAnchor = 0;  // The point of the control that stands there: 0 its near edge, 1 its far edge.
  PositionReference mReference = PositionReference::kClient;
  String mName;            // Of the sibling.
  float mRel = 0;          // Fraction of the reference's size.
  double mAbs = 0;         // Pixels to add.
  bool mIsDocked = false;  // Does not move with the parent's scroll offset.

  // The name counts for a named reference alone.
  bool operator==(const LayoutPosition& other) const;
};

// How large a control is on one axis: `XSizeToControl`, `XSizeRel`, `XSizeAbs`, and with Y.
struct LayoutSize {
  SizeReference mReference = SizeReference::kSelf;
  String mName;     // Of the sibling.
  float mRel = 0;   // Fraction of the reference's size.
  double mAbs = 0;  // Pixels: added to the reference's far edge, or the size itself.

  // The name counts for a named reference alone.
  bool operator==(const LayoutSize& other) const;
};

// The least or the largest size on one axis: `XMinSizeToControl`, `XMinSizeRel`, `XMinSizeAbs`, the
// same with Max, and with Y.
struct LayoutLimit {
  bool mIsNamed = false;
  String mName;  // Of a child, or "Children" for all of them.
  float mRel = 0;
  double mAbs = 0;  // Pixels. As a maximum that is not named, 0 is none.

  // The name counts for a named limit alone.
  bool operator==(const LayoutLimit& other) const;
};

struct AxisLayout {
  LayoutPosition mPosition;
  LayoutSize mSize;
  LayoutLimit mMinimum;
  LayoutLimit mMaximum;
  TextOverflow mTextOverflow = TextOverflow::kClip;  // `TextOverflowXType`, `TextOverflowYType`.
};

// The values of a layout, each with its default.
struct LayoutValues {
  static constexpr double kDefaultWidth = 16;   // Pixels.
  static constexpr double kDefaultHeight = 40;  // Pixels.

  LayoutValues();

  AxisLayout& Axis(LayoutAxis axis) { return mAxes[static_cast<std::size_t>(axis)]; }
  const AxisLayout& Axis(LayoutAxis axis) const { return mAxes[static_cast<std::size_t>(axis)]; }

  bool ClipToParent = true;
  std::int32_t Z_Order = 0;
  std::int32_t TabStop = 0;  // Negative: cannot have the focus.
  bool IsVisible = true;
  bool IsEnabled = true;  // In no skin.
  std::int32_t LayoutOrder = 0;
  String TextDecoration;
  std::array<AxisLayout, kAxisCount> mAxes;
};

// How a control relates to what is around it. A control has a copy of its own, so that changing it
// leaves the skin as it is.
class LLayoutDescriptor : public virtual LRefCountedObject, public LayoutValues {
 public:
  LLayoutDescriptor() = default;
  explicit LLayoutDescriptor(const LayoutValues& values) : LayoutValues(values) {}
  LLayoutDescriptor(const LLayoutDescriptor& other) : LRefCountedObject(), LayoutValues(other) {}
  LLayoutDescriptor& operator=(const LLayoutDescriptor&) = delete;

  RCPtr<LRefCountedObject> CreateCopy() const override;
};

}  // namespace TF
