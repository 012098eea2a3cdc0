#pragma once

#include <cstdint>
#include <memory>

#include "Platform/NativeThread.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"

namespace TF {

// A small window with a picture and a bar that says the program is starting. It has a thread and a
// connection to the display of its own and needs nothing else of the framework. What goes wrong is told to
// the system's debugger output alone: the program starts without it then.
//
// Threads: the operations on the thread that made it.
class LSplashWindow {
 public:
  LSplashWindow();
  LSplashWindow(const LSplashWindow&) = delete;
  LSplashWindow& operator=(const LSplashWindow&) = delete;
  // Closes the window; waits at most a second for the thread.
  ~LSplashWindow();

  // Keeps a copy of the first picture that it is given, on white.
  void SetImage(const RCPtr<LBitmap>& bitmap);
  // Opens the window and waits up to five seconds until it is there. Does nothing when it was called before.
  void Start();
  // 0 to 100. Ends the stepping of RunProgress.
  void SetProgress(std::int32_t position);
  // Moves the bar from first to last, 0 to 100, in whole steps, four a second.
  void RunProgress(std::int32_t first, std::int32_t last, std::int32_t seconds);

 private:
  struct State;
  static void RunThread(State& state);

  // Shared with the thread, which may outlast this object.
  const std::shared_ptr<State> mState;
  Platform::NativeThread mThread;
  bool mRunning = false;
};

}  // namespace TF
