#include "TFFramework/ControlBase/WaitCursor.h"

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"

namespace TF {

LWaitCursor::LWaitCursor(const String& text) {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (!application) return;
  mWindow = application->GetFrontRootWindow();
  if (mWindow) mCursorBefore = mWindow->SetCursor(application->GetCursorHandle(u"UI_CURSOR_WAIT"));
  try {
    application->SetStatusText(text, true);
    application->ProcessNotifications(true);
  } catch (...) {
    Restore();
    throw;
  }
}

LWaitCursor::~LWaitCursor() {
  Restore();
}

void LWaitCursor::Restore() {
  if (mWindow) mWindow->SetCursor(mCursorBefore);
  if (LFrameworkApp* const application = LFrameworkApp::GetInstance()) application->RestoreStatusText(false);
}

}  // namespace TF
