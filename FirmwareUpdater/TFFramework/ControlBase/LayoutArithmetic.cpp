#include "TFFramework/ControlBase/LayoutArithmetic.h"

#include <algorithm>
#include <cmath>

namespace TF {

namespace {

constexpr double kSnapTolerance = 2.220446049250313e-16;

LayoutSpan Limited(double position, double size) {
  return {LimitCoordinate(position), LimitCoordinate(size)};
}

}  // namespace

double LimitCoordinate(double value) {
  if (std::isnan(value)) return 0;
  return std::clamp(value, -kLayoutInfinite, kLayoutInfinite);
}

double RoundCoordinate(double value) {
  const double limited = LimitCoordinate(value);
  return std::trunc(limited < 0 ? limited - 0.5 : limited + 0.5);
}

double SnapCoordinate(double value) {
  const double v = LimitCoordinate(value);
  return LimitCoordinate(std::trunc(v < 0 ? v - (v * kSnapTolerance + 1.0) : v + v * kSnapTolerance));
}

double EdgeAt(const LayoutSpan& reference, float rel, double abs) {
  return LimitCoordinate(RoundCoordinate(static_cast<double>(rel) * reference.mSize) + reference.mPosition +
                         abs);
}

double EdgeOf(const LayoutSpan& reference, float rel, double abs) {
  return LimitCoordinate(static_cast<double>(rel) * reference.mSize + reference.mPosition + abs);
}

LayoutSpan SpanToEdge(double position, float anchor, double far) {
  const double a = anchor;
  const double distance = far - position;
  double size = 0;
  if (distance > 0 && a >= 0 && a < 1) size = distance / (1 - a);
  if (distance < 0 && a > 0 && a <= 1) size = distance / -a;
  size = LimitCoordinate(size);
  return Limited(position - a * size, size);
}

LayoutSpan SpanOfSize(double position, float anchor, double size) {
  const double limited = std::max(LimitCoordinate(size), 0.0);
  return Limited(position - static_cast<double>(anchor) * limited, limited);
}

LayoutSpan GrowTo(const LayoutSpan& span, float anchor, double minimum) {
  if (!(span.mSize < minimum)) return span;
  return Limited(span.mPosition - RoundCoordinate(static_cast<double>(anchor) * (minimum - span.mSize)),
                 minimum);
}

LayoutSpan ShrinkTo(const LayoutSpan& span, float anchor, double maximum) {
  if (!(maximum < span.mSize)) return span;
  return Limited(span.mPosition - RoundCoordinate(static_cast<double>(anchor) * (maximum - span.mSize)),
                 maximum);
}

TFRESULT GrowToLimit(LayoutSpan& span, float anchor, double limit) {
  const double a = anchor;
  if (limit < span.mPosition) {
    if (!(a > 0 && a <= 1)) return kFailure;
    const double distance = span.mPosition - limit;
    span = Limited(limit, span.mSize + RoundCoordinate(distance / a));
    return kSuccess;
  }
  if (!(span.GetEnd() < limit)) return kSuccess;
  if (!(a >= 0 && a < 1)) return kFailure;
  const double position = span.mPosition - RoundCoordinate(a * (limit - span.GetEnd()) / (1 - a));
  span = Limited(position, RoundCoordinate(limit) - position);
  return kSuccess;
}

LayoutSpan ShrinkToLimit(const LayoutSpan& span, float anchor, double limit) {
  if (!(span.mPosition < limit && limit < span.GetEnd())) return span;
  const double position =
      span.mPosition - RoundCoordinate(static_cast<double>(anchor) * (limit - span.GetEnd()));
  return Limited(position, RoundCoordinate(limit) - position);
}

RectT<double> SnapFrame(const LayoutSpan& x, const LayoutSpan& y) {
  const RectT<double> frame =
      Normalize(RectT<double>{LimitCoordinate(x.mPosition), LimitCoordinate(y.mPosition),
                              LimitCoordinate(x.mSize), LimitCoordinate(y.mSize)});
  const double left = SnapCoordinate(frame.mX);
  const double top = SnapCoordinate(frame.mY);
  return {left, top, SnapCoordinate(frame.GetRight()) - left, SnapCoordinate(frame.GetBottom()) - top};
}

}  // namespace TF
