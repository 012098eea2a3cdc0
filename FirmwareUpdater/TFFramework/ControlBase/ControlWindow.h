#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/LayoutDesktop.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LControl;

// What the life and the layout of controls ask of the window above them. A root window that does not offer
// it leaves its controls without a title, a cursor and a desktop.
//
// Threads: main thread.
class IControlWindow {
 public:
  IControlWindow() = default;
  IControlWindow(const IControlWindow&) = delete;
  IControlWindow& operator=(const IControlWindow&) = delete;
  virtual ~IControlWindow() = default;

  virtual void SetTitle(const String& title) = 0;
  // Pixels; the client area's corner stays where it is on the screen.
  virtual void SetClientSize(const SizeT<std::int32_t>& size) = 0;
  // False while there is nothing on the screen.
  virtual bool GetLayoutDesktop(LayoutDesktop& desktop) = 0;
  // Returns the cursor that was shown before; 0 is the arrow.
  virtual std::uintptr_t SetCursor(std::uintptr_t cursor) = 0;
  // Finds anew which control the mouse is over.
  virtual void RepeatHitTest() = 0;
  // The control goes out of use: no field may hold it any longer.
  virtual void ForgetControl(LControl& control) = 0;
};

}  // namespace TF
