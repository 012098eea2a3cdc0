#pragma once

#include <cstdint>

#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/ShapeHandle.h"
#include "TFFramework/Utilities/Storage/Array.h"

namespace TF {

// Points of a line, a polygon or a list of segments. Renderers keep what they make of it under its
// handle: who changes the points of a shape that was drawn sets mChanged, and the renderer clears it.
template <class T>
struct PolylineT {
  Array<PointT<T>> mPoints;
  ShapeHandle mHandle;  // Unique in the process; a copy has one of its own.
  bool mChanged = false;
};

}  // namespace TF
