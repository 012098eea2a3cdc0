#pragma once

#include <string_view>

namespace Platform {

// Hands one sentence (UTF-8) to the sink of SetMidiRecordSink. Any thread; never call it
// under a lock that an operation of the driver takes.
void MidiRecord(std::string_view text);

}  // namespace Platform
