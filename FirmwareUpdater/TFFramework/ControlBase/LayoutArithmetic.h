#pragma once

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// The calculations by which a layout becomes a frame, one axis at a time. They know nothing of controls.
//
// Nothing here leaves the limits of kLayoutInfinite, and what is no number becomes 0.

// Coordinates beyond it are as good as infinite; every whole number up to it is one of a double.
inline constexpr double kLayoutInfinite = 4503599627370496.0;

// What something covers on one axis.
struct LayoutSpan {
  double mPosition = 0;
  double mSize = 0;

  double GetEnd() const { return mPosition + mSize; }
  bool operator==(const LayoutSpan&) const = default;
};

double LimitCoordinate(double value);
// Halves go away from zero.
double RoundCoordinate(double value);
// The whole number below, but for what lies below a whole number by its last bits alone.
double SnapCoordinate(double value);

// Where an edge lies that is given by a fraction of the reference and by pixels.
double EdgeAt(const LayoutSpan& reference, float rel, double abs);
// The same for a limit, whose fraction is not rounded.
double EdgeOf(const LayoutSpan& reference, float rel, double abs);

// Where a control lies whose anchor point is at position, when it reaches up to far, on whichever side
// of the position that is.
LayoutSpan SpanToEdge(double position, float anchor, double far);
// The same with a size of its own, which counts as 0 when it is negative.
LayoutSpan SpanOfSize(double position, float anchor, double size);

// Grows from the anchor point to this size; shrinks to it.
LayoutSpan GrowTo(const LayoutSpan& span, float anchor, double minimum);
LayoutSpan ShrinkTo(const LayoutSpan& span, float anchor, double maximum);

// Grows until an edge reaches the limit: the far edge when the span begins at or before it, else the
// near one. kFailure when the anchor stands on the edge that would have to move; the span stays then.
TFRESULT GrowToLimit(LayoutSpan& span, float anchor, double limit);
// Ends at the limit when that lies inside the span.
LayoutSpan ShrinkToLimit(const LayoutSpan& span, float anchor, double limit);

// Turns a negative width or height around and puts all four edges on whole numbers.
RectT<double> SnapFrame(const LayoutSpan& x, const LayoutSpan& y);

}  // namespace TF
