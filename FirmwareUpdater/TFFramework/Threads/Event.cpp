#include "TFFramework/Threads/Event.h"

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

namespace {

std::uint32_t WaitResult(Platform::WaitStatus status) {
  switch (status) {
    case Platform::WaitStatus::kSignalled:
      return kWaitSignalled;
    case Platform::WaitStatus::kTimeout:
      return kWaitTimeout;
    case Platform::WaitStatus::kFailed:
      break;
  }
  return kWaitFailed;
}

}  // namespace

EventBlock::EventBlock(bool autoReset) : mHandle(autoReset) {
  if (!mHandle.IsValid()) Throw<std::runtime_error>("The system has no more events", "TF::Event::Event");
}

std::uint32_t EventBlock::Wait(std::uint32_t milliseconds) {
  mWaiters.fetch_add(1);
  const Platform::WaitStatus status = mHandle.Wait(milliseconds);
  mWaiters.fetch_sub(1);
  return WaitResult(status);
}

Event::Event(bool autoReset) : mBlock(std::make_shared<EventBlock>(autoReset)) {}

bool Event::Set() {
  const std::shared_ptr<EventBlock> block = mBlock;  // Outlives this event, see the header.
  return block->Set();
}

}  // namespace TF
