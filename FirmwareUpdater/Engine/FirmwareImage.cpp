#include "Engine/FirmwareImage.h"

#include <fmt/format.h>

#include <cstring>
#include <string_view>

#include "Engine/Crc32.h"

namespace {

constexpr unsigned char kMagic[] = {'!', 'V', 'b', 'n'};
constexpr std::uint64_t kHeaderBytes = sizeof(VarnokFileRegionHeader);
constexpr std::uint64_t kEntryBytes = sizeof(VarnokFileSectionEntry);
constexpr std::uint64_t kAddressSpaceBytes = std::uint64_t{1} << 32;
// Sections may share bytes of the file. Without a limit a small file could name its bytes so
// often that a check of it never ends.
constexpr std::uint64_t kMaxSharing = 16;

const VarnokFileRegionHeader& HeaderAt(const unsigned char* region) {
  return *reinterpret_cast<const VarnokFileRegionHeader*>(region);
}

const VarnokFileSectionEntry& EntryAt(const unsigned char* region, std::uint32_t section) {
  return *reinterpret_cast<const VarnokFileSectionEntry*>(region + kHeaderBytes + section * kEntryBytes);
}

// All sums of the file's 32-bit numbers are taken in 64 bits, so none can overflow.

ImageFault FindHeaderFault(const unsigned char* region, std::uint64_t bytesLeft, std::uint32_t position) {
  if (bytesLeft < kHeaderBytes) return ImageFault::kHeaderCutOff;
  const VarnokFileRegionHeader& header = HeaderAt(region);
  if (std::memcmp(header.mMagic, kMagic, sizeof kMagic) != 0) return ImageFault::kWrongMagic;
  if (header.mRegionSize > bytesLeft) return ImageFault::kRegionPastEndOfFile;
  const std::uint64_t tableEnd = kHeaderBytes + header.mSectionCount * kEntryBytes;
  if (header.mRegionSize < tableEnd) return ImageFault::kTablePastRegion;
  if (header.mRegionIndex != position) return ImageFault::kIndexIsNotPosition;
  return ImageFault::kNone;
}

ImageFault FindSectionFault(const VarnokFileRegionHeader& header, const VarnokFileSectionEntry& entry) {
  const std::uint64_t size = entry.mSize;
  if (entry.mDataOffset + size > header.mRegionSize) return ImageFault::kSectionPastRegion;
  if (entry.mAddress + size > kAddressSpaceBytes) return ImageFault::kSectionPastAddressSpace;
  return ImageFault::kNone;
}

ImageFault FindChecksumFault(const unsigned char* region, const VarnokFileSectionEntry& entry) {
  return Crc32(region + entry.mDataOffset, entry.mSize) == entry.mCrc ? ImageFault::kNone
                                                                      : ImageFault::kWrongSectionChecksum;
}

// Calls checkSection(region, entry) for each section. A fault of the header has section 0.
template <class CheckSection>
ImageCheck CheckRegion(const unsigned char* region, std::uint64_t bytesLeft, std::uint32_t position,
                       CheckSection checkSection) {
  const ImageFault headerFault = FindHeaderFault(region, bytesLeft, position);
  if (headerFault != ImageFault::kNone) return {headerFault, position, 0};
  const VarnokFileRegionHeader& header = HeaderAt(region);
  const std::uint64_t maxNamedBytes = kMaxSharing * header.mRegionSize;
  std::uint64_t namedBytes = 0;
  for (std::uint32_t section = 0; section < header.mSectionCount; ++section) {
    const VarnokFileSectionEntry& entry = EntryAt(region, section);
    ImageFault fault = FindSectionFault(header, entry);
    namedBytes += entry.mSize;
    if (fault == ImageFault::kNone && namedBytes > maxNamedBytes) fault = ImageFault::kSectionsShareTooMuch;
    if (fault == ImageFault::kNone) fault = checkSection(region, entry);
    if (fault != ImageFault::kNone) return {fault, position, section};
  }
  return {};
}

// Calls onRegion(region) for each region without a fault and stops at the first one with one.
template <class CheckSection, class OnRegion>
ImageCheck WalkImage(const TF::Array<unsigned char>& image, CheckSection checkSection, OnRegion onRegion) {
  const unsigned char* region = image.GetBuffer();
  auto bytesLeft = static_cast<std::uint64_t>(image.GetCount());
  for (std::uint32_t position = 0; bytesLeft > 0; ++position) {
    const ImageCheck check = CheckRegion(region, bytesLeft, position, checkSection);
    if (check.mFault != ImageFault::kNone) return check;
    onRegion(region);
    const std::uint32_t regionSize = HeaderAt(region).mRegionSize;
    region += regionSize;
    bytesLeft -= regionSize;
  }
  return {};
}

constexpr auto kIgnoreRegion = [](const unsigned char*) {};
constexpr auto kStructureOnly = [](const unsigned char*, const VarnokFileSectionEntry&) {
  return ImageFault::kNone;
};

VarnokFileRegion ViewOf(const unsigned char* start) {
  VarnokFileRegion region;
  region.mHeader = &HeaderAt(start);
  const std::uint32_t sectionCount = region.mHeader->mSectionCount;
  for (std::uint32_t section = 0; section < sectionCount; ++section) {
    const VarnokFileSectionEntry& entry = EntryAt(start, section);
    region.mSections.Add({&entry, start + entry.mDataOffset});
  }
  return region;
}

bool IsFaultOfSection(ImageFault fault) {
  return fault == ImageFault::kSectionPastRegion || fault == ImageFault::kSectionPastAddressSpace ||
         fault == ImageFault::kSectionsShareTooMuch || fault == ImageFault::kWrongSectionChecksum;
}

std::string_view NameOf(ImageFault fault) {
  switch (fault) {
    case ImageFault::kNone:
      return "no fault";
    case ImageFault::kHeaderCutOff:
      return "the file ends inside the region header";
    case ImageFault::kWrongMagic:
      return "no region starts here";
    case ImageFault::kRegionPastEndOfFile:
      return "the region reaches past the end of the file";
    case ImageFault::kTablePastRegion:
      return "header and section table do not fit into the region's size";
    case ImageFault::kIndexIsNotPosition:
      return "the region's index is not its position in the file";
    case ImageFault::kSectionPastRegion:
      return "the section's data reaches past the end of the region";
    case ImageFault::kSectionPastAddressSpace:
      return "the section reaches past the last 32-bit address";
    case ImageFault::kSectionsShareTooMuch:
      return "the sections name the same bytes of the file too often";
    case ImageFault::kWrongSectionChecksum:
      return "the section's data does not match its checksum";
  }
  return "unknown fault";
}

}  // namespace

ImageCheck CheckImageStructure(const TF::Array<unsigned char>& image) {
  return WalkImage(image, kStructureOnly, kIgnoreRegion);
}

ImageCheck CheckImageChecksums(const TF::Array<unsigned char>& image) {
  return WalkImage(image, FindChecksumFault, kIgnoreRegion);
}

std::string DescribeImageCheck(const ImageCheck& check) {
  if (!IsFaultOfSection(check.mFault))
    return fmt::format("region {}: {}", check.mRegion, NameOf(check.mFault));
  return fmt::format("region {}, section {}: {}", check.mRegion, check.mSection, NameOf(check.mFault));
}

bool ValidateImageStructure(const TF::Array<unsigned char>& image) {
  return CheckImageStructure(image).mFault == ImageFault::kNone;
}

bool ValidateImageChecksums(const TF::Array<unsigned char>& image) {
  return CheckImageChecksums(image).mFault == ImageFault::kNone;
}

void AppendImageRegions(const TF::Array<unsigned char>& image, TF::Array<VarnokFileRegion>& regions) {
  WalkImage(image, kStructureOnly, [&regions](const unsigned char* start) { regions.Add(ViewOf(start)); });
}
