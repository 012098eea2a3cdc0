#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"

namespace TF {

bool LControl::FindDesktop(LayoutDesktop& desktop) {
  RCPtr<LRootWindow> window = mRootWindow;
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (!window && !mCreated && application) window = application->GetFrontRootWindow();
  return window && window->GetLayoutDesktop(desktop);
}

void LControl::ShowWindowTitle(const String& title) {
  if (const RCPtr<LRootWindow> window = mRootWindow; window) window->SetTitle(title);
}

void LControl::SizeWindow() {
  const RCPtr<LRootWindow> window = mRootWindow;
  if (window) window->SetClientSize({RoundToInt32(mBounds.mWidth), RoundToInt32(mBounds.mHeight)});
}

LControl::CursorHandle LControl::ShowCursor(CursorHandle cursor) {
  const RCPtr<LRootWindow> window = GetRootWindow();
  return window ? window->SetCursor(cursor) : 0;
}

void LControl::RepeatHitTest() {
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) window->RepeatHitTest();
}

void LControl::LeaveWindow() {
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) window->ForgetControl(*this);
}

}  // namespace TF
