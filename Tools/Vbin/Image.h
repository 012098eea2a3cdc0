#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Firmware image files: making them from a description, checking foreign ones, and reading
// valid ones. Everything here is a pure function of its arguments, callable from any thread.
namespace Vbin {

inline constexpr std::array<std::uint8_t, 4> kRegionMagic{0x21, 0x56, 0x62, 0x6E};
inline constexpr std::uint64_t kAddressSpace = std::uint64_t{1} << 32;  // Bytes that addresses reach.
inline constexpr std::uint32_t kRegionHeaderSize = 68;                  // Bytes.
inline constexpr std::uint32_t kSectionEntrySize = 16;                  // Bytes.
inline constexpr std::uint64_t kMaxImageSize = 0x7FFFFFFF;  // Bytes; what BuildImage makes at most.

// Byte offsets in a region header.
inline constexpr std::size_t kHardwareIdOffset = 36;
inline constexpr std::size_t kRegionIndexOffset = 40;
inline constexpr std::size_t kAttributesOffset = 44;
inline constexpr std::size_t kParameterOffset = 48;
inline constexpr std::size_t kDataSizeOffset = 52;
inline constexpr std::size_t kRegionCrcOffset = 56;
inline constexpr std::size_t kRegionSizeOffset = 60;
inline constexpr std::size_t kSectionCountOffset = 64;

// Byte offsets in an entry of the section table, which follows the header directly.
inline constexpr std::size_t kSectionAddressOffset = 0;
inline constexpr std::size_t kSectionSizeOffset = 4;
inline constexpr std::size_t kSectionCrcOffset = 8;
inline constexpr std::size_t kSectionDataOffset = 12;

// Standard CRC-32. Continues from the result for the bytes before, 0 at the start.
std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t before = 0);

struct SectionDescription {
  std::uint32_t mAddress = 0;
  std::vector<std::uint8_t> mData;
};

// What is left empty is computed: mRegionIndex is the position in the image, mDataSize the
// sum of the sections, mRegionCrc the CRC-32 over all data bytes in table order.
struct RegionDescription {
  std::uint32_t mHardwareId = 0;
  std::array<std::uint8_t, 4> mAttributes{};
  std::uint32_t mParameter = 0;
  std::vector<SectionDescription> mSections;
  std::optional<std::uint32_t> mRegionIndex;
  std::optional<std::uint32_t> mDataSize;
  std::optional<std::uint32_t> mRegionCrc;
};

struct ImageDescription {
  std::vector<RegionDescription> mRegions;
};

// Header, section table, section data in table order without gaps, region behind region.
// Throws std::length_error when the image would be larger than kMaxImageSize.
std::vector<std::uint8_t> BuildImage(const ImageDescription& description);

enum class Check {
  kEmpty,            // The file has no bytes.
  kMagic,            // The file does not begin with a region.
  kHeaderTruncated,  // Fewer bytes are left than a region header has.
  kRegionSizeZero,
  kRegionTooSmall,   // mRegionSize below the size of the header.
  kRegionBeyondEnd,  // mRegionSize beyond the end of the file.
  kTableBeyondRegion,
  kRegionIndex,       // mRegionIndex is not the position of the region.
  kDataBeyondRegion,  // mDataOffset plus mSize beyond mRegionSize.
  kAddressRange,      // mAddress plus mSize beyond the last 32-bit address.
  kSharedData,        // The sections so far are longer than kMaxSharing times mRegionSize.
  kCrc,               // mCrc differs from the data.
  kTrailingBytes,     // Bytes behind the last region that begin no further one.
};

// The name of a check as the messages spell it.
std::string_view CheckName(Check check);

struct Problem {
  Check mCheck;
  std::size_t mRegion = 0;              // Position in the file, from 0.
  std::optional<std::size_t> mSection;  // Position in the section table, from 0.
  std::string mText;                    // Whole sentence with region, section and the numbers.
};

inline constexpr std::uint64_t kMaxSharing = 16;
inline constexpr std::size_t kMaxProblems = 100;  // CheckImage stops looking after so many.

// Everything that is wrong with an image, in file order; empty for a valid one. A region
// whose extent is unusable ends the walk.
std::vector<Problem> CheckImage(std::span<const std::uint8_t> image);

// Views of a valid image; they point into its bytes, which must stay in place.
struct Section {
  std::uint32_t mAddress = 0;
  std::uint32_t mCrc = 0;
  std::uint32_t mDataOffset = 0;
  std::span<const std::uint8_t> mData;
};

struct Region {
  std::size_t mFileOffset = 0;
  std::uint32_t mHardwareId = 0;
  std::uint32_t mRegionIndex = 0;
  std::array<std::uint8_t, 4> mAttributes{};
  std::uint32_t mParameter = 0;
  std::uint32_t mDataSize = 0;
  std::uint32_t mRegionCrc = 0;
  std::uint32_t mRegionSize = 0;
  std::vector<Section> mSections;
};

// The regions of an image in file order. Throws std::invalid_argument with the first
// problem's text when CheckImage finds one.
std::vector<Region> ReadImage(std::span<const std::uint8_t> image);

// The CRC-32 that the device computes over a region after it was written.
std::uint32_t ComputeRegionCrc(const Region& region);

}  // namespace Vbin
