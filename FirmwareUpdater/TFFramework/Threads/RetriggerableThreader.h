#pragma once

#include <cstdint>
#include <memory>

#include "TFFramework/Threads/LEvent.h"
#include "TFFramework/Threads/Thread.h"
#include "TFFramework/Threads/ThreadWorker.h"

namespace TF {

// A thread that lives as long as this object and carries out one work item at a time.
//
// An item keeps its worker alive. An owner that is itself the worker therefore stops the
// threader before it lets go of itself. If it does not, its last reference goes on this
// very thread; the threader is then destroyed without waiting and the thread ends by itself.
//
// Threads: two threads must not call Retrigger at once. The rest from any thread, except
// that the name belongs to whoever calls Retrigger.
class RetriggerableThreader : public IStringable {
 public:
  explicit RetriggerableThreader(const String& name = String());
  RetriggerableThreader(const RetriggerableThreader&) = delete;
  RetriggerableThreader& operator=(const RetriggerableThreader&) = delete;
  // Stops.
  ~RetriggerableThreader() override;

  // Hands over one item: worker->Work(data) runs on the thread at this priority (0 normal, 2
  // highest). When it is done the threader lets go of data, then of worker, can take the next
  // item, and sets completion, which is reset here first and may be null. kFailure while an
  // item runs and after Stop, and nothing has changed then. Without a thread of the system
  // the item is accepted and dropped.
  TFRESULT Retrigger(const RCPtr<LThreadWorker>& worker, const RCPtr<LRefCountedObject>& data,
                     const RCPtr<LEvent>& completion, std::int32_t priority);

  // Takes no further item and waits up to the stop wait of Thread for the running one. On
  // the threader's own thread it does not wait.
  void Stop();

  // True while an item is assigned.
  bool IsBusy() const;
  // True when the system has granted a thread and Stop has not been called.
  bool IsThreadRunning() const;
  // Result of the last item.
  TFRESULT GetResult() const;

  void SetName(const String& name) { mName = name; }
  // The name.
  String ToString() const override { return mName; }

 private:
  struct Shared;
  static TFRESULT ThreadFunction(void* argument);
  static void RunItem(Shared& shared);

  const std::shared_ptr<Shared> mShared;
  Thread mThread;
  bool mHasThread = false;
  String mName;
};

}  // namespace TF
