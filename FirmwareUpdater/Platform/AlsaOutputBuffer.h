#pragma once

#include <cstddef>

namespace Platform {

// Makes an open raw MIDI output count as writable only while all of its buffer, which has this
// many bytes, is free: all bytes have then been handed to the device. A wait for that can be
// ended at any time, where ALSA's own drain cannot. Switches active sensing off as well, which
// would send a byte of its own when the port closes. 0 or an errno.
//
// ALSA's library refuses to ask for the whole buffer, so this speaks to the kernel itself.
int AwaitWholeOutputBuffer(int descriptor, std::size_t bufferBytes);

}  // namespace Platform
