#include "Tools/Vbin/ImagePlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>

#include "Tools/Support/FileAccess.h"
#include "Tools/Support/Number.h"

namespace Vbin {
namespace {

constexpr std::string_view kAutomatic = "auto";
constexpr std::uint8_t kOnes = 0xFF;

struct Entry {
  std::string_view mKey;
  std::string_view mValue;
};

// The key=value pairs between commas; lastKey takes all that follows it.
std::vector<Entry> SplitEntries(std::string_view text, std::string_view lastKey) {
  std::vector<Entry> entries;
  while (true) {
    const std::size_t equals = text.find('=');
    const std::size_t comma = text.find(',');
    if (equals == std::string_view::npos || comma < equals)
      throw std::invalid_argument(fmt::format("\"{}\" is not KEY=VALUE", text.substr(0, comma)));
    const std::string_view key = text.substr(0, equals);
    if (std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.mKey == key; }))
      throw std::invalid_argument(fmt::format("\"{}\" is given twice", key));
    const std::size_t end = key == lastKey ? text.size() : std::min(comma, text.size());
    entries.push_back({key, text.substr(equals + 1, end - equals - 1)});
    if (end == text.size()) return entries;
    text.remove_prefix(end + 1);
  }
}

[[noreturn]] void RefuseKey(std::string_view key, std::string_view known) {
  throw std::invalid_argument(fmt::format("\"{}\" is none of {}", key, known));
}

// Empty for "auto".
std::optional<std::uint32_t> ParseOrAutomatic(const Entry& entry) {
  if (entry.mValue == kAutomatic) return {};
  return Tools::ParseNumber(entry.mValue, entry.mKey);
}

std::array<std::uint8_t, 4> LittleEndian(std::uint32_t value) {
  std::array<std::uint8_t, 4> bytes{};
  for (std::size_t index = 0; index < bytes.size(); ++index)
    bytes[index] = static_cast<std::uint8_t>(value >> (8 * index));
  return bytes;
}

Fill ParsePattern(std::string_view name) {
  Fill fill;
  if (name == "count") {
    fill.mPattern = Fill::Pattern::kCount;
  } else if (name == "random") {
    fill.mPattern = Fill::Pattern::kRandom;
  } else if (name == "ones") {
    fill.mByte = kOnes;
  } else if (name.starts_with("0x")) {
    fill.mByte = static_cast<std::uint8_t>(Tools::ParseNumber(name, "fill", 0xFF));
  } else if (name != "zero") {
    throw std::invalid_argument(fmt::format("fill: \"{}\" is none of zero, ones, 0xNN, count, random", name));
  }
  return fill;
}

Fill ParseFill(std::string_view text) {
  const std::size_t first = text.find(':');
  if (first == std::string_view::npos)
    throw std::invalid_argument(fmt::format("fill: \"{}\" is not PATTERN:SIZE[:SEED]", text));
  Fill fill = ParsePattern(text.substr(0, first));
  const std::string_view rest = text.substr(first + 1);
  const std::size_t second = rest.find(':');
  fill.mSize = Tools::ParseNumber(rest.substr(0, second), "fill size");
  if (second != std::string_view::npos) fill.mSeed = Tools::ParseNumber(rest.substr(second + 1), "fill seed");
  return fill;
}

}  // namespace

std::vector<std::uint8_t> MakeFill(const Fill& fill) {
  std::vector<std::uint8_t> bytes(fill.mSize, fill.mByte);
  if (fill.mPattern == Fill::Pattern::kCount) {
    std::uint8_t next = 0;
    std::generate(bytes.begin(), bytes.end(), [&] { return next++; });
  } else if (fill.mPattern == Fill::Pattern::kRandom) {
    // A 64-bit linear congruential generator: the same bytes on every machine, for ever.
    constexpr std::uint64_t kMultiplier = 6364136223846793005;
    constexpr std::uint64_t kIncrement = 1442695040888963407;
    std::uint64_t state = fill.mSeed;
    std::generate(bytes.begin(), bytes.end(), [&] {
      state = state * kMultiplier + kIncrement;
      return static_cast<std::uint8_t>(state >> 56);
    });
  }
  return bytes;
}

