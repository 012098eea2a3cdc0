#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// All that a root window knows of the window system. Coordinates are pixels, of the client area unless
// said otherwise. A window that has gone answers kFailure, false or 0.
//
// Threads: main thread, InvalidateRect excepted.
class IWindowOSServices {
 public:
  IWindowOSServices() = default;
  IWindowOSServices(const IWindowOSServices&) = delete;
  IWindowOSServices& operator=(const IWindowOSServices&) = delete;
  virtual ~IWindowOSServices() = default;

  virtual TFRESULT SetTitle(const String& title) = 0;
  // Everything is to be painted anew.
  virtual TFRESULT InvalidateAll() = 0;
  // Any thread: has the root window's dirty region painted soon.
  virtual TFRESULT InvalidateRect(const RectT<std::int32_t>& rect) = 0;
  // x and y are 0.
  virtual TFRESULT GetClientRect(RectT<std::int32_t>& rect) = 0;
  virtual TFRESULT ScreenToClient(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) = 0;
  virtual TFRESULT ClientToScreen(PointT<std::int32_t>& result, const PointT<std::int32_t>& point) = 0;
  // On the screen.
  virtual TFRESULT SetClientRect(const RectT<std::int32_t>& rect) = 0;
  // command is a ShowCommand.
  virtual TFRESULT Show(std::int32_t command) = 0;
  // Paints everything before it returns.
  virtual TFRESULT RedrawNow() = 0;
  virtual TFRESULT BringToTop() = 0;
  virtual TFRESULT SetTopMost(bool topMost) = 0;
  // Ends a modal loop with the result, or the window itself.
  virtual TFRESULT EndWindow(std::int32_t result) = 0;
  // The window's own loop, until EndWindow; kModalQuit when the program ends meanwhile.
  virtual std::int32_t RunModal() = 0;
  virtual bool IsModal() = 0;
  virtual bool IsActive() = 0;
  virtual bool HasFocus() = 0;
  virtual TFRESULT TakeFocus() = 0;
  // Returns the one that was shown before, in whatever window.
  virtual std::uintptr_t SetCursor(std::uintptr_t cursor) = 0;
  // As of the events that were handled.
  virtual TFRESULT GetMousePosition(PointT<std::int32_t>& point) = 0;
  // The same; a mask as in LMouseButtonParam.
  virtual std::uint32_t GetMouseButtons() = 0;
  virtual std::uintptr_t GetWindowHandle() = 0;
  // A control that takes text has, or has not, the focus.
  virtual TFRESULT SetTextInputTarget(bool on, const PointT<std::int32_t>& position) = 0;
};

// The result of a modal loop that a quit has ended.
inline constexpr std::int32_t kModalQuit = -1;

// What IWindowOSServices::Show takes.
namespace ShowCommand {
inline constexpr std::int32_t kHide = 0;
inline constexpr std::int32_t kMaximize = 3;
inline constexpr std::int32_t kShow = 5;
inline constexpr std::int32_t kMinimize = 6;
inline constexpr std::int32_t kRestore = 9;
}  // namespace ShowCommand

}  // namespace TF
