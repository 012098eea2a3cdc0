#include <algorithm>
#include <limits>
#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Clipboard.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/System/OSWindow.h"

namespace TF {

namespace {

// What a window tells with an event of the mouse or a character; the sides are for keys alone.
constexpr std::uint32_t kGeneralModifiers = Modifier::kCtrl | Modifier::kShift | Modifier::kAlt;
constexpr std::uint32_t kAltModifiers = Modifier::kAlt | Modifier::kLeftAlt | Modifier::kRightAlt;
constexpr std::uint8_t kAltKey = 0x12;

// Pixels. Larger than every screen, and far from where numbers end.
constexpr std::int32_t kHugeSide = 30000;

// Beyond everything that may stick out of a window.
constexpr Platform::PixelPoint kNowhere{-0x10000000, -0x10000000};

bool IsWithin(const Platform::PixelRect& inner, const RectT<std::int32_t>& outer) {
  return inner.mX >= outer.mX && inner.mY >= outer.mY && inner.mX + inner.mWidth <= outer.mX + outer.mWidth &&
         inner.mY + inner.mHeight <= outer.mY + outer.mHeight;
}

}  // namespace

void OSWindow::StorePoint(const Platform::PixelPoint& point) {
  mMouseX = point.mX;
  mMouseY = point.mY;
}

void OSWindow::OnMousePress(const Platform::MouseEvent& event) {
  StorePoint(event.mPoint);
  if (!mRootWindow) return;
  if (!mRootWindow->GetFocusControl()) TakeFocus();
  mMouseButtons |= event.mButton;
  mRootWindow->ProcessMouseButton(event.mIsDoubleClick ? LRootWindow::kDoubleClickPress : LRootWindow::kPress,
                                  event.mButton, event.mModifiers & kGeneralModifiers, {mMouseX, mMouseY}, 0);
}

void OSWindow::OnMouseRelease(const Platform::MouseEvent& event) {
  StorePoint(event.mPoint);
  mMouseButtons &= ~event.mButton;
  if (!mRootWindow) return;
  mRootWindow->ProcessMouseButton(LRootWindow::kRelease, event.mButton, event.mModifiers & kGeneralModifiers,
                                  {mMouseX, mMouseY}, 0);
}

void OSWindow::OnMouseMove(const Platform::MouseEvent& event) {
  StorePoint(event.mPoint);
  if (mRootWindow) mRootWindow->ProcessMouseMove({mMouseX, mMouseY}, event.mModifiers & kGeneralModifiers, 0);
}

// Until the mouse comes back it is outside, wherever it goes: nothing is hovered under a mouse that is gone.
void OSWindow::OnMouseLeave() {
  StorePoint(kNowhere);
  if (mRootWindow)
    mRootWindow->ProcessMouseMove({mMouseX, mMouseY}, mWindowSystem.GetModifiers() & kGeneralModifiers, 0);
}

void OSWindow::OnWheel(Platform::WheelAxis axis, std::int32_t delta, const Platform::MouseEvent& event) {
  StorePoint(event.mPoint);
  const auto index = static_cast<std::size_t>(axis);
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  const std::int64_t sum = std::clamp(std::int64_t{mWheelRemainder[index]} + delta, -kMost, kMost);
  mWheelRemainder[index] = static_cast<std::int32_t>(sum % kWheelNotch);
  if (sum / kWheelNotch == 0 || !mRootWindow) return;
  const bool isUp = sum > 0;
  const std::uint32_t code =
      axis == Platform::WheelAxis::kVertical
          ? (isUp ? LMouseWheelParam::kUp : LMouseWheelParam::kDown)
          : (isUp ? LMouseWheelParam::kHorizontalUp : LMouseWheelParam::kHorizontalDown);
  mRootWindow->ProcessMouseWheel({mMouseX, mMouseY}, event.mModifiers & kGeneralModifiers, code);
}

// Alt with Ctrl is no Alt: many layouts type characters with the two.
void OSWindow::OnKey(const Platform::KeyEvent& event) {
  std::uint32_t mask = event.mModifiers;
  if ((mask & Modifier::kCtrl) != 0 && event.mVirtualKey != kAltKey) mask &= ~kAltModifiers;
  if (event.mVirtualKey != 0)
    SendKey(KeyCodeFromVirtualKey(event.mVirtualKey, event.mPressed, event.mRepeated, mask));
  else if (event.mPressed && (mask & Modifier::kAlt) != 0)
    SendKey(KeyCodeFromCharacter(0, mask));
}

void OSWindow::OnCharacter(char16_t character, std::uint32_t modifiers) {
  if ((modifiers & Modifier::kCommand) == 0)
    SendKey(KeyCodeFromCharacter(character, modifiers & kGeneralModifiers));
}

void OSWindow::SendKey(const KeyCode& key) {
  if (mRootWindow) mRootWindow->ProcessKey(MakeRC<LKeyParam>(key, true));
}

void OSWindow::OnFocus(bool hasFocus) {
  if (hasFocus) {
    if (mRootWindow) mRootWindow->ProcessActivate();
    return;
  }
  mMouseButtons = 0;
  const RCPtr<OSWindow> self(this);
  if (mRootWindow) mRootWindow->ProcessCaptureLost();
  if (mRootWindow) mRootWindow->ProcessFocusLost();
}

void OSWindow::OnResize(const Platform::PixelSize& client) {
  if (!mRootWindow || !mWindow) return;
  mRenderContext->mRect = {0, 0, client.mWidth, client.mHeight};
  if (mWindow->IsMinimized()) return;
  const RCPtr<OSWindow> self(this);
  TakeSize({client.mWidth, client.mHeight});
  if (!mRootWindow) return;
  StoreNormalRect();
  mRootWindow->InvalidateAll();
  HoldSizeLimits(client);
}

void OSWindow::TakeSize(const SizeT<std::int32_t>& client) {
  const RCPtr<LRootWindow> root = mRootWindow;
  const bool wasResizing = std::exchange(mIsResizing, true);
  try {
    root->ProcessSize(client);
  } catch (...) {
    mIsResizing = wasResizing;
    throw;
  }
  mIsResizing = wasResizing;
}

void OSWindow::StoreNormalRect() {
  if (!mWindow->IsMinimized() && !mWindow->IsMaximized()) mNormalRect = mWindow->GetClientRect();
}

// The display keeps the limits while the frame is dragged, but for some that lay out windows themselves.
void OSWindow::HoldSizeLimits(const Platform::PixelSize& client) {
  SizeT<std::int32_t> size{client.mWidth, client.mHeight};
  const bool breaksLimits = mRootWindow->ConstrainClientSize(size);
  if (!breaksLimits) mCorrectedSize = false;
  if (!breaksLimits || mCorrectedSize) return;
  mCorrectedSize = true;
  Platform::PixelRect rect = mWindow->GetClientRect();
  rect.mWidth = size.mWidth;
  rect.mHeight = size.mHeight;
  mWindow->SetClientRect(rect);
}

void OSWindow::TellSizeLimits() {
  if (!mRootWindow || !mWindow) return;
  SizeT<std::int32_t> smallest{1, 1};
  SizeT<std::int32_t> largest{kHugeSide, kHugeSide};
  mRootWindow->ConstrainClientSize(smallest);
  mRootWindow->ConstrainClientSize(largest);
  const auto limitOf = [](std::int32_t side) { return side == kHugeSide ? 0 : side; };
  const Platform::PixelSize minimum{smallest.mWidth, smallest.mHeight};
  const Platform::PixelSize maximum{limitOf(largest.mWidth), limitOf(largest.mHeight)};
  if (minimum == mSmallest && maximum == mLargest) return;
  mSmallest = minimum;
  mLargest = maximum;
  mWindow->SetSizeLimits(minimum, maximum);
}

// What was outside of the screen may have lost its pixels.
void OSWindow::OnMove() {
  if (!mWindow) return;
  StoreNormalRect();
  if (std::exchange(mWasOffWorkArea, false) && mRootWindow) mRootWindow->InvalidateAll();
  mWasOffWorkArea = !IsWithin(mWindow->GetFrameRect(), LFrameworkApp::GetInstance()->GetWorkArea());
}

void OSWindow::OnExpose() {
  if (mRenderContext) mRenderContext->ShowAgain();
}

void OSWindow::OnCloseRequest() {
  if (mRole == Role::kMain)
    LFrameworkApp::GetInstance()->GetApplicationCenter()->Post(
        LNotification::Create(kAppExitRequest, nullptr));
  else if (mRootWindow)
    mRootWindow->ProcessClose();
}

void OSWindow::OnDisplayChange() {
  InvalidateAll();
}

void OSWindow::OnClipboardLost() {
  const RCPtr<LClipboard> clipboard = LFrameworkApp::GetInstance()->GetClipboard();
  if (clipboard) clipboard->SetContents(nullptr);
}

}  // namespace TF
