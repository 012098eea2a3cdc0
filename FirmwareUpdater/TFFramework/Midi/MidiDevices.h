#pragma once

#include <cstdint>

#include "Platform/MidiDriver.h"
#include "TFFramework/Midi/MidiPortNames.h"

namespace TF {

enum class MidiDirection { kInput, kOutput };

// "input" or "output", for records.
const char* DirectionText(MidiDirection direction);

// Names of the devices present, in the driver's order, up to the first that the driver no
// longer knows.
StringArray ReadDeviceNames(Platform::MidiDriver& driver, MidiDirection direction);

// What a status means to a developer.
const char* MidiStatusText(Platform::MidiStatus status);

// A record of an open that the driver refused, with the reason.
void RecordOpenFailure(MidiDirection direction, const String& name, const String& deviceName,
                       Platform::MidiStatus status);

// A record of a name that fits several ports, with their names.
void RecordAmbiguousName(MidiDirection direction, const String& name, const StringArray& names);

}  // namespace TF
