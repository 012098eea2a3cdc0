#pragma once

#include <memory>
#include <string>

#include "Platform/MidiTransport.h"

namespace Platform {

// Opens one direction of a raw MIDI subdevice, such as "hw:1,0,0", without waiting for a program
// that holds it. 0 or an errno; then opened stays empty.
int OpenAlsaTransport(const std::string& address, bool input, std::unique_ptr<MidiTransport>& opened);

}  // namespace Platform
