#include "Tools/Vbin/Commands.h"

#include <fmt/format.h>

#include <array>
#include <ostream>
#include <stdexcept>
#include <string_view>

#include "Tools/Support/FileAccess.h"
#include "Tools/Support/Number.h"
#include "Tools/Vbin/FlashMemory.h"
#include "Tools/Vbin/Image.h"
#include "Tools/Vbin/ImagePlan.h"

namespace Vbin {
namespace {

using Arguments = std::span<const std::string>;

constexpr std::string_view kHelp = R"(Makes, lists and checks firmware images.

usage: vbin create OUT (--region REGION [--section SECTION]...)...
       vbin info IMAGE
       vbin verify IMAGE
       vbin flash IMAGE OUT [--hardware-id ID]
       vbin --help

create  Writes an image. Sections belong to the region before them.
          REGION   hw=ID[,index=auto][,attributes=N][,parameter=N][,data-size=auto|N][,crc=auto|N]
          SECTION  address=N,file=PATH  or  address=N,fill=PATTERN:SIZE[:SEED]
          PATTERN  zero, ones, 0xNN, count or random
        Numbers are decimal, or hexadecimal behind 0x. file takes the rest of its argument.
info    Prints regions and sections of a valid image.
verify  Prints every fault with region, section and check.
flash   Writes what the flash of a device holds after an update with the image, as Intel HEX:
        of all regions, or of those for one hardware id.

exit status: 0 done, or the image is valid; 1 the image is invalid; 2 bad arguments, or a file
that cannot be read or written.
)";

class UsageError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// The image, or nothing after its faults were written to err.
bool LoadValid(const std::string& path, std::vector<std::uint8_t>& image, std::ostream& err) {
  image = Tools::ReadFile(path, kMaxImageSize);
  const std::vector<Problem> problems = CheckImage(image);
  for (const Problem& problem : problems) err << path << ": " << problem.mText << '\n';
  if (problems.size() == kMaxProblems) err << path << ": the search ended here\n";
  return problems.empty();
}

// A difference that no check of the format covers: the device finds it after the transfer.
void WarnOfRegionCrc(const std::string& path, const std::vector<Region>& regions, std::ostream& err) {
  for (const Region& region : regions) {
    const std::uint32_t computed = ComputeRegionCrc(region);
    if (computed != region.mRegionCrc)
      err << fmt::format(
          "{}: warning: region {}: mRegionCrc is 0x{:08X}, the data have 0x{:08X}; a device that"
          " compares them refuses the region\n",
          path, region.mRegionIndex, region.mRegionCrc, computed);
  }
}

int Create(Arguments arguments, std::ostream& out, std::ostream&) {
  if (arguments.empty()) throw UsageError("create: OUT is missing");
  const std::string& path = arguments.front();
  if (path.starts_with("--")) throw UsageError("create: OUT comes before the options");
  ImagePlan plan;
  for (arguments = arguments.subspan(1); !arguments.empty(); arguments = arguments.subspan(2)) {
    const std::string& option = arguments.front();
    if (option != "--region" && option != "--section")
      throw UsageError(fmt::format("create: \"{}\" is neither --region nor --section", option));
    if (arguments.size() < 2) throw UsageError(fmt::format("create: {} needs a value", option));
    try {
      option == "--region" ? plan.AddRegion(arguments[1]) : plan.AddSection(arguments[1]);
    } catch (const std::invalid_argument& error) {
      throw UsageError(fmt::format("create: {} {}: {}", option, arguments[1], error.what()));
    }
  }
  const std::vector<std::uint8_t> image = plan.Build();
  Tools::ReplaceFile(path, image);
  out << fmt::format("{}: {} bytes\n", path, image.size());
  return kStatusDone;
}

void PrintRegion(const Region& region, std::ostream& out) {
  const auto& attributes = region.mAttributes;
  out << fmt::format(
      "region {} at offset {}, {} bytes\n"
      "  hardware id 0x{:08X}  attributes {:02X} {:02X} {:02X} {:02X}  parameter 0x{:08X}\n"
      "  data size {}  region CRC 0x{:08X} ({})\n",
      region.mRegionIndex, region.mFileOffset, region.mRegionSize, region.mHardwareId, attributes[0],
      attributes[1], attributes[2], attributes[3], region.mParameter, region.mDataSize, region.mRegionCrc,
      ComputeRegionCrc(region) == region.mRegionCrc ? "of the data" : "not of the data");
  if (region.mSections.empty()) return;
  out << fmt::format("  {:>7}  {:>10}  {:>10}  {:>10}  {:>10}\n", "section", "address", "size", "CRC",
                     "offset");
  for (std::size_t index = 0; index < region.mSections.size(); ++index) {
    const Section& section = region.mSections[index];
    out << fmt::format("  {:>7}  0x{:08X}  {:>10}  0x{:08X}  {:>10}\n", index, section.mAddress,
                       section.mData.size(), section.mCrc, section.mDataOffset);
  }
}

const std::string& OnlyPath(Arguments arguments, std::string_view command) {
  if (arguments.size() != 1) throw UsageError(fmt::format("{}: takes one IMAGE", command));
  return arguments.front();
}

int Info(Arguments arguments, std::ostream& out, std::ostream& err) {
  const std::string& path = OnlyPath(arguments, "info");
  std::vector<std::uint8_t> image;
  if (!LoadValid(path, image, err)) return kStatusInvalid;
  const std::vector<Region> regions = ReadImage(image);
  out << fmt::format("{}: {} bytes, {} region{}\n", path, image.size(), regions.size(),
                     regions.size() == 1 ? "" : "s");
  for (const Region& region : regions) PrintRegion(region, out);
  return kStatusDone;
}

int Verify(Arguments arguments, std::ostream& out, std::ostream& err) {
  const std::string& path = OnlyPath(arguments, "verify");
  std::vector<std::uint8_t> image;
  if (!LoadValid(path, image, err)) return kStatusInvalid;
  const std::vector<Region> regions = ReadImage(image);
  WarnOfRegionCrc(path, regions, err);
  out << fmt::format("{}: valid\n", path);
  return kStatusDone;
}

int Flash(Arguments arguments, std::ostream& out, std::ostream& err) {
  std::optional<std::uint32_t> hardwareId;
  if (arguments.size() == 4 && arguments[2] == "--hardware-id") {
    try {
      hardwareId = Tools::ParseNumber(arguments[3], "--hardware-id");
    } catch (const std::invalid_argument& error) {
      throw UsageError(fmt::format("flash: {}", error.what()));
    }
  } else if (arguments.size() != 2) {
    throw UsageError("flash: takes IMAGE, OUT and at most --hardware-id ID behind them");
  }
  std::vector<std::uint8_t> image;
  if (!LoadValid(arguments[0], image, err)) return kStatusInvalid;
  const FlashMemory flash = FlashOf(ReadImage(image), hardwareId);
  const std::string text = flash.ToIntelHex();
  Tools::ReplaceFile(arguments[1], {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  out << fmt::format("{}: {} bytes of flash\n", arguments[1], flash.WrittenBytes());
  return kStatusDone;
}

struct Command {
  std::string_view mName;
  int (*mRun)(Arguments arguments, std::ostream& out, std::ostream& err);
};

constexpr std::array<Command, 4> kCommands{
    {{"create", Create}, {"info", Info}, {"verify", Verify}, {"flash", Flash}}};

int Dispatch(Arguments arguments, std::ostream& out, std::ostream& err) {
  if (arguments.empty()) throw UsageError("a command is missing");
  const std::string& name = arguments.front();
  if (name == "--help") {
    out << kHelp;
    return kStatusDone;
  }
  for (const Command& command : kCommands) {
    if (name == command.mName) return command.mRun(arguments.subspan(1), out, err);
  }
  throw UsageError(fmt::format("\"{}\" is no command", name));
}

}  // namespace

int RunCommand(std::span<const std::string> arguments, std::ostream& out, std::ostream& err) {
  try {
    return Dispatch(arguments, out, err);
  } catch (const UsageError& error) {
    err << "vbin: " << error.what() << "\nvbin --help tells how it is used\n";
  } catch (const std::bad_alloc&) {
    err << "vbin: not enough memory\n";
  } catch (const std::exception& error) {
    err << "vbin: " << error.what() << '\n';
  }
  return kStatusTrouble;
}

}  // namespace Vbin
