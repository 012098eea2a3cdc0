#pragma once

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

class LControl;

// Where controls stand that float above a window: popups and tips.
//
// Threads: main thread.

// So many pixels from the near edge of the parent's frame, whatever the parent has scrolled to.
void PlaceFromParent(LControl& control, LayoutAxis axis, double position);

// At a point of the window's client area, or, where the control does not fit, as much nearer to the window's
// corner as it takes. Nothing without a window or a parent.
void PlaceInWindow(LControl& control, const PointT<double>& point);

}  // namespace TF
