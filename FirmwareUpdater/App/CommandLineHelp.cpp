#include "App/CommandLineHelp.h"

#include <ostream>

#include "TFFramework/Application/Version.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace {

constexpr const char* kHelp =
    R"(Usage: tessel-firmware-updater [OPTION]...

Updates the firmware of a Tessel that is connected by USB. The firmware file is
ProductionApp.vbin beside the program unless an option names another one.

  -RETURN_UPDATE_MODE_STATUS     only report, by the exit status
  -SILENT                        no screen: switch the device to update mode, or, when it is
                                 there, send the update and end with the transfer
  -SILENT_IF_UPDATE_NOT_NEEDED   no screen when no update is needed
  -START_UPDATE_AUTOMATICALLY    the screen appears with the update already started
  -ALWAYS_UPDATE                 update also when the file is not newer than the device
  -ABSOLUTE_FIRMWARE_FILE_PATH=FILE
                                 the firmware file
  -FIRMWARE_IMAGE_NAME=NAME      the firmware file, by its name in the program's folder
  -DEBUG_CONSOLE                 show on standard error what happens
  -DEBUG_CONSOLE:PORT[:HOST]     send it as UDP datagrams
  --help                         show this text and end
  --version                      show the version and end

Options may be written in any case. Exit status:

  0  nothing to report; every run without -RETURN_UPDATE_MODE_STATUS
  1  no device to update
  2  device in update mode, file not newer
  3  device in update mode, file newer
  4  device runs its normal firmware, file not newer
  5  device runs its normal firmware, file newer
)";

}  // namespace

bool AnswerHelpOrVersion(std::span<const std::string> arguments, std::ostream& out) {
  for (const std::string& argument : arguments) {
    if (argument == "--help") {
      out << kHelp;
      return true;
    }
    if (argument == "--version") {
      out << "tessel-firmware-updater " << TF::ToUtf8(TF::Version().GetProductVersion()) << '\n';
      return true;
    }
  }
  return false;
}
