#include "TFFramework/Threads/LEvent.h"

namespace TF {

LEvent::LEvent(bool /*autoReset*/) : mBlock(std::make_shared<EventBlock>(true)) {}

bool LEvent::Set() {
  const std::shared_ptr<EventBlock> block = mBlock;
  return block->Set();
}

}  // namespace TF
