#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "Platform/EventHandle.h"
#include "Platform/NativeThread.h"
#include "Platform/OwnedDescriptor.h"

namespace Platform {

// Tells whether this user runs the program already, and takes a later start's command line
// to the instance that has a window. Its files stand in XDG_RUNTIME_DIR and only the user
// can reach them; without such a folder every instance is the first and none finds another.
//
// The lock files stay behind, free; a socket that a crash left behind is replaced.
//
// Threads: the main thread calls everything; the handler runs on this object's own thread.
class InstanceLock {
 public:
  // Brings the window to the front, takes over the UTF-8 command line when it is not empty,
  // and answers whether there is a window. Must return soon and not throw.
  using CommandLineHandler = std::function<bool(const std::string& commandLine)>;

  // name is a file name, the same for all instances of one program.
  explicit InstanceLock(std::string_view name);
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;
  ~InstanceLock();

  // True when no other instance is alive. From here to its end this object marks one,
  // whatever the answer. Called once.
  bool TryAcquire();

  // Answers later starts from now on, once in the life of this object. False when another
  // instance does so already, or when the system has no socket or thread to give.
  bool Serve(CommandLineHandler handler);
  // The handler runs no more afterwards. Also done by the destructor.
  void StopServing();

  // True when an instance with a window has taken the text over; an empty text only brings
  // the window to the front. Takes some seconds at most.
  bool SendCommandLine(std::string_view text);

 private:
  bool Listen();
  void StopListening();
  void AnswerUntilStopped();
  void Answer(int connection);

  std::string mBasePath;  // Native; empty without a folder.
  OwnedDescriptor mPresence;
  OwnedDescriptor mWindowLock;
  OwnedDescriptor mListener;
  CommandLineHandler mHandler;
  EventHandle mStop{false};
  NativeThread mThread;
  bool mThreadRuns = false;
};

}  // namespace Platform
