#pragma once

#include <cstddef>
#include <string_view>

#include "Platform/OwnedDescriptor.h"

// Raw MIDI ports as the kernel offers them. ALSA's library ends the whole process by an assertion when a
// device goes while it opens a port, and refuses to wait for a wholly empty buffer, so this does without it.
//
// Threads: any; what belongs to one port, one at a time.
namespace Platform {

enum class KernelPortDirection { kInput, kOutput };

// A card, a device on it and a subdevice of that.
struct KernelPortAddress {
  int mCard = 0;
  int mDevice = 0;
  int mSubdevice = 0;
};

// Reads "hw:1,0,0". False for anything else.
bool ParseKernelPortAddress(std::string_view text, KernelPortAddress& address);

// Opens one direction without waiting for a program that holds it: nothing on it ever blocks but
// KernelPortDrain and, for up to ten seconds, its close. 0 or an errno; then opened stays as it was.
int OpenKernelPort(const KernelPortAddress& address, KernelPortDirection direction, OwnedDescriptor& opened);

// The bytes that may wait in the port. An output counts as writable only while all of its buffer is free: all
// bytes have then been handed to the device, and a wait for that can be ended at any time. It sends no active
// sensing, which would be a byte of its own when the port closes. 0 or an errno.
int SetKernelPortBuffer(int port, KernelPortDirection direction, std::size_t bytes);

// Of an output: waits until all bytes have left the computer; forgets those that have not. 0 or an errno.
int KernelPortDrain(int port);
int KernelPortDrop(int port);

// False once the device has gone.
bool IsKernelPortPresent(int port, KernelPortDirection direction);

}  // namespace Platform
