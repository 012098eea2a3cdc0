#include "TFFramework/ControlBase/LayoutLimits.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

constexpr double kLargestTextRect = 8388608;  // Pixels; every whole number up to it is one of a float.
constexpr double kNoSize = 2.220446049250313e-16;
constexpr const char16_t* kAllChildren = u"Children";
constexpr std::size_t kX = static_cast<std::size_t>(LayoutAxis::kX);
constexpr std::size_t kY = static_cast<std::size_t>(LayoutAxis::kY);

enum class LimitKind { kMinimum, kMaximum };

std::size_t IndexOf(LayoutAxis axis) {
  return static_cast<std::size_t>(axis);
}

float AnchorOf(const LControl& control, LayoutAxis axis) {
  return control.GetLayout()->Axis(axis).mPosition.mAnchor;
}

double LimitTextRect(std::int32_t pixels) {
  return std::clamp<double>(pixels, -kLargestTextRect, kLargestTextRect);
}

void WrapTexts(const LControl& control, bool wrap) {
  for (std::int32_t slot = 0; slot < control.GetLookCount(); ++slot) {
    const RCPtr<LLook> look = control.GetLook(slot);
    if (look) look->SetWrap(wrap);
  }
}

// The size at which the text's rectangle, which takes a share of it, has grown by what is missing.
double SizeForText(double missing, double share, double size, double minimum) {
  const double growth = std::ceil(missing);
  if (!(growth > 0) || !(share > 0)) return minimum;
  return std::max(minimum, LimitCoordinate(std::trunc(std::ceil(growth / share)) + size));
}

double MinimumForWidth(LControl& control, const LLook& look, const LayoutSpans& spans, double minimum) {
  const RectT<std::int32_t> rect =
      look.GetTextRect(RoundToInt32(spans[kX].mSize), RoundToInt32(spans[kY].mSize));
  const LLookDescriptor& descriptor = look.GetDescriptor();
  WrapTexts(control, false);
  const double missing = look.GetFontText()->GetNaturalWidth() - LimitTextRect(rect.mWidth);
  const double share = static_cast<double>(descriptor.TextRightRel) - descriptor.TextLeftRel;
  const double needed = SizeForText(missing, share, spans[kX].mSize, minimum);
  const LayoutLimit& maximum = control.GetLayout()->Axis(LayoutAxis::kX).mMaximum;
  if (maximum.mIsNamed || !(maximum.mAbs > 0) || !(maximum.mAbs < needed)) return needed;
  WrapTexts(control, true);
  return maximum.mAbs;
}

double MinimumForHeight(const LLook& look, const LayoutSpans& spans, double minimum) {
  const RectT<std::int32_t> rect =
      look.GetTextRect(RoundToInt32(spans[kX].mSize), RoundToInt32(spans[kY].mSize));
  const RectT<std::int32_t> present = look.GetTextRect(look.GetSize().mWidth, look.GetSize().mHeight);
  const LLookDescriptor& descriptor = look.GetDescriptor();
  const double missing = look.GetFontText()->GetHeightForWidth(present.mWidth) - LimitTextRect(rect.mHeight);
  const double share = static_cast<double>(descriptor.TextBottomRel) - descriptor.TextTopRel;
  return SizeForText(missing, share, spans[kY].mSize, minimum);
}

double OwnMinimum(LControl& control, LayoutAxis axis, const LayoutSpans& spans) {
  const AxisLayout& layout = control.GetLayout()->Axis(axis);
  const RCPtr<LLook> look = control.GetLook(LControl::kActiveLook);
  const double minimum = layout.mMinimum.mAbs;
  if (layout.mTextOverflow == TextOverflow::kClip || !look || !look->GetFontText()) return minimum;
  if (axis == LayoutAxis::kY) return MinimumForHeight(*look, spans, minimum);
  return layout.mTextOverflow == TextOverflow::kExpand ? MinimumForWidth(control, *look, spans, minimum)
                                                       : minimum;
}

// The frame of a child, inside the frame that is being computed.
LayoutSpans SpansOfChild(const LControl& control, const LControl& child, LayoutAxis axis,
                         const LayoutSpans& spans) {
  const RectT<double> client = control.GetClientRect();
  const PointT<double>& scroll = control.GetScrollOffset();
  const RectT<double>& bounds = child.GetBounds();
  LayoutSpans result{LayoutSpan{bounds.mX - scroll.mX + client.mX + spans[kX].mPosition, bounds.mWidth},
                     LayoutSpan{bounds.mY - scroll.mY + client.mY + spans[kY].mPosition, bounds.mHeight}};
  if (child.IsDocked(axis)) result[IndexOf(axis)].mPosition -= axis == LayoutAxis::kX ? scroll.mX : scroll.mY;
  return result;
}

