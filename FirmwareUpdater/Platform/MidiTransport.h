#pragma once

#include <sys/types.h>

#include <cerrno>
#include <cstddef>

#include "Platform/EventHandle.h"
#include "Platform/MidiDriver.h"

namespace Platform {

// The driver's number for an error of the operating system.
MidiStatus MidiStatusOfErrno(int error);

// One direction of one device, opened: moves raw bytes and never blocks but in Drain, and for a moment in
// DrainSoon. The destructor lets go of the device. Read, Write, DrainSoon, Drain and Drop belong to one
// thread at a time; IsPresent may be called beside them.
class MidiTransport {
 public:
  struct Moved {
    std::size_t bytes = 0;  // 0 with success: it would have to wait.
    MidiStatus status = kMidiOk;
  };

  virtual ~MidiTransport() = default;

  // Becomes readable (writable) when Read (Write) has something to do.
  virtual int Descriptor() const = 0;
  virtual Moved Read(char* bytes, std::size_t count) = 0;
  virtual Moved Write(const char* bytes, std::size_t count) = 0;
  // True if all that was written leaves the computer within some milliseconds.
  virtual bool DrainSoon() = 0;
  // Waits until all that was written has left the computer. Setting the event ends the wait
  // with kMidiError.
  virtual MidiStatus Drain(const EventHandle& wake) = 0;
  // Forgets what was written and has not left yet.
  virtual void Drop() = 0;
  virtual bool IsPresent() = 0;

 protected:
  // What transfer() moved, a read or write of the system: again for as long as signals end it.
  template <class Transfer>
  static Moved MoveBytes(Transfer transfer) {
    ssize_t count = 0;
    do {
      count = transfer();
    } while (count < 0 && errno == EINTR);
    if (count > 0) return {static_cast<std::size_t>(count), kMidiOk};
    if (count == 0) return {0, kMidiBadDevice};  // The end of what there will ever be.
    if (errno == EAGAIN) return {0, kMidiOk};
    return {0, MidiStatusOfErrno(errno)};
  }
};

}  // namespace Platform
