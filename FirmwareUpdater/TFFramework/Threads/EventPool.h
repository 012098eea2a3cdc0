#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "TFFramework/Threads/LEvent.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

// A fixed set of auto-reset events of which a thread waits for any one. All operations from
// any thread.
class EventPool {
 public:
  explicit EventPool(std::int32_t count);
  EventPool(const EventPool&) = delete;
  EventPool& operator=(const EventPool&) = delete;
  virtual ~EventPool();

  std::int32_t GetCount() const;
  // Index from 0 to GetCount() - 1.
  RCPtr<LEvent> GetEvent(std::int32_t index) const;

  // Index of the lowest signalled event, which is consumed while the others stay as they
  // are; -1 on timeout or failure. A pool without events fails at once.
  std::int32_t WaitAny(std::uint32_t milliseconds);
  bool HasWaiters() const;

 private:
  struct Block {
    RCPtrArray<LEvent, 1, 0> events;
    std::atomic<std::int32_t> waiters{0};
    std::vector<int> handles;
  };
  const std::unique_ptr<Block> mBlock;
};

}  // namespace TF
