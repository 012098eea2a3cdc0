#include <algorithm>
#include <cmath>
#include <utility>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/LayoutArithmetic.h"
#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/LayoutLimits.h"

namespace TF {

namespace {

// What a control refers to on one axis, in the coordinates in which its frame stands.
struct AxisSurroundings {
  LayoutSpan mFrame;   // The parent's frame, or the desktop.
  LayoutSpan mClient;  // The parent's client area, or the window's.
  LayoutSpan mMouse;   // In place of any sibling, without a parent.
  double mScroll = 0;  // The parent's scroll offset.
};
using Surroundings = std::array<AxisSurroundings, kAxisCount>;

constexpr std::size_t kX = static_cast<std::size_t>(LayoutAxis::kX);
constexpr std::size_t kY = static_cast<std::size_t>(LayoutAxis::kY);

LayoutSpans SpansOf(const RectT<double>& rect) {
  return {LayoutSpan{rect.mX, rect.mWidth}, LayoutSpan{rect.mY, rect.mHeight}};
}

// Bars that are docked on both axes stand in the whole client area, and leave less of it to all others.
Surroundings SurroundingsBelow(LControl& parent, const LControl& child) {
  RectT<double> client = parent.GetClientRect();
  if (!child.IsDockedOnBothAxes()) {
    RectT<double> view;
    parent.GetScrollViewRect(view);
    client.mWidth = view.mWidth;
    client.mHeight = view.mHeight;
  }
  const RectT<double>& frame = parent.GetBounds();
  const PointT<double>& scroll = parent.GetScrollOffset();
  return {AxisSurroundings{{-client.mX, frame.mWidth}, {0, client.mWidth}, {}, scroll.mX},
          AxisSurroundings{{-client.mY, frame.mHeight}, {0, client.mHeight}, {}, scroll.mY}};
}

Surroundings SurroundingsOn(const LayoutDesktop& desktop) {
  const PointT<double>& origin = desktop.mClientOrigin;
  return {AxisSurroundings{{-origin.mX, desktop.mWorkArea.mWidth},
                           {0, desktop.mClientSize.mWidth},
                           {desktop.mMouse.mX - origin.mX, 0},
                           0},
          AxisSurroundings{{-origin.mY, desktop.mWorkArea.mHeight},
                           {0, desktop.mClientSize.mHeight},
                           {desktop.mMouse.mY - origin.mY, 0},
                           0}};
}

// The sibling of this name; position and size 0 when there is none.
LayoutSpan SiblingSpan(const LControl& control, const String& name, LayoutAxis axis,
                       const AxisSurroundings& around) {
  const RCPtr<LControl>& parent = control.GetParent();
  if (!parent) return around.mMouse;
  const RCPtr<LControl> sibling = parent->FindChild(name);
  if (!sibling) return {};
  LayoutSpan span = SpansOf(sibling->GetBounds())[static_cast<std::size_t>(axis)];
  if (sibling->IsDocked(axis)) span.mPosition -= around.mScroll;
  return span;
}

LayoutSpan PositionReferenceSpan(const LControl& control, LayoutAxis axis, const AxisSurroundings& around) {
  const LayoutPosition& position = control.GetLayout()->Axis(axis).mPosition;
  switch (position.mReference) {
    case PositionReference::kParent:
      return around.mFrame;
    case PositionReference::kClient:
      return around.mClient;
    case PositionReference::kNamed:
      break;
  }
  return SiblingSpan(control, position.mName, axis, around);
}

LayoutSpan SizeReferenceSpan(const LControl& control, LayoutAxis axis, const AxisSurroundings& around) {
  const LayoutSize& size = control.GetLayout()->Axis(axis).mSize;
  switch (size.mReference) {
    case SizeReference::kParent:
      return around.mFrame;
    case SizeReference::kClient:
      return around.mClient;
    case SizeReference::kSelf:
      return {};
    case SizeReference::kNamed:
      break;
  }
  return SiblingSpan(control, size.mName, axis, around);
}

LayoutSpan PlaceOnAxis(const LControl& control, LayoutAxis axis, const AxisSurroundings& around) {
  const AxisLayout& layout = control.GetLayout()->Axis(axis);
  const LayoutPosition& position = layout.mPosition;
  const LayoutSize& size = layout.mSize;
  const double anchorPoint =
      EdgeAt(PositionReferenceSpan(control, axis, around), position.mRel, position.mAbs);
  LayoutSpan span = size.mReference == SizeReference::kSelf
                        ? SpanOfSize(anchorPoint, position.mAnchor, size.mAbs)
                        : SpanToEdge(anchorPoint, position.mAnchor,
                                     EdgeAt(SizeReferenceSpan(control, axis, around), size.mRel, size.mAbs));
  if (position.mIsDocked) span.mPosition = LimitCoordinate(span.mPosition + around.mScroll);
  return span;
}

RectT<double> PlaceIn(LControl& control, const Surroundings& around) {
  LayoutSpans spans{PlaceOnAxis(control, LayoutAxis::kX, around[kX]),
                    PlaceOnAxis(control, LayoutAxis::kY, around[kY])};
  ApplyLayoutLimits(control, spans);
  return SnapFrame(spans[kX], spans[kY]);
}

}  // namespace

TFRESULT LControl::Relayout() {
  if (mParent) return SetBounds(PlaceIn(*this, SurroundingsBelow(*mParent, *this)));
  LayoutDesktop desktop;
  if (!FindDesktop(desktop)) return kFailure;
  return SetBounds(PlaceIn(*this, SurroundingsOn(desktop)));
}

RectT<double> LControl::ComputeTopFrame(const LayoutDesktop& desktop) {
  return PlaceIn(*this, SurroundingsOn(desktop));
}

SizeT<double> LControl::ConstrainSize(const SizeT<double>& proposed) {
  LayoutSpans spans = SpansOf(SnapFrame({0, proposed.mWidth}, {0, proposed.mHeight}));
  ApplyLayoutLimits(*this, spans);
  const RectT<double> frame = SnapFrame(spans[kX], spans[kY]);
  return {std::max(frame.mWidth, 1.0), std::max(frame.mHeight, 1.0)};
}

TFRESULT LControl::StoreAxis(LayoutAxis axis, const LayoutPosition& position, const LayoutSize& size) {
  if (!IsAxis(axis)) return kInvalidArgument;
  AxisLayout& layout = mLayout->Axis(axis);
  const bool dockingChanges = layout.mPosition.mIsDocked != position.mIsDocked;
  layout.mPosition = position;
  layout.mSize = size;
  if (dockingChanges && mParent) mParent->mChildren.Touch();
  return kSuccess;
}

TFRESULT LControl::SetLayout(const LayoutPosition& xPosition, const LayoutSize& xSize,
                             const LayoutPosition& yPosition, const LayoutSize& ySize) {
  StoreAxis(LayoutAxis::kX, xPosition, xSize);
  StoreAxis(LayoutAxis::kY, yPosition, ySize);
  return Relayout();
}

TFRESULT LControl::SetAxisLayout(LayoutAxis axis, const LayoutPosition& position, const LayoutSize& size) {
  const TFRESULT result = StoreAxis(axis, position, size);
  return Failed(result) ? result : Relayout();
}

TFRESULT LControl::SetAxisPosition(LayoutAxis axis, const LayoutPosition& position) {
  LayoutPosition former;
  LayoutSize size;
  const TFRESULT result = GetAxisLayout(axis, former, size);
  return Failed(result) ? result : SetAxisLayout(axis, position, size);
}

LayoutPosition LControl::GetAxisPosition(LayoutAxis axis) const {
  LayoutPosition position;
  LayoutSize size;
  GetAxisLayout(axis, position, size);
  return position;
}

TFRESULT LControl::GetAxisLayout(LayoutAxis axis, LayoutPosition& position, LayoutSize& size) const {
  if (!IsAxis(axis)) return kInvalidArgument;
  position = mLayout->Axis(axis).mPosition;
  size = mLayout->Axis(axis).mSize;
  return kSuccess;
}

TFRESULT LControl::SetAxisLimits(LayoutAxis axis, const LayoutLimit& minimum, const LayoutLimit& maximum) {
  if (!IsAxis(axis)) return kInvalidArgument;
  mLayout->Axis(axis).mMinimum = minimum;
  mLayout->Axis(axis).mMaximum = maximum;
  return Relayout();
}

TFRESULT LControl::GetAxisLimits(LayoutAxis axis, LayoutLimit& minimum, LayoutLimit& maximum) const {
  if (!IsAxis(axis)) return kInvalidArgument;
  minimum = mLayout->Axis(axis).mMinimum;
  maximum = mLayout->Axis(axis).mMaximum;
  return kSuccess;
}

TFRESULT LControl::RenameReferences(const String& oldName, const String& newName) {
  TFRESULT result = kNothingDone;
  const auto rename = [&](bool isNamed, String& name) {
    if (!isNamed || !(name == oldName) || oldName == newName) return;
    name = newName;
    result = kSuccess;
  };
  for (AxisLayout& axis : mLayout->mAxes) {
    rename(axis.mPosition.mReference == PositionReference::kNamed, axis.mPosition.mName);
    rename(axis.mSize.mReference == SizeReference::kNamed, axis.mSize.mName);
  }
  return result;
}

double LControl::MeasureAuto(LayoutAxis axis) {
  LayoutSize& size = mLayout->Axis(axis).mSize;
  const LayoutSize before = size;
  const auto measured = [this, axis] {
    Relayout();
    return axis == LayoutAxis::kX ? mBounds.mWidth : mBounds.mHeight;
  };
  size = LayoutSize{};
  double result = 0;
  try {
    result = measured();
  } catch (...) {
    mLayout->Axis(axis).mSize = before;
    throw;
  }
  mLayout->Axis(axis).mSize = before;
  Relayout();
  return result;
}

SizeT<double> LControl::GetAutoSize() {
  const double width = MeasureAuto(LayoutAxis::kX);
  return {width, MeasureAuto(LayoutAxis::kY)};
}

SizeT<double> LControl::GetFixedMaxSize() {
  const auto fixed = [this](LayoutAxis axis) {
    const LayoutLimit& maximum = mLayout->Axis(axis).mMaximum;
    return maximum.mIsNamed ? 0 : maximum.mAbs;
  };
  return {fixed(LayoutAxis::kX), fixed(LayoutAxis::kY)};
}

}  // namespace TF
