#pragma once

#include <SDL_events.h>
#include <pango/pango.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Desktop/DesktopFileChooser.h"
#include "Platform/Desktop/SdlClipboard.h"
#include "Platform/Desktop/SdlCursors.h"
#include "Platform/Desktop/SdlInput.h"
#include "Platform/WindowSystem.h"

namespace Platform {

class SdlWindow;

// The window system over SDL, one for the process.
//
// An event leads to one call of a listener at most, after which nothing is touched: the listener may
// have destroyed the window, started a loop of its own or thrown. Events that mean more are split, and
// what is left of them waits in front of the others.
class SdlWindowSystem : public WindowSystem {
 public:
  using TextContextSource = std::function<PangoContext*()>;

  // The source is asked with the first message. Throws runtime_error that names the displays tried.
  explicit SdlWindowSystem(TextContextSource textContext);

  std::unique_ptr<Window> CreateWindow(const WindowDescription& description,
                                       WindowListener& listener) override;
  bool DispatchInput() override;
  void DispatchPaints() override;
  void Wait(std::uint32_t milliseconds) override;
  void Wake() override;
  void AnswerDisplay() override;
  bool TakeQuitRequest() override { return mQuitRequested.exchange(false); }
  void RequestQuit() override;

  CursorId GetSystemCursor(SystemCursor cursor) override { return mCursors.GetSystemCursor(cursor); }
  CursorId MakeCursor(const PixelView& pixels, const PixelPoint& hotSpot) override;
  void SetCursor(CursorId cursor) override { mCursors.SetCursor(cursor); }
  void ShowCursor(bool show) override;
  bool SetCursorPosition(const PixelPoint& point) override;
  bool GetCursorPosition(PixelPoint& point) override;
  std::uint32_t GetModifiers() const override { return mInput.GetModifiers(); }
  void GetKeyState(std::uint8_t virtualKey, bool& isDown, bool& isToggled) const override;
  PixelRect GetWorkArea() override;
  MessageAnswer ShowMessage(const MessageRequest& request) override;
  Clipboard& GetClipboard() override { return mClipboard; }
  FileChooser& GetFileChooser() override { return mFileChooser; }

  // Runs until isDone says so, while no window hears input. onQuit is called when the program is to end.
  void WaitWithoutInput(const std::function<bool()>& isDone, const std::function<void()>& onQuit);

  // For windows.
  void AddWindow(SdlWindow& window);
  void RemoveWindow(const SdlWindow& window);
  bool HasFocus(const SdlWindow& window) const;
  // Any thread.
  void WakeForPaint() { PushEvent(kPaintCode); }

 private:
  // What a user event of the registered kind stands for.
  static constexpr std::int32_t kWakeCode = 0;
  static constexpr std::int32_t kPaintCode = 1;
  static constexpr std::int32_t kCharacterCode = 2;  // data1 holds the unit.

  // In mModal: no window has this number.
  static constexpr std::uint32_t kNobody = 0xFFFFFFFF;

  void PushEvent(std::int32_t code);
  bool TakeEvent(SDL_Event& event);
  void PutBack(const SDL_Event& event) { mPending.push_front(event); }
  void PutBackWindowEvent(std::uint32_t window, std::uint8_t kind);
  SdlWindow* FindWindow(std::uint32_t id) const;
  // Null for a window that hears no input.
  SdlWindow* FindInputWindow(std::uint32_t id) const;
  bool NeedsPaint() const;
  bool Paints(std::uint32_t window) const;
  SdlWindow* FindMessageParent() const;
  // A loop in the loop in which that window alone hears input.
  void RunModal(std::uint32_t window, const std::function<bool()>& isDone,
                const std::function<void()>& onQuit);

  // True for input.
  bool HandleEvent(const SDL_Event& event);
  bool HandleUserEvent(const SDL_UserEvent& event);
  bool HandleWindowEvent(const SDL_WindowEvent& event);
  void HandleFocus(const SDL_WindowEvent& event);
  void HandleLeave(SdlWindow& window);
  void HandleKey(const SDL_KeyboardEvent& event);
  void HandleText(const SDL_TextInputEvent& event);
  void PutBackCharacter(std::uint32_t window, char16_t character);
  void HandleMotion(const SDL_MouseMotionEvent& event);
  void HandleButton(const SDL_Event& event);
  void HandleWheel(const SDL_MouseWheelEvent& event);
  void HandleDisplayChange();
  void HandleClipboardChange();
  bool IsLeaveNext(std::uint32_t window) const;

  const TextContextSource mTextContext;
  const std::uint32_t mUserEvent;
  SdlInput mInput;
  SdlCursors mCursors;
  SdlClipboard mClipboard;
  DesktopFileChooser mFileChooser{*this};
  std::vector<SdlWindow*> mWindows;
  std::deque<SDL_Event> mPending;  // To be handled before what SDL has.
  std::uint32_t mFocus = 0;        // A window's number.
  std::uint32_t mModal = 0;        // The only window that hears input; 0 for all, or kNobody.
  PixelPoint mMousePoint;          // On the screen, as of the last event of a button.
  std::atomic<bool> mIsWoken{false};
  std::atomic<bool> mQuitRequested{false};
};

}  // namespace Platform
