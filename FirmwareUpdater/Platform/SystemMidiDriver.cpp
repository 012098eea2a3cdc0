#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/AlsaMidiDriver.h"
#include "Platform/MidiDriver.h"
#include "Platform/MidiRecord.h"
#include "Platform/VirtualMidiDriver.h"

namespace Platform {
namespace {

constexpr const char* kChoiceVariable = "TESSEL_MIDI";
constexpr std::string_view kVirtualChoice = "virtual:";

MidiDriver* MakeDriver() {
  const char* choice = std::getenv(kChoiceVariable);
  const std::string_view text = choice != nullptr ? choice : "";
  if (text.starts_with(kVirtualChoice)) {
    return new VirtualMidiDriver(std::string(text.substr(kVirtualChoice.size())));
  }
  if (!text.empty()) {
    MidiRecord(std::string(kChoiceVariable) + "=" + std::string(text) + " is not known; ALSA is taken");
  }
  return new AlsaMidiDriver;
}

}  // namespace

// Never destroyed: the threads of its ports may still be leaving at the process's end.
MidiDriver& SystemMidiDriver() {
  static MidiDriver& driver = *MakeDriver();
  return driver;
}

}  // namespace Platform
