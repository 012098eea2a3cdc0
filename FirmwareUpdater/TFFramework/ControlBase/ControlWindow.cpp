#include "TFFramework/ControlBase/ControlWindow.h"

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/HeldControlWindow.h"

namespace TF {

HeldControlWindow::HeldControlWindow(const RCPtr<LRootWindow>& window)
    : mWindow(window), mServices(dynamic_cast<IControlWindow*>(mWindow.Get())) {}

HeldControlWindow::HeldControlWindow(const LControl& control) : HeldControlWindow(control.GetRootWindow()) {}

bool LControl::FindDesktop(LayoutDesktop& desktop) {
  const HeldControlWindow window(mRootWindow);
  return window && window->GetLayoutDesktop(desktop);
}

void LControl::ShowWindowTitle(const String& title) {
  if (const HeldControlWindow window(mRootWindow); window) window->SetTitle(title);
}

void LControl::SizeWindow() {
  const HeldControlWindow window(mRootWindow);
  if (window) window->SetClientSize({RoundToInt32(mBounds.mWidth), RoundToInt32(mBounds.mHeight)});
}

LControl::CursorHandle LControl::ShowCursor(CursorHandle cursor) {
  const HeldControlWindow window(*this);
  return window ? window->SetCursor(cursor) : 0;
}

void LControl::RepeatHitTest() {
  if (const HeldControlWindow window(*this); window) window->RepeatHitTest();
}

void LControl::LeaveWindow() {
  if (const HeldControlWindow window(*this); window) window->ForgetControl(*this);
}

}  // namespace TF
