#include "Tools/Support/Descriptor.h"

#include <unistd.h>

namespace Tools {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    Close();
    mDescriptor = other.Release();
  }
  return *this;
}

void Descriptor::Close() {
  if (mDescriptor >= 0) close(Release());
}

}  // namespace Tools
