#include "TFFramework/System/SecondInstance.h"

#include <utility>

#include "TFFramework/Application/FrameworkApp.h"

namespace TF {

namespace {

void RaiseModalWindows() {
  for (const RCPtr<LRootWindow>& root : LFrameworkApp::GetInstance()->GetRootWindows()) {
    IWindowOSServices* const services = root->GetServices();
    if (services && services->IsModal()) services->BringToTop();
  }
}

}  // namespace

void SecondInstance::SetWindow(const RCPtr<OSWindow>& window) {
  mWindow = window;
  mHasWindow = HasWindow();
}

bool SecondInstance::Take(const std::string& commandLine) {
  if (!mHasWindow) return false;
  const MutexLock lock(mMutex);
  mTaken.push_back(commandLine);
  return true;
}

std::vector<String> SecondInstance::Deliver() {
  mHasWindow = HasWindow();
  std::vector<String> commandLines;
  if (!mHasWindow) return commandLines;
  std::vector<std::string> taken;
  {
    const MutexLock lock(mMutex);
    taken = std::exchange(mTaken, {});
  }
  if (taken.empty()) return commandLines;
  Platform::Window& window = *mWindow->GetPlatformWindow();
  if (window.IsMinimized()) window.Show(Platform::WindowShow::kRestore);
  window.Raise();
  RaiseModalWindows();
  if (!window.IsEnabled()) return commandLines;
  for (const std::string& line : taken) {
    if (!line.empty()) commandLines.push_back(FromUtf8(line));
  }
  return commandLines;
}

}  // namespace TF
