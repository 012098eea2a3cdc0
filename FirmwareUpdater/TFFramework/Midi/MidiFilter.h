#pragma once

#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// Decides which captured messages a client gets to see. The service keeps and hands out
// copies only, so a filter must override CreateCopy.
//
// Threads: Accept runs on the thread that delivers captured messages.
class LIMidiFilter : public virtual LRefCountedObject {
 public:
  virtual bool Accept(const char* data, unsigned length) = 0;
};

}  // namespace TF
