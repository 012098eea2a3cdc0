#pragma once

#include <cstdint>

#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// What a popup asks of the bar that its menu hangs on.
//
// Threads: main thread.
class IMenuBar {
 public:
  IMenuBar() = default;
  IMenuBar(const IMenuBar&) = delete;
  IMenuBar& operator=(const IMenuBar&) = delete;
  virtual ~IMenuBar() = default;

  // To the control that had it before the bar.
  virtual void GiveFocusBack() = 0;
};

// What a popup asks of a face that opens one, as the entries of a menu bar are.
//
// Threads: main thread.
class IMenuFace {
 public:
  IMenuFace() = default;
  IMenuFace(const IMenuFace&) = delete;
  IMenuFace& operator=(const IMenuFace&) = delete;
  virtual ~IMenuFace() = default;

  // The mouse has been dragged to it from a popup; the point counts in the window's client area.
  virtual void DragTo(const PointT<std::int32_t>& point) = 0;
};

}  // namespace TF
