#pragma once

#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

// Whoever carries out work items on a RetriggerableThreader or an LThreadPool.
class LThreadWorker : public virtual LRefCountedObject {
 public:
  // Runs on the threader's thread with the data of the item, which may be null. An exception
  // that leaves it ends the process.
  virtual TFRESULT Work(const RCPtr<LRefCountedObject>& data) = 0;
};

}  // namespace TF
