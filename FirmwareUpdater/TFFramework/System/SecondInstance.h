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

  // A command line as UTF-8; an empty one only brings the window to the front. False when there is no
  // window, or one that another window keeps from its user at the moment.
  bool Take(const std::string& commandLine);

  // Brings the window to the front when something was taken, restored if it was minimized. Returns the
  // command lines that are not empty, in their order.
  std::vector<String> Deliver();

 private:
  bool IsReachable() const;

  RCPtr<OSWindow> mWindow;
  std::atomic<bool> mIsReachable{false};  // As of the last Deliver.
  Mutex mMutex;
  std::vector<std::string> mTaken;  // Guarded by mMutex.
};

}  // namespace TF
