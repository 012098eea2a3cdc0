#include "Platform/OwnedDescriptor.h"

#include <unistd.h>

namespace Platform {

void OwnedDescriptor::Reset(int descriptor) {
  const int former = std::exchange(mDescriptor, descriptor);
  // Linux frees the descriptor whatever the call answers.
  if (former != kNone) close(former);
}

}  // namespace Platform
