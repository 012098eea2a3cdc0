#pragma once

#include <functional>
#include <memory>

#include "Platform/EventHandle.h"
#include "Platform/NativeThread.h"
#include "Platform/OwnedDescriptor.h"

namespace Platform {

// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into calls on a
// thread of its own, where locks may be taken, and ignores SIGPIPE. A signal that was ignored
// when the program started, as under nohup, stays ignored.
//
// Made on the main thread before any other thread exists, since it blocks these signals
// there and in every thread started later. Destroyed on the same thread; the signals then
// have their former effect again, SIGPIPE stays ignored.
class SignalWatcher {
 public:
  // Gets the signal's number, once for each that arrives; must not throw.
  using Callback = std::function<void(int signal)>;

  // Throws system_error when the system has no descriptor or thread to give.
  explicit SignalWatcher(Callback callback);
  SignalWatcher(const SignalWatcher&) = delete;
  SignalWatcher& operator=(const SignalWatcher&) = delete;
  // Waits for a callback under way; none follows.
  ~SignalWatcher();

 private:
  struct Mask;

  void Watch();

  Callback mCallback;
  EventHandle mStop{false};
  OwnedDescriptor mSignals;
  std::unique_ptr<Mask> mFormerMask;
  NativeThread mThread;
};

}  // namespace Platform
