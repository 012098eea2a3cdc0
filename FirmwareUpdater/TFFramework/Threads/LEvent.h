#pragma once

#include <cstdint>
#include <memory>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Threads/Event.h"

namespace TF {

// An auto-reset event that is shared by RCPtr. It starts unsignalled. Operations and results
// as in Event, from any thread.
class LEvent : public virtual LRefCountedObject {
 public:
  // Auto-reset whatever the argument says: every shared event has one waiter to let through.
  explicit LEvent(bool autoReset = true);

  std::uint32_t Wait(std::uint32_t milliseconds) { return mBlock->Wait(milliseconds); }
  bool IsSignalled() { return mBlock->IsSignalled(); }
  bool HasWaiters() const { return mBlock->HasWaiters(); }
  bool Set();
  bool Reset() { return mBlock->Reset(); }

  // For waiting on several events at once; valid as long as the event lives.
  int GetRawHandle() const { return mBlock->GetRawHandle(); }

 private:
  const std::shared_ptr<EventBlock> mBlock;
};

}  // namespace TF
