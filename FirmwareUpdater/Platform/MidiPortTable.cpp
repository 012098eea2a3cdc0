#include "Platform/MidiPortTable.h"

#include <atomic>

namespace Platform {

MidiHandle NewMidiHandle() {
  static std::atomic<std::uintptr_t> last{0};
  // A number in a pointer's clothes, never followed.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return reinterpret_cast<MidiHandle>(++last);
}

}  // namespace Platform
