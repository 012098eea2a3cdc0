#pragma once

#include <array>

#include "TFFramework/ControlBase/LayoutArithmetic.h"

namespace TF {

class LControl;

using LayoutSpans = std::array<LayoutSpan, kAxisCount>;

// Applies a control's minima and then its maxima to a frame that is being computed, so that the maxima
// win. The limits may hang on its text and on the frames of its children.
void ApplyLayoutLimits(LControl& control, LayoutSpans& spans);

}  // namespace TF
