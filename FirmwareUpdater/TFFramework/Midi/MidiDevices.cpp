#include "TFFramework/Midi/MidiDevices.h"

#include <fmt/format.h>

#include <string>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

const char* DirectionText(MidiDirection direction) {
  return direction == MidiDirection::kInput ? "input" : "output";
}

StringArray ReadDeviceNames(Platform::MidiDriver& driver, MidiDirection direction) {
  const bool input = direction == MidiDirection::kInput;
  const std::uint32_t count = input ? driver.InputCount() : driver.OutputCount();
  StringArray names;
  std::u16string name;
  for (std::uint32_t device = 0; device < count; ++device) {
    const Platform::MidiStatus status =
        input ? driver.InputName(device, name) : driver.OutputName(device, name);
    if (status != Platform::kMidiOk) break;
    names.Add(String(name));
  }
  return names;
}

const char* MidiStatusText(Platform::MidiStatus status) {
  switch (status) {
    case Platform::kMidiOk:
      return "success";
    case Platform::kMidiBadDevice:
      return "the device has gone";
    case Platform::kMidiAllocated:
      return "another program holds the device";
    case Platform::kMidiInvalidHandle:
      return "the port is closed";
    case Platform::kMidiNoDriver:
      return "no device fits";
    case Platform::kMidiAccessDenied:
      return "this user may not open the device";
    default:
      return "the driver failed";
  }
}

void RecordOpenFailure(MidiDirection direction, const String& name, const String& deviceName,
                       Platform::MidiStatus status) {
  LogRecord(fmt::format("MIDI: cannot open {} port \"{}\" for \"{}\": {} ({})", DirectionText(direction),
                        ToUtf8(deviceName), ToUtf8(name), MidiStatusText(status), status));
}

void RecordAmbiguousName(MidiDirection direction, const String& name, const StringArray& names) {
  const String part = name.ToLower();
  std::string list;
  for (std::int32_t i = 0; i < names.GetCount(); ++i) {
    const String& candidate = names.GetAt(i);
    if (candidate.ToLower().Find(part) < 0) continue;
    if (!list.empty()) list += ", ";
    list += '"' + ToUtf8(candidate) + '"';
  }
  LogRecord(fmt::format("MIDI: \"{}\" fits several {} ports, so none is opened: {}", ToUtf8(name),
                        DirectionText(direction), list));
}

}  // namespace TF
