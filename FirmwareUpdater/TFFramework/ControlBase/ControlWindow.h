#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/ControlParams.h"
#include "TFFramework/ControlBase/LayoutDesktop.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LControl;

// What controls ask of the window above them. Points are pixels of the window's client area.
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
  // By one of the application's cursor names; the arrow for an unknown one.
  virtual void ShowNamedCursor(const String& name) = 0;
  // The control goes out of use: no field may hold it any longer.
  virtual void ForgetControl(LControl& control) = 0;

  // Has a part of the client area painted anew.
  virtual void InvalidateRect(const RectT<std::int32_t>& rect) = 0;

  // Finds anew which control the mouse is over.
  virtual void RepeatHitTest() = 0;
  // The control at a point, null for none, and the point from that control's corner. Without updateHover
  // only asks.
  virtual void HitTest(RCPtr<LControl>& control, const PointT<std::int32_t>& point,
                       PointT<std::int32_t>& localPoint, bool updateHover) = 0;
  // The control that the mouse is over; null for none.
  virtual RCPtr<LControl> GetHoverControl() = 0;
  // False when the mouse is nowhere.
  virtual bool GetMousePosition(PointT<std::int32_t>& point) = 0;
  // Those that are down, as of the events that were handled: a mask as in LMouseButtonParam.
  virtual std::uint32_t GetMouseButtons() = 0;

  // Called by the control that gets or loses the focus, or the mouse. Who had the mouse before is asked to
  // release it.
  virtual RCPtr<LControl> GetFocusControl() = 0;
  virtual void SetFocusControl(const RCPtr<LControl>& control) = 0;
  virtual void ClearFocusControl() = 0;
  // That had the focus before; null when there was none, or when it has gone.
  virtual RCPtr<LControl> GetPreviousFocusControl() = 0;
  virtual TFRESULT SetCaptureControl(const RCPtr<LControl>& control) = 0;
  virtual void ClearCaptureControl() = 0;

  // What no control has taken: a key, and a Tab that has left the tree.
  virtual void ProcessUnhandledKey(const RCPtr<LKeyParam>& param) = 0;
  virtual void ProcessTab(const RCPtr<LKeyParam>& param) = 0;
};

}  // namespace TF
