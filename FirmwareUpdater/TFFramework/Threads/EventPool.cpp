#include "TFFramework/Threads/EventPool.h"

namespace TF {

EventPool::EventPool(std::int32_t count) : mBlock(std::make_unique<Block>()) {
  for (std::int32_t i = 0; i < count; ++i) {
    const RCPtr<LEvent> event = MakeRC<LEvent>();
    mBlock->handles.push_back(event->GetRawHandle());
    mBlock->events.Add(event);
  }
}

EventPool::~EventPool() = default;

std::int32_t EventPool::GetCount() const {
  return mBlock->events.GetCount();
}

RCPtr<LEvent> EventPool::GetEvent(std::int32_t index) const {
  return mBlock->events.GetAt(index);
}

std::int32_t EventPool::WaitAny(std::uint32_t milliseconds) {
  std::size_t index = 0;
  mBlock->waiters.fetch_add(1);
  const Platform::WaitStatus status = Platform::WaitForAnyEvent(mBlock->handles, milliseconds, index);
  mBlock->waiters.fetch_sub(1);
  return status == Platform::WaitStatus::kSignalled ? static_cast<std::int32_t>(index) : -1;
}

bool EventPool::HasWaiters() const {
  return mBlock->waiters.load() > 0;
}

}  // namespace TF
