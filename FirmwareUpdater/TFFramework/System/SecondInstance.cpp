#include "TFFramework/System/SecondInstance.h"

#include <utility>

namespace TF {

void SecondInstance::SetWindow(const RCPtr<OSWindow>& window) {
  mWindow = window;
  mIsReachable = IsReachable();
}

bool SecondInstance::IsReachable() const {
  return mWindow && mWindow->GetPlatformWindow() && mWindow->GetPlatformWindow()->IsEnabled();
}

bool SecondInstance::Take(const std::string& commandLine) {
  if (!mIsReachable) return false;
  const MutexLock lock(mMutex);
  mTaken.push_back(commandLine);
  return true;
}

std::vector<String> SecondInstance::Deliver() {
  mIsReachable = IsReachable();
  std::vector<String> commandLines;
  if (!mIsReachable) return commandLines;
  std::vector<std::string> taken;
  {
    const MutexLock lock(mMutex);
    taken = std::exchange(mTaken, {});
  }
  if (taken.empty()) return commandLines;
  Platform::Window& window = *mWindow->GetPlatformWindow();
  if (window.IsMinimized()) window.Show(Platform::WindowShow::kRestore);
  window.Raise();
  for (const std::string& line : taken) {
    if (!line.empty()) commandLines.push_back(FromUtf8(line));
  }
  return commandLines;
}

}  // namespace TF
