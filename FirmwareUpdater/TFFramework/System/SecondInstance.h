#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "TFFramework/System/OSWindow.h"
#include "TFFramework/Threads/Mutex.h"

namespace TF {

// Takes what later starts of the program hand over to the window of the first one.
//
// Threads: main thread; Take on any.
class SecondInstance {
 public:
  // The window that later starts bring to the front; null without one.
  void SetWindow(const RCPtr<OSWindow>& window);

  // A command line as UTF-8; an empty one only brings the window to the front. False without a window.
  bool Take(const std::string& commandLine);

  // Brings the window to the front when something was taken, restored if it was minimized, and the modal
  // windows above it. Returns the command lines that are not empty, in their order; none of them while a
  // modal window keeps this one from its user.
  std::vector<String> Deliver();

 private:
  bool HasWindow() const { return mWindow && mWindow->GetPlatformWindow(); }

  RCPtr<OSWindow> mWindow;
  std::atomic<bool> mHasWindow{false};  // As of the last Deliver.
  Mutex mMutex;
  std::vector<std::string> mTaken;  // Guarded by mMutex.
};

}  // namespace TF
