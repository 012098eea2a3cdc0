#pragma once

#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// What the layout of a control without a parent refers to, in pixels.
struct LayoutDesktop {
  PointT<double> mClientOrigin;  // Of the window's client area on the screen.
  SizeT<double> mClientSize;     // Of the window's client area.
  SizeT<double> mWorkArea;       // Of the desktop.
  PointT<double> mMouse;         // On the screen.
};

}  // namespace TF
