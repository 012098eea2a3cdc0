#pragma once

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// The values that belong to one axis.

inline double& On(LayoutAxis axis, PointT<double>& point) {
  return axis == LayoutAxis::kX ? point.mX : point.mY;
}

inline double On(LayoutAxis axis, const PointT<double>& point) {
  return axis == LayoutAxis::kX ? point.mX : point.mY;
}

inline double On(LayoutAxis axis, const RectT<double>& rect) {
  return axis == LayoutAxis::kX ? rect.mX : rect.mY;
}

inline double SideOn(LayoutAxis axis, const RectT<double>& rect) {
  return axis == LayoutAxis::kX ? rect.mWidth : rect.mHeight;
}

}  // namespace TF
