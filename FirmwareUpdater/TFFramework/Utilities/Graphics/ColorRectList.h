#pragma once

#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/ShapeHandle.h"
#include "TFFramework/Utilities/Storage/Array.h"

namespace TF {

template <class T>
struct ColorRectT {
  RectT<T> mRect;
  LColor mColor;
};

// Rectangles that are drawn together, each in its colour and the last one first. Handle and mark as in
// PolylineT.
template <class T>
struct ColorRectListT {
  Array<ColorRectT<T>> mRects;
  // Factors of every position and size.
  T mScaleX = 1;
  T mScaleY = 1;
  ShapeHandle mHandle;
  bool mChanged = false;
};

}  // namespace TF