void ImagePlan::AddRegion(std::string_view text) {
  RegionDescription region;
  std::optional<std::uint32_t> index;
  bool hardwareGiven = false;
  for (const Entry& entry : SplitEntries(text, {})) {
    if (entry.mKey == "hw") {
      region.mHardwareId = Tools::ParseNumber(entry.mValue, entry.mKey);
      hardwareGiven = true;
    } else if (entry.mKey == "index") {
      index = ParseOrAutomatic(entry);
    } else if (entry.mKey == "attributes") {
      region.mAttributes = LittleEndian(Tools::ParseNumber(entry.mValue, entry.mKey));
    } else if (entry.mKey == "parameter") {
      region.mParameter = Tools::ParseNumber(entry.mValue, entry.mKey);
    } else if (entry.mKey == "data-size") {
      region.mDataSize = ParseOrAutomatic(entry);
    } else if (entry.mKey == "crc") {
      region.mRegionCrc = ParseOrAutomatic(entry);
    } else {
      RefuseKey(entry.mKey, "hw, index, attributes, parameter, data-size, crc");
    }
  }
  if (!hardwareGiven) throw std::invalid_argument("hw=ID is missing");
  if (index && *index != mRegions.size())
    throw std::invalid_argument(
        fmt::format("index {} is not the region's position {}", *index, mRegions.size()));
  mRegions.push_back({std::move(region), {}});
}

void ImagePlan::AddSection(std::string_view text) {
  if (mRegions.empty()) throw std::invalid_argument("a section needs a region before it");
  SectionPlan section;
  std::optional<std::uint32_t> address;
  std::string_view source;
  for (const Entry& entry : SplitEntries(text, "file")) {
    if (entry.mKey == "address") {
      address = Tools::ParseNumber(entry.mValue, entry.mKey);
      continue;
    }
    if (entry.mKey != "file" && entry.mKey != "fill") RefuseKey(entry.mKey, "address, file, fill");
    if (!source.empty()) throw std::invalid_argument("file and fill exclude each other");
    source = entry.mKey;
    if (entry.mKey == "fill") section.mFill = ParseFill(entry.mValue);
    if (entry.mKey == "file") section.mFile = entry.mValue;
  }
  if (!address) throw std::invalid_argument("address=ADDRESS is missing");
  if (source.empty()) throw std::invalid_argument("file=PATH or fill=PATTERN:SIZE is missing");
  if (source == "file" && section.mFile.empty()) throw std::invalid_argument("file= names no file");
  section.mAddress = *address;
  mRegions.back().mSections.push_back(std::move(section));
}

void ImagePlan::CheckTotalSize() const {
  std::uint64_t total = 0;
  for (const RegionPlan& region : mRegions) {
    total += kRegionHeaderSize + std::uint64_t{kSectionEntrySize} * region.mSections.size();
    for (const SectionPlan& section : region.mSections) {
      const std::uint64_t size = section.mFile.empty() ? section.mFill.mSize : Tools::FileSize(section.mFile);
      if (total + size > kMaxImageSize)
        throw std::length_error(fmt::format("the image would have more than {} bytes", kMaxImageSize));
      if (section.mAddress + size > kAddressSpace)
        throw std::length_error(
            fmt::format("{} bytes at address 0x{:08X} pass the last address", size, section.mAddress));
      total += size;
    }
  }
}

SectionDescription ImagePlan::Load(const SectionPlan& plan) {
  if (plan.mFile.empty()) return {plan.mAddress, MakeFill(plan.mFill)};
  return {plan.mAddress, Tools::ReadFile(plan.mFile, kMaxImageSize)};
}

std::vector<std::uint8_t> ImagePlan::Build() const {
  if (mRegions.empty()) throw std::invalid_argument("an image needs at least one region");
  CheckTotalSize();
  ImageDescription image;
  for (const RegionPlan& plan : mRegions) {
    RegionDescription& region = image.mRegions.emplace_back(plan.mDescription);
    for (const SectionPlan& section : plan.mSections) region.mSections.push_back(Load(section));
  }
  return BuildImage(image);
}

}  // namespace Vbin
