#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>

#include "Platform/NativeThread.h"
#include "TFFramework/Threads/LEvent.h"
#include "TFFramework/Threads/Thread.h"
#include "TFFramework/Threads/ThreadWorker.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

// Far longer than anything a test waits for, and shorter than the stop wait of a thread.
inline constexpr std::uint32_t kTestWait = 40000;

// Calls a function for each item.
class FunctionWorker : public LThreadWorker {
 public:
  using Function = std::function<TFRESULT(const RCPtr<LRefCountedObject>&)>;

  explicit FunctionWorker(Function function) : mFunction(std::move(function)) {}
  TFRESULT Work(const RCPtr<LRefCountedObject>& data) override { return mFunction(data); }
  String ToString() const override { return mName; }

 private:
  Function mFunction;
  String mName{u"FunctionWorker"};
};

inline RCPtr<LThreadWorker> MakeWorker(FunctionWorker::Function function) {
  return RCPtr<LThreadWorker>(new FunctionWorker(std::move(function)));
}

// Sets an event as it dies.
class DeathNotice : public virtual LRefCountedObject {
 public:
  explicit DeathNotice(Event& died) : mDied(died) {}
  ~DeathNotice() override { mDied.Set(); }

 private:
  Event& mDied;
};

// While it lives the system refuses every new thread.
class ThreadsRefused {
 public:
  ThreadsRefused() : mBefore(Platform::SetThreadStackSize(SIZE_MAX / 4)) {}
  ~ThreadsRefused() { Platform::SetThreadStackSize(mBefore); }
  ThreadsRefused(const ThreadsRefused&) = delete;
  ThreadsRefused& operator=(const ThreadsRefused&) = delete;

 private:
  std::size_t mBefore;
};

// While it lives owners wait this long for a thread's end.
class StopWait {
 public:
  explicit StopWait(std::uint32_t milliseconds) : mBefore(Thread::SetStopWait(milliseconds)) {}
  ~StopWait() { Thread::SetStopWait(mBefore); }
  StopWait(const StopWait&) = delete;
  StopWait& operator=(const StopWait&) = delete;

 private:
  std::uint32_t mBefore;
};

// Takes the records of the process's diagnostics log while it lives.
class RecordsCaught {
 public:
  RecordsCaught() : mBefore(GetDiagnosticsLog().SetNarrowStream(mRecords)) {}
  ~RecordsCaught() { GetDiagnosticsLog().SetNarrowStream(mBefore); }
  RecordsCaught(const RecordsCaught&) = delete;
  RecordsCaught& operator=(const RecordsCaught&) = delete;

  std::string GetText() const {
    const std::scoped_lock lock(GetDiagnosticsLog().GetMutex());
    return mRecords.str();
  }

 private:
  std::ostringstream mRecords;
  std::ostream& mBefore;
};

}  // namespace TF
