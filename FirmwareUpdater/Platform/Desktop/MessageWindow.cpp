#include "Platform/Desktop/MessageWindow.h"

#include <algorithm>

namespace Platform {

namespace {

constexpr std::uint8_t kTab = 0x09;
constexpr std::uint8_t kReturn = 0x0D;
constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kSpace = 0x20;
constexpr std::uint8_t kLeft = 0x25;
constexpr std::uint8_t kRight = 0x27;
constexpr std::uint8_t kLetterC = 0x43;

// Room for the frame, and for seeing what lies below.
constexpr std::int32_t kScreenMargin = 60;

PixelSize RoomOn(const PixelRect& area) {
  return {area.mWidth - kScreenMargin, area.mHeight - kScreenMargin};
}

std::int32_t Place(std::int32_t start, std::int32_t length, std::int32_t size, std::int32_t areaStart,
                   std::int32_t areaLength) {
  const std::int32_t last = std::max(areaStart + areaLength - size, areaStart);
  return std::clamp(start + (length - size) / 2, areaStart, last);
}

PixelRect CenterOver(const PixelRect& below, const PixelSize& size, const PixelRect& area) {
  return {Place(below.mX, below.mWidth, size.mWidth, area.mX, area.mWidth),
          Place(below.mY, below.mHeight, size.mHeight, area.mY, area.mHeight), size.mWidth, size.mHeight};
}

}  // namespace

MessageWindow::MessageWindow(WindowSystem& windowSystem, PangoContext* context, const MessageRequest& request,
                             Window* parent)
    : mWindowSystem(windowSystem),
      mRequest(request),
      mPicture(context, request, RoomOn(windowSystem.GetWorkArea())) {
  const PixelRect area = windowSystem.GetWorkArea();
  WindowDescription description;
  description.mTitle = request.mCaption;
  description.mClient = CenterOver(parent ? parent->GetFrameRect() : area, mPicture.GetSize(), area);
  description.mParent = parent;
  mWindow = windowSystem.CreateWindow(description, *this);
  mWindow->Show(WindowShow::kShow);
  mWindow->Raise();
  mWindow->RequestPaint();
}

void MessageWindow::Dismiss() {
  switch (mRequest.mButtons) {
    case MessageButtons::kOk:
      mAnswer = MessageAnswer::kOk;
      break;
    case MessageButtons::kYesNo:
      mAnswer = MessageAnswer::kNo;
      break;
    default:
      mAnswer = MessageAnswer::kCancel;
  }
}

void MessageWindow::OnMousePress(const MouseEvent& event) {
  const auto button = mPicture.FindButton(event.mPoint);
  if (event.mButton != MouseButton::kLeft || !button) return;
  Change({*button, button, button});
}

void MessageWindow::OnMouseRelease(const MouseEvent& event) {
  if (event.mButton != MouseButton::kLeft) return;
  const auto button = mPicture.FindButton(event.mPoint);
  if (button && mStates.mPressed == button) Press(*button);
  Change({mStates.mFocused, button, std::nullopt});
}

void MessageWindow::OnMouseMove(const MouseEvent& event) {
  Change({mStates.mFocused, mPicture.FindButton(event.mPoint), mStates.mPressed});
}

void MessageWindow::OnMouseLeave() {
  Change({mStates.mFocused, std::nullopt, mStates.mPressed});
}

// A key that is held down since before the message appeared answers nothing.
void MessageWindow::OnKey(const KeyEvent& event) {
  if (!event.mPressed) return;
  const bool hasShift = (event.mModifiers & ModifierBit::kShift) != 0;
  if (event.mVirtualKey == kTab) MoveFocus(!hasShift);
  if (event.mVirtualKey == kLeft || event.mVirtualKey == kRight) MoveFocus(event.mVirtualKey == kRight);
  if (event.mRepeated) return;
  if (event.mVirtualKey == kReturn || event.mVirtualKey == kSpace) Press(mStates.mFocused);
  if (event.mVirtualKey == kEscape) Dismiss();
  if (event.mVirtualKey == kLetterC && (event.mModifiers & ModifierBit::kCtrl) != 0)
    mWindowSystem.GetClipboard().SetText(mRequest.mCaption + "\n\n" + mRequest.mText + "\n");
}

void MessageWindow::Show() {
  const PixelSize size = mPicture.GetSize();
  const PixelRect whole{0, 0, size.mWidth, size.mHeight};
  mWindow->Present(mPicture.Draw(mStates), {&whole, 1});
}

void MessageWindow::Change(const MessageButtonStates& states) {
  if (states == mStates) return;
  mStates = states;
  mWindow->RequestPaint();
}

void MessageWindow::MoveFocus(bool forward) {
  const std::size_t count = mPicture.GetAnswers().size();
  Change({(mStates.mFocused + (forward ? 1 : count - 1)) % count, mStates.mHovered, mStates.mPressed});
}

}  // namespace Platform