// Around the first child and those others that the kind of limit counts.
RectT<double> BoxOfChildren(const LControl& control, LimitKind kind) {
  RectT<double> box = control.GetChild(0)->GetBounds();
  for (std::int32_t index = 1; index < control.GetChildCount(); ++index) {
    const RCPtr<LControl>& child = control.GetChild(index);
    if (kind == LimitKind::kMinimum && !child->GetClipToParent()) continue;
    const RectT<double>& bounds = child->GetBounds();
    const double right = std::max(box.GetRight(), bounds.GetRight());
    const double bottom = std::max(box.GetBottom(), bounds.GetBottom());
    box.mX = std::min(box.mX, bounds.mX);
    box.mY = std::min(box.mY, bounds.mY);
    box.mWidth = right - box.mX;
    box.mHeight = bottom - box.mY;
  }
  return box;
}

// What a limit refers to; none when there is nothing of its name.
std::optional<LayoutSpans> FindReference(const LControl& control, LayoutAxis axis, LimitKind kind,
                                         const String& name, const LayoutSpans& spans) {
  if (control.GetChildCount() == 0) return std::nullopt;
  if (const RCPtr<LControl> child = control.FindChild(name))
    return SpansOfChild(control, *child, axis, spans);
  if (!(name == kAllChildren)) return std::nullopt;
  if (kind == LimitKind::kMaximum && control.GetChild(0)->IsDockedOnBothAxes()) return std::nullopt;
  const RectT<double> box = BoxOfChildren(control, kind);
  return LayoutSpans{
      LayoutSpan{spans[kX].mPosition - static_cast<double>(AnchorOf(control, LayoutAxis::kX)) * box.mWidth,
                 box.mWidth},
      LayoutSpan{spans[kY].mPosition - static_cast<double>(AnchorOf(control, LayoutAxis::kY)) * box.mHeight,
                 box.mHeight}};
}

// What the frame has beside its client area, which is what was measured with the children.
double SizeAroundClient(const LControl& control, LayoutAxis axis, const String& name) {
  const RCPtr<LLook> look = control.GetLook(LControl::kActiveLook);
  if (!look || !(name == kAllChildren)) return 0;
  const RectT<std::int32_t>& client = look->GetClientRect();
  const SizeT<std::int32_t>& size = look->GetSize();
  return axis == LayoutAxis::kX ? double(size.mWidth) - client.mWidth : double(size.mHeight) - client.mHeight;
}

// How far a span reaches that ends at the limit, when what was measured is the client area.
double SizeUpTo(const LControl& control, LayoutAxis axis, const String& name, const LayoutSpan& span,
                double limit) {
  return LimitCoordinate(RoundCoordinate(limit) - span.mPosition + SizeAroundClient(control, axis, name));
}

void ApplyMinimum(LControl& control, LayoutAxis axis, LayoutSpans& spans) {
  const LayoutLimit& minimum = control.GetLayout()->Axis(axis).mMinimum;
  const float anchor = AnchorOf(control, axis);
  LayoutSpan& span = spans[IndexOf(axis)];
  if (!minimum.mIsNamed) {
    span = GrowTo(span, anchor, OwnMinimum(control, axis, spans));
    return;
  }
  const auto reference = FindReference(control, axis, LimitKind::kMinimum, minimum.mName, spans);
  if (!reference || !((*reference)[IndexOf(axis)].mSize > 0)) return;
  const double limit = EdgeOf((*reference)[IndexOf(axis)], minimum.mRel, minimum.mAbs);
  // An anchor that does not allow it leaves the axis as it is; there is nobody to tell.
  if (Failed(GrowToLimit(span, anchor, limit))) return;
  span.mSize = std::max(span.mSize, SizeUpTo(control, axis, minimum.mName, span, limit));
}

void ApplyMaximum(LControl& control, LayoutAxis axis, LayoutSpans& spans) {
  const LayoutLimit& maximum = control.GetLayout()->Axis(axis).mMaximum;
  const float anchor = AnchorOf(control, axis);
  LayoutSpan& span = spans[IndexOf(axis)];
  if (!maximum.mIsNamed) {
    if (maximum.mAbs != 0) span = ShrinkTo(span, anchor, maximum.mAbs);
    return;
  }
  const auto reference = FindReference(control, axis, LimitKind::kMaximum, maximum.mName, spans);
  if (!reference) return;
  const LayoutSpans& area = *reference;
  if (!(area[kX].mSize > kNoSize && area[kY].mSize > kNoSize)) return;
  const double limit = EdgeOf(area[IndexOf(axis)], maximum.mRel, maximum.mAbs);
  const LayoutSpan before = span;
  span = ShrinkToLimit(span, anchor, limit);
  if (span == before) return;
  span.mSize = std::min(before.mSize, SizeUpTo(control, axis, maximum.mName, span, limit));
}

}  // namespace

void ApplyLayoutLimits(LControl& control, LayoutSpans& spans) {
  ApplyMinimum(control, LayoutAxis::kX, spans);
  ApplyMinimum(control, LayoutAxis::kY, spans);
  ApplyMaximum(control, LayoutAxis::kX, spans);
  ApplyMaximum(control, LayoutAxis::kY, spans);
}

}  // namespace TF
