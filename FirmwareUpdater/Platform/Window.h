#pragma once

#include <cstdint>
#include <string>

#include "Platform/Canvas.h"
#include "Platform/InputBits.h"

namespace Platform {

struct PixelPoint {
  std::int32_t mX = 0;
  std::int32_t mY = 0;

  bool operator==(const PixelPoint&) const = default;
};

struct PixelSize {
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;

  bool operator==(const PixelSize&) const = default;
};

struct MouseEvent {
  PixelPoint mPoint;             // From the corner of the client area; outside of it while a button is down.
  std::uint32_t mModifiers = 0;  // ModifierBit; AltGr alone counts as none.
  std::uint32_t mButton = 0;     // The one that went down or up; 0 for a movement.
  bool mIsDoubleClick = false;   // Every second press of a row of quick ones.
};

struct KeyEvent {
  // A virtual key number: a letter or digit its character, Return 0x0D, F1 0x70 and so on; 0 for a key
  // without one. Modifier keys come as 0x10 Shift, 0x11 Ctrl, 0x12 Alt, 0x5B and 0x5C Command.
  std::uint8_t mVirtualKey = 0;
  bool mPressed = false;
  bool mRepeated = false;  // A press of a key that was down already.
  std::uint32_t mModifiers = 0;
};

enum class WheelAxis { kVertical = 0, kHorizontal = 1 };

// What a window is told. Everything comes on the main thread from WindowSystem::DispatchInput and
// DispatchPaints, in the order in which it happened; the window may be destroyed by any of it.
class WindowListener {
 public:
  virtual ~WindowListener() = default;

  virtual void OnMousePress(const MouseEvent& event) = 0;
  virtual void OnMouseRelease(const MouseEvent& event) = 0;
  virtual void OnMouseMove(const MouseEvent& event) = 0;
  // The mouse has left the window and no button is down.
  virtual void OnMouseLeave() = 0;
  // delta in 120ths of a notch; away from the user is above 0, to the right below.
  virtual void OnWheel(WheelAxis axis, std::int32_t delta, const MouseEvent& event) = 0;
  virtual void OnKey(const KeyEvent& event) = 0;
  // One unit of a text that was typed, control characters included (8, 9, 13, 27, 127, and 1 to 26 for
  // Ctrl with a letter).
  virtual void OnCharacter(char16_t character, std::uint32_t modifiers) = 0;
  virtual void OnFocus(bool hasFocus) = 0;
  virtual void OnResize(const PixelSize& client) = 0;
  virtual void OnMove() = 0;
  // Present everything again, without drawing anew: the window's pixels are gone.
  virtual void OnExpose() = 0;
  // The user asks for the window's end, which is up to the listener.
  virtual void OnCloseRequest() = 0;
  // Screens have come, gone or changed.
  virtual void OnDisplayChange() = 0;
  // What this program had put on the clipboard is gone: another program has taken it. The first window of
  // the program is told.
  virtual void OnClipboardLost() = 0;
  // RequestPaint was called since the last time.
  virtual void OnPaint() = 0;
};

enum class WindowShow { kHide, kShow, kMinimize, kMaximize, kRestore };

// What a new window is like.
struct WindowDescription {
  std::string mTitle;  // UTF-8.
  PixelRect mClient;   // On the screen.
  bool mIsResizable = false;
  class Window* mParent = nullptr;  // Stands above it; must outlive it.
};

// A window with a frame. Coordinates are pixels; those of the screen are 0, 0 where the display tells a
// program nothing about its place. The window goes with the object.
//
// Threads: main thread, RequestPaint excepted.
class Window : public WindowSurface {
 public:
  virtual void SetTitle(const std::string& title) = 0;
  virtual void SetIcon(const PixelView& pixels) = 0;

  // On the screen: the client area, and the window with its frame.
  virtual PixelRect GetClientRect() const = 0;
  virtual PixelRect GetFrameRect() const = 0;
  // The place is left out where a program cannot choose it.
  virtual void SetClientRect(const PixelRect& rect) = 0;
  // Of the client area, for who drags the frame. A side of 0 in maximum has no limit.
  virtual void SetSizeLimits(const PixelSize& minimum, const PixelSize& maximum) = 0;

  virtual void Show(WindowShow command) = 0;
  virtual bool IsVisible() const = 0;
  virtual bool IsMinimized() const = 0;
  virtual bool IsMaximized() const = 0;
  // Above the other windows, with the keyboard.
  virtual void Raise() = 0;
  virtual void SetTopMost(bool topMost) = 0;
  // The keyboard, as of the events that were dispatched.
  virtual bool HasFocus() const = 0;
  virtual void TakeFocus() = 0;
  // A disabled window hears no input, no wish to close included; true at first.
  virtual void SetEnabled(bool enabled) = 0;
  virtual bool IsEnabled() const = 0;

  // Any thread: OnPaint comes soon, once for any number of calls.
  virtual void RequestPaint() = 0;
  // The number of the window on its display; 0 where there are none.
  virtual std::uintptr_t GetNativeHandle() const = 0;
};

}  // namespace Platform
