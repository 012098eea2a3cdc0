#include "TFFramework/ControlBase/ControlWindow.h"

#include "TFFramework/ControlBase/Control.h"

namespace TF {

namespace {

// Null without a window. The caller holds the window.
IControlWindow* AsControlWindow(const RCPtr<LRootWindow>& window) {
  return dynamic_cast<IControlWindow*>(window.Get());
}

}  // namespace

bool LControl::FindDesktop(LayoutDesktop& desktop) {
  const RCPtr<LRootWindow> window = mRootWindow;
  IControlWindow* const services = AsControlWindow(window);
  return services && services->GetLayoutDesktop(desktop);
}

void LControl::ShowWindowTitle(const String& title) {
  const RCPtr<LRootWindow> window = mRootWindow;
  if (IControlWindow* const services = AsControlWindow(window)) services->SetTitle(title);
}

void LControl::SizeWindow() {
  const RCPtr<LRootWindow> window = mRootWindow;
  IControlWindow* const services = AsControlWindow(window);
  if (services) services->SetClientSize({RoundToInt32(mBounds.mWidth), RoundToInt32(mBounds.mHeight)});
}

LControl::CursorHandle LControl::ShowCursor(CursorHandle cursor) {
  const RCPtr<LRootWindow> window = GetRootWindow();
  IControlWindow* const services = AsControlWindow(window);
  return services ? services->SetCursor(cursor) : 0;
}

void LControl::RepeatHitTest() {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (IControlWindow* const services = AsControlWindow(window)) services->RepeatHitTest();
}

void LControl::LeaveWindow() {
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (IControlWindow* const services = AsControlWindow(window)) services->ForgetControl(*this);
}

}  // namespace TF
