#include "Tools/Vbin/Image.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace Vbin {
namespace {

constexpr std::uint32_t kCrcPolynomial = 0xEDB88320;  // Reflected.

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t index = 0; index < table.size(); ++index) {
    std::uint32_t value = index;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? (value >> 1) ^ kCrcPolynomial : value >> 1;
    table[index] = value;
  }
  return table;
}

constexpr auto kCrcTable = MakeCrcTable();

void Put(std::vector<std::uint8_t>& image, std::size_t offset, std::uint32_t value) {
  for (int byte = 0; byte < 4; ++byte) image[offset + byte] = static_cast<std::uint8_t>(value >> (8 * byte));
}

std::uint32_t Get(std::span<const std::uint8_t> bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (int byte = 0; byte < 4; ++byte)
    value |= static_cast<std::uint32_t>(bytes[offset + byte]) << (8 * byte);
  return value;
}

std::uint64_t RegionSizeOf(const RegionDescription& region) {
  std::uint64_t size = kRegionHeaderSize + std::uint64_t{kSectionEntrySize} * region.mSections.size();
  for (const SectionDescription& section : region.mSections) size += section.mData.size();
  return size;
}

std::uint32_t RegionCrcOf(const RegionDescription& region) {
  std::uint32_t crc = 0;
  for (const SectionDescription& section : region.mSections) crc = Crc32(section.mData, crc);
  return crc;
}

std::uint32_t DataSizeOf(const RegionDescription& region) {
  std::uint32_t size = 0;
  for (const SectionDescription& section : region.mSections) {
    size += static_cast<std::uint32_t>(section.mData.size());
  }
  return size;
}

void PutHeader(std::vector<std::uint8_t>& image, const RegionDescription& region, std::size_t start,
               std::uint32_t index) {
  std::copy(kRegionMagic.begin(), kRegionMagic.end(), image.begin() + static_cast<std::ptrdiff_t>(start));
  std::copy(region.mAttributes.begin(), region.mAttributes.end(),
            image.begin() + static_cast<std::ptrdiff_t>(start + kAttributesOffset));
  Put(image, start + kHardwareIdOffset, region.mHardwareId);
  Put(image, start + kRegionIndexOffset, region.mRegionIndex.value_or(index));
  Put(image, start + kParameterOffset, region.mParameter);
  Put(image, start + kDataSizeOffset, region.mDataSize ? *region.mDataSize : DataSizeOf(region));
  Put(image, start + kRegionCrcOffset, region.mRegionCrc ? *region.mRegionCrc : RegionCrcOf(region));
  Put(image, start + kRegionSizeOffset, static_cast<std::uint32_t>(RegionSizeOf(region)));
  Put(image, start + kSectionCountOffset, static_cast<std::uint32_t>(region.mSections.size()));
}

void AppendRegion(std::vector<std::uint8_t>& image, const RegionDescription& region, std::uint32_t index) {
  const std::size_t start = image.size();
  image.resize(start + kRegionHeaderSize + kSectionEntrySize * region.mSections.size());
  PutHeader(image, region, start, index);
  std::size_t entry = start + kRegionHeaderSize;
  for (const SectionDescription& section : region.mSections) {
    Put(image, entry + kSectionAddressOffset, section.mAddress);
    Put(image, entry + kSectionSizeOffset, static_cast<std::uint32_t>(section.mData.size()));
    Put(image, entry + kSectionCrcOffset, Crc32(section.mData));
    Put(image, entry + kSectionDataOffset, static_cast<std::uint32_t>(image.size() - start));
    image.insert(image.end(), section.mData.begin(), section.mData.end());
    entry += kSectionEntrySize;
  }
}

// Walks an image and notes what is wrong. Sizes are taken as 64-bit numbers, so that no sum of
// two fields of the file wraps around.
class Checker {
 public:
  explicit Checker(std::span<const std::uint8_t> image) : mImage(image) {}

  std::vector<Problem> Run() {
    if (mImage.empty()) Note(Check::kEmpty, "the file is empty");
    while (mStart < mImage.size() && !IsFull() && CheckExtent()) {
      CheckIndex();
      CheckSections();
      mStart += Get(Rest(), kRegionSizeOffset);
      ++mRegion;
    }
    return std::move(mProblems);
  }

