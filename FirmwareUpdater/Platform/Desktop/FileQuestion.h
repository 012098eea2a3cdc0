#pragma once

#include <atomic>
#include <functional>

#include "Platform/EventHandle.h"
#include "Platform/FileChooser.h"
#include "Platform/NativeThread.h"

namespace Platform {

// A question to the user that waits for its answer on a thread of its own.
//
// Threads: the owner's thread.
class FileQuestion {
 public:
  // onAnswer is called on the other thread.
  FileQuestion(const FileRequest& request, std::function<void()> onAnswer);
  FileQuestion(const FileQuestion&) = delete;
  FileQuestion& operator=(const FileQuestion&) = delete;
  // Cancels what is not answered.
  ~FileQuestion();

  bool IsAnswered() const { return mIsAnswered; }
  // Takes the dialog from the screen; the answer is soon there.
  void Cancel() { mCancel.Set(); }
  // Once it is answered.
  FileChoice TakeAnswer();

 private:
  void Ask();
  FileChoice AskSomebody();

  const FileRequest mRequest;
  const std::function<void()> mOnAnswer;
  EventHandle mCancel{false};
  FileChoice mAnswer;
  std::atomic<bool> mIsAnswered{false};
  NativeThread mThread;
};

}  // namespace Platform
