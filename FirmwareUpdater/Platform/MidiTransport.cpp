#include "Platform/MidiTransport.h"

#include <cerrno>

namespace Platform {

MidiStatus MidiStatusOfErrno(int error) {
  switch (error) {
    case 0:
      return kMidiOk;
    case EBUSY:
    case EAGAIN:
      return kMidiAllocated;
    case EACCES:
    case EPERM:
      return kMidiAccessDenied;
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case ECONNREFUSED:
    case ECONNRESET:
    case EPIPE:
      return kMidiBadDevice;
    default:
      return kMidiError;
  }
}

}  // namespace Platform