 private:
  std::span<const std::uint8_t> Rest() const { return mImage.subspan(mStart); }
  bool IsFull() const { return mProblems.size() >= kMaxProblems; }

  void Note(Check check, std::string_view text, std::optional<std::size_t> section = {}) {
    if (IsFull()) return;
    const std::string place = check == Check::kEmpty ? std::string()
                              : section ? fmt::format("region {}, section {}: ", mRegion, *section)
                                        : fmt::format("region {}: ", mRegion);
    mProblems.push_back({check, mRegion, section, fmt::format("{}{}: {}", place, CheckName(check), text)});
  }

  bool CheckMagic() {
    const auto rest = Rest();
    if (rest.size() >= kRegionMagic.size() &&
        std::equal(kRegionMagic.begin(), kRegionMagic.end(), rest.begin()))
      return true;
    if (mRegion == 0) {
      Note(Check::kMagic, "the file does not begin with 21 56 62 6E (\"!Vbn\")");
    } else {
      Note(Check::kTrailingBytes,
           fmt::format("{} bytes at offset {} behind the last region begin no further one", rest.size(),
                       mStart));
    }
    return false;
  }

  // Whether header and extent can be used.
  bool CheckExtent() {
    if (!CheckMagic()) return false;
    const std::size_t left = Rest().size();
    if (left < kRegionHeaderSize) {
      Note(Check::kHeaderTruncated, fmt::format("{} bytes are left at offset {}, a region header has {}",
                                                left, mStart, kRegionHeaderSize));
      return false;
    }
    const std::uint32_t size = Get(Rest(), kRegionSizeOffset);
    if (size == 0) {
      Note(Check::kRegionSizeZero, "mRegionSize is 0");
    } else if (size < kRegionHeaderSize) {
      Note(Check::kRegionTooSmall,
           fmt::format("mRegionSize is {}, the header alone has {} bytes", size, kRegionHeaderSize));
    } else if (size > left) {
      Note(Check::kRegionBeyondEnd,
           fmt::format("mRegionSize is {}, {} bytes are left in the file", size, left));
    } else {
      return true;
    }
    return false;
  }

  void CheckIndex() {
    const std::uint32_t index = Get(Rest(), kRegionIndexOffset);
    if (index != mRegion)
      Note(Check::kRegionIndex,
           fmt::format("mRegionIndex is {}, the region's position is {}", index, mRegion));
  }

  void CheckSections() {
    const auto region = Rest().first(Get(Rest(), kRegionSizeOffset));
    const std::uint64_t count = Get(region, kSectionCountOffset);
    const std::uint64_t table = kRegionHeaderSize + count * kSectionEntrySize;
    if (table > region.size()) {
      Note(Check::kTableBeyondRegion,
           fmt::format("header and table of {} sections need {} bytes, mRegionSize is {}", count, table,
                       region.size()));
      return;
    }
    mNamedBytes = 0;
    for (std::size_t section = 0; section < count && !IsFull(); ++section) {
      if (!CheckSection(region, section)) return;
    }
  }

  // False if looking at the further sections would take too long.
  bool CheckSection(std::span<const std::uint8_t> region, std::size_t section) {
    const auto entry = region.subspan(kRegionHeaderSize + section * kSectionEntrySize, kSectionEntrySize);
    const std::uint64_t offset = Get(entry, kSectionDataOffset);
    const std::uint64_t size = Get(entry, kSectionSizeOffset);
    if (offset + size > region.size()) {
      Note(Check::kDataBeyondRegion,
           fmt::format("mDataOffset {} plus mSize {} is beyond mRegionSize {}", offset, size, region.size()),
           section);
      return true;
    }
    mNamedBytes += size;
    if (mNamedBytes > kMaxSharing * region.size()) {
      Note(Check::kSharedData,
           fmt::format("the sections up to this one name {} bytes, more than {} times mRegionSize {}",
                       mNamedBytes, kMaxSharing, region.size()),
           section);
      return false;
    }
    const std::uint64_t address = Get(entry, kSectionAddressOffset);
    if (address + size > kAddressSpace) {
      Note(Check::kAddressRange,
           fmt::format("mAddress 0x{:08X} plus mSize {} is beyond the last 32-bit address", address, size),
           section);
    }
    const std::uint32_t stored = Get(entry, kSectionCrcOffset);
    const std::uint32_t computed = Crc32(region.subspan(offset, size));
    if (stored != computed)
      Note(Check::kCrc, fmt::format("mCrc is 0x{:08X}, the data have 0x{:08X}", stored, computed), section);
    return true;
  }

