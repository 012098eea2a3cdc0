#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Platform/Clipboard.h"
#include "Platform/FileChooser.h"
#include "Platform/Window.h"

namespace Platform {

enum class SystemCursor {
  kArrow,
  kIBeam,
  kWait,
  kCross,
  kUpArrow,
  kSizeAll,
  kSizeNwse,
  kSizeNesw,
  kSizeWe,
  kSizeNs,
  kNo,
  kHand,
  kAppStarting,
  kHelp,
};

// A picture of the mouse. The window system keeps it as long as it lives itself.
using CursorId = std::uintptr_t;
inline constexpr CursorId kNoCursor = 0;

enum class MessageIcon { kNone, kInformation, kQuestion, kWarning, kError };
enum class MessageButtons { kOk, kOkCancel, kYesNo, kYesNoCancel };
enum class MessageAnswer { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

// What the buttons say, UTF-8.
struct MessageLabels {
  std::string mOk = "OK";
  std::string mCancel = "Cancel";
  std::string mYes = "Yes";
  std::string mNo = "No";
};

struct MessageRequest {
  std::string mText;  // UTF-8, as the caption; line feeds break lines.
  std::string mCaption;
  MessageIcon mIcon = MessageIcon::kNone;
  MessageButtons mButtons = MessageButtons::kOk;
  MessageLabels mLabels = {};
};

// Windows, input, cursors, messages and the clipboard of the display that the program runs on.
//
// Threads: main thread, Wake, RequestQuit and Window::RequestPaint excepted.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  // listener must outlive the window. Hidden at first. Throws runtime_error.
  virtual std::unique_ptr<Window> CreateWindow(const WindowDescription& description,
                                               WindowListener& listener) = 0;

  // Hands all input that waits to the listeners. True when there was any, a wake-up included; paint
  // requests and exposures don't count. What a listener throws comes out of here; the rest of the input
  // waits for the next call.
  virtual bool DispatchInput() = 0;
  // OnExpose and OnPaint of the windows that need it.
  virtual void DispatchPaints() = 0;
  // Until there is something to dispatch or the time is over.
  virtual void Wait(std::uint32_t milliseconds) = 0;
  // Any thread: ends the present Wait, or the next one, and counts as input.
  virtual void Wake() = 0;
  // Lets the display know that the program lives, without handing anything to a listener.
  virtual void AnswerDisplay() = 0;
  // The session ends, or a signal asked for it: true once after each such wish.
  virtual bool TakeQuitRequest() = 0;
  // Any thread: the program was asked from elsewhere to end, as by a signal.
  virtual void RequestQuit() = 0;

  virtual CursorId GetSystemCursor(SystemCursor cursor) = 0;
  // A copy of 32-bit pixels with the point that points; kNoCursor when that fails.
  virtual CursorId MakeCursor(const PixelView& pixels, const PixelPoint& hotSpot) = 0;
  // kNoCursor gives the arrow.
  virtual void SetCursor(CursorId cursor) = 0;
  virtual void ShowCursor(bool show) = 0;
  // On the screen. False where the display does not let or tell.
  virtual bool SetCursorPosition(const PixelPoint& point) = 0;
  virtual bool GetCursorPosition(PixelPoint& point) = 0;

  // All of these as of the events that were dispatched. Virtual keys as in KeyEvent; toggled is the light
  // of Caps Lock, Num Lock and Scroll Lock.
  virtual std::uint32_t GetModifiers() const = 0;
  virtual void GetKeyState(std::uint8_t virtualKey, bool& isDown, bool& isToggled) const = 0;

  // Of the first screen, without panels and docks.
  virtual PixelRect GetWorkArea() = 0;

  // Shows a text in a window of its own, above the window with the keyboard or else the first one, and
  // returns when the user has answered; meanwhile no other window hears input, and their OnPaint waits.
  // Closing it is kCancel, with one button kOk, with kYesNo kNo; a wish to quit closes it, too, and stays
  // for TakeQuitRequest. What the screen has no room for is left out; Ctrl+C copies all.
  // Throws runtime_error when there is no window to be had.
  virtual MessageAnswer ShowMessage(const MessageRequest& request) = 0;

  // Both live as long as the window system.
  virtual Clipboard& GetClipboard() = 0;
  virtual FileChooser& GetFileChooser() = 0;
};

}  // namespace Platform
