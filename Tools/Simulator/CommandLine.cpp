#include "Tools/Simulator/CommandLine.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

#include "Tools/Support/Number.h"

namespace Simulator {
namespace {

constexpr std::uint32_t kMaxRestartTime = 24 * 60 * 60 * 1000;  // Milliseconds.

constexpr std::string_view kHelp =
    R"(Plays a Tessel at a virtual MIDI port or as a USB gadget, until it gets SIGINT, SIGTERM or SIGHUP.

usage: tessel-simulator --dir DIR|--gadget DIR [option]...

  --dir DIR               directory of the port's sockets; made when it is missing
  --gadget DIR            directory of a USB gadget with a MIDI function that has an id; the device
                          is plugged in and out by binding and unbinding it
  --name NAME             name of the port (Tessel)
  --firmware A.B.C.D      version of the firmware (1.5.0.9)
  --update-version A.B.C.D  version after an update whose regions were all verified
                          (that of --firmware)
  --mode MODE             normal or bootloader (normal)
  --hardware-id N         (0x31534C54)
  --secondary-id N        (0x00000100)
  --restart-ms N          how long the port is away when the device restarts (500)
  --flash FILE            the flash as Intel HEX, written after an update and at the end
  --trace FILE            one line for each message in and out
  --ready-file FILE       made when the port is there; the line "ready" is printed as well
  --answer-nothing        the device takes no message and gives no answer
  --fault KIND@WHERE[:ARGUMENT]  something that goes wrong; may be repeated
  --help

WHERE is the number of a message received in update mode, counted from 1; N-M for a range; * for
every one; or the name of a message, for its first: version, switch, open, start, select, header,
write, write-acked, verify, finish, other. NAME#N, NAME#N-M and NAME#* stand for others of that
name, which are counted in both modes.

KIND is one of
  lose-reply              the message is taken, its reply is lost
  late-reply:MS           the reply comes late
  wrong-reply[:CODE]      the reply has another code (0x81, or 0x82 in place of 0x81)
  error-reply[:VALUE]     the error reply in place of the right one, or of none
  wrong-crc               a CRC-32 in the reply is wrong
  wrong-region            the region's index in the reply is wrong
  wrong-hardware[:ID]     the hardware id in the reply to select is ID (0xFFFFFFFF)
  short-reply[:COUNT]     the reply's data lacks its last bytes (1)
  half-reply              the reply breaks off in the middle
  noise                   other makers' messages, notes, real-time bytes and half messages around
                          the reply, real-time bytes inside it
  flood[:BYTES]           a message without an end comes before the reply (1048576)
  unplug[:MS]             the port goes before the message is taken; it comes back, or never
  silent                  the device is dead from this message on, until it is unplugged
  ignore-message          as if the message had never come
  duplicate-reply         the reply comes twice

Numbers are decimal, or hexadecimal behind 0x. exit status: 0 after a signal, 1 after a failure,
2 for bad options.
)";

DeviceMode ParseMode(const std::string& text) {
  if (text == "normal") return DeviceMode::kNormal;
  if (text == "bootloader") return DeviceMode::kBootloader;
  throw std::invalid_argument(fmt::format("\"{}\" is neither normal nor bootloader", text));
}

using SetOption = void (*)(CommandLine& line, const std::string& value);

struct Option {
  std::string_view mName;
  bool mTakesValue;
  SetOption mSet;
};

constexpr std::array<Option, 15> kOptions{{
    {"--dir", true, [](CommandLine& line, const std::string& value) { line.mServer.mDirectory = value; }},
    {"--gadget", true, [](CommandLine& line, const std::string& value) { line.mServer.mGadget = value; }},
    {"--name", true, [](CommandLine& line, const std::string& value) { line.mServer.mPortName = value; }},
    {"--firmware", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mFirmware = ParseVersion(value);
     }},
    {"--update-version", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mUpdateVersion = ParseVersion(value);
     }},
    {"--mode", true,
     [](CommandLine& line, const std::string& value) { line.mServer.mDevice.mMode = ParseMode(value); }},
    {"--hardware-id", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mHardwareId = Tools::ParseNumber(value, "id");
     }},
    {"--secondary-id", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mSecondaryId = Tools::ParseNumber(value, "id");
     }},
    {"--restart-ms", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mRestartTime =
           std::chrono::milliseconds(Tools::ParseNumber(value, "time", kMaxRestartTime));
     }},
    {"--flash", true, [](CommandLine& line, const std::string& value) { line.mServer.mFlashFile = value; }},
    {"--trace", true, [](CommandLine& line, const std::string& value) { line.mServer.mTraceFile = value; }},
    {"--ready-file", true, [](CommandLine& line, const std::string& value) { line.mReadyFile = value; }},
    {"--answer-nothing", false,
     [](CommandLine& line, const std::string&) { line.mServer.mDevice.mAnswerNothing = true; }},
    {"--fault", true,
     [](CommandLine& line, const std::string& value) {
       line.mServer.mDevice.mFaults.push_back(ParseFault(value));
     }},
    {"--help", false, [](CommandLine& line, const std::string&) { line.mHelp = true; }},
}};

const Option& FindOption(std::string_view name) {
  for (const Option& option : kOptions) {
    if (option.mName == name) return option;
  }
  throw std::invalid_argument(fmt::format("\"{}\" is no option", name));
}

// Sets one option and gives the number of arguments that it took.
std::size_t TakeOption(std::span<const std::string> arguments, CommandLine& line) {
  const std::string& first = arguments.front();
  const std::size_t equals = first.find('=');
  const Option& option = FindOption(std::string_view(first).substr(0, equals));
  const bool inside = equals != std::string::npos;
  if (!option.mTakesValue && inside)
    throw std::invalid_argument(fmt::format("{} takes no value", option.mName));
  if (option.mTakesValue && !inside && arguments.size() < 2)
    throw std::invalid_argument(fmt::format("{} needs a value", option.mName));
  const std::size_t taken = option.mTakesValue && !inside ? 2 : 1;
  try {
    option.mSet(line, inside ? first.substr(equals + 1) : arguments[taken - 1]);
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(fmt::format("{}: {}", option.mName, error.what()));
  }
  return taken;
}

}  // namespace

CommandLine ParseCommandLine(std::span<const std::string> arguments) {
  CommandLine line;
  while (!arguments.empty() && !line.mHelp) arguments = arguments.subspan(TakeOption(arguments, line));
  if (!line.mHelp && line.mServer.mDirectory.empty() == line.mServer.mGadget.empty())
    throw std::invalid_argument("one of --dir DIR and --gadget DIR is needed");
  return line;
}

std::string_view HelpText() {
  return kHelp;
}

}  // namespace Simulator