  std::span<const std::uint8_t> mImage;
  std::size_t mStart = 0;         // Of the region that is being looked at.
  std::size_t mRegion = 0;        // Its position.
  std::uint64_t mNamedBytes = 0;  // Of its sections so far.
  std::vector<Problem> mProblems;
};

Region ReadRegion(std::span<const std::uint8_t> image, std::size_t start) {
  const auto header = image.subspan(start);
  Region region;
  region.mFileOffset = start;
  region.mHardwareId = Get(header, kHardwareIdOffset);
  region.mRegionIndex = Get(header, kRegionIndexOffset);
  std::copy_n(header.begin() + kAttributesOffset, region.mAttributes.size(), region.mAttributes.begin());
  region.mParameter = Get(header, kParameterOffset);
  region.mDataSize = Get(header, kDataSizeOffset);
  region.mRegionCrc = Get(header, kRegionCrcOffset);
  region.mRegionSize = Get(header, kRegionSizeOffset);
  const std::uint32_t count = Get(header, kSectionCountOffset);
  region.mSections.reserve(count);
  for (std::size_t index = 0; index < count; ++index) {
    const auto entry = header.subspan(kRegionHeaderSize + index * kSectionEntrySize, kSectionEntrySize);
    const std::uint32_t offset = Get(entry, kSectionDataOffset);
    region.mSections.push_back({Get(entry, kSectionAddressOffset), Get(entry, kSectionCrcOffset), offset,
                                header.subspan(offset, Get(entry, kSectionSizeOffset))});
  }
  return region;
}

}  // namespace

std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t before) {
  std::uint32_t crc = ~before;
  for (const std::uint8_t byte : bytes) crc = kCrcTable[(crc ^ byte) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

std::vector<std::uint8_t> BuildImage(const ImageDescription& description) {
  std::uint64_t size = 0;
  for (const RegionDescription& region : description.mRegions) size += RegionSizeOf(region);
  if (size > kMaxImageSize)
    throw std::length_error(
        fmt::format("the image would have {} bytes, at most {} are made", size, kMaxImageSize));
  std::vector<std::uint8_t> image;
  image.reserve(size);
  std::uint32_t index = 0;
  for (const RegionDescription& region : description.mRegions) AppendRegion(image, region, index++);
  return image;
}

std::string_view CheckName(Check check) {
  switch (check) {
    case Check::kEmpty:
      return "empty file";
    case Check::kMagic:
      return "magic";
    case Check::kHeaderTruncated:
      return "header truncated";
    case Check::kRegionSizeZero:
      return "region size zero";
    case Check::kRegionTooSmall:
      return "region size too small";
    case Check::kRegionBeyondEnd:
      return "region beyond the end";
    case Check::kTableBeyondRegion:
      return "section table beyond the region";
    case Check::kRegionIndex:
      return "region index";
    case Check::kDataBeyondRegion:
      return "section data beyond the region";
    case Check::kAddressRange:
      return "section beyond the last address";
    case Check::kSharedData:
      return "section data shared too often";
    case Check::kCrc:
      return "section CRC";
    case Check::kTrailingBytes:
      return "trailing bytes";
  }
  return "unknown check";
}

std::vector<Problem> CheckImage(std::span<const std::uint8_t> image) {
  return Checker(image).Run();
}

std::vector<Region> ReadImage(std::span<const std::uint8_t> image) {
  const std::vector<Problem> problems = CheckImage(image);
  if (!problems.empty()) throw std::invalid_argument(problems.front().mText);
  std::vector<Region> regions;
  for (std::size_t start = 0; start < image.size(); start += regions.back().mRegionSize) {
    regions.push_back(ReadRegion(image, start));
  }
  return regions;
}

std::uint32_t ComputeRegionCrc(const Region& region) {
  std::uint32_t crc = 0;
  for (const Section& section : region.mSections) crc = Crc32(section.mData, crc);
  return crc;
}

}  // namespace Vbin
