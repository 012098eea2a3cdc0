#pragma once

#include <pango/pango.h>

#include <memory>
#include <optional>

#include "Platform/Desktop/MessagePicture.h"
#include "Platform/WindowSystem.h"

namespace Platform {

// A message on the screen, from its making until the user's answer. Tab and the arrows choose a button;
// Return, the space bar and a click press it; Escape and the close box stand for MessageRequest's answer to
// being closed; Ctrl+C copies caption and text.
class MessageWindow : private WindowListener {
 public:
  // The window shows above the parent, in the middle of it, or of the screen without one. Throws
  // runtime_error.
  MessageWindow(WindowSystem& windowSystem, PangoContext* context, const MessageRequest& request,
                Window* parent);

  Window& GetWindow() { return *mWindow; }
  // Empty until there is one.
  std::optional<MessageAnswer> GetAnswer() const { return mAnswer; }
  // As the close box.
  void Dismiss();

 private:
  void OnMousePress(const MouseEvent& event) override;
  void OnMouseRelease(const MouseEvent& event) override;
  void OnMouseMove(const MouseEvent& event) override;
  void OnMouseLeave() override;
  void OnWheel(WheelAxis, std::int32_t, const MouseEvent&) override {}
  void OnKey(const KeyEvent& event) override;
  void OnCharacter(char16_t, std::uint32_t) override {}
  void OnFocus(bool) override {}
  void OnResize(const PixelSize&) override {}
  void OnMove() override {}
  void OnExpose() override { Show(); }
  void OnCloseRequest() override { Dismiss(); }
  void OnDisplayChange() override {}
  void OnClipboardLost() override {}
  void OnPaint() override { Show(); }

  void Show();
  void Change(const MessageButtonStates& states);
  void MoveFocus(bool forward);
  void Press(std::size_t button) { mAnswer = mPicture.GetAnswers()[button]; }

  WindowSystem& mWindowSystem;
  const MessageRequest mRequest;
  MessagePicture mPicture;
  MessageButtonStates mStates;
  std::optional<MessageAnswer> mAnswer;
  std::unique_ptr<Window> mWindow;
};

}  // namespace Platform
