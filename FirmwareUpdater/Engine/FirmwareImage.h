#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "TFFramework/Utilities/Storage/Array.h"

// The firmware image file: regions one behind the other, each a header, a section table and
// the sections' data. Everything here reads the loaded file in place and copies no data.

// A 32-bit number as it lies in the file, at any alignment.
struct LittleEndian32 {
  unsigned char mBytes[4];

  constexpr operator std::uint32_t() const {
    return mBytes[0] | std::uint32_t{mBytes[1]} << 8 | std::uint32_t{mBytes[2]} << 16 |
           std::uint32_t{mBytes[3]} << 24;
  }
};

struct VarnokFileRegionHeader {
  unsigned char mMagic[4];  // "!Vbn"
  unsigned char mReserved[32];
  LittleEndian32 mHardwareId;
  LittleEndian32 mRegionIndex;  // Position of the region in the image, from 0.
  unsigned char mAttributes[4];
  LittleEndian32 mParameter;
  LittleEndian32 mDataSize;    // Bytes that count for the progress.
  LittleEndian32 mRegionCrc;   // As the device computes it over the written region.
  LittleEndian32 mRegionSize;  // Bytes from this header to the next one.
  LittleEndian32 mSectionCount;
};

struct VarnokFileSectionEntry {
  LittleEndian32 mAddress;     // In the device.
  LittleEndian32 mSize;        // Bytes of data.
  LittleEndian32 mCrc;         // CRC-32 of the data.
  LittleEndian32 mDataOffset;  // From the first byte of the region header.
};

static_assert(alignof(VarnokFileRegionHeader) == 1 && sizeof(VarnokFileRegionHeader) == 68);
static_assert(offsetof(VarnokFileRegionHeader, mHardwareId) == 36);
static_assert(offsetof(VarnokFileRegionHeader, mAttributes) == 44);
static_assert(offsetof(VarnokFileRegionHeader, mDataSize) == 52);
static_assert(offsetof(VarnokFileRegionHeader, mSectionCount) == 64);
static_assert(alignof(VarnokFileSectionEntry) == 1 && sizeof(VarnokFileSectionEntry) == 16);

// Pointers into the loaded file, which must stay in place.
struct VarnokFileSection {
  const VarnokFileSectionEntry* mEntry = nullptr;
  const unsigned char* mData = nullptr;
};

struct VarnokFileRegion {
  const VarnokFileRegionHeader* mHeader = nullptr;
  TF::Array<VarnokFileSection> mSections;  // In table order.
};

enum class ImageFault {
  kNone,
  kHeaderCutOff,
  kWrongMagic,
  kRegionPastEndOfFile,
  kTablePastRegion,
  kIndexIsNotPosition,
  kSectionPastRegion,
  kSectionPastAddressSpace,
  kSectionsShareTooMuch,  // All sections up to this one are longer than 16 times the region.
  kWrongSectionChecksum,
};

// The first fault of an image, with the positions of its region and, where it is one of a
// section, of its section.
struct ImageCheck {
  ImageFault mFault = ImageFault::kNone;
  std::uint32_t mRegion = 0;
  std::uint32_t mSection = 0;
};

// Whether all regions, tables and sections lie where they may lie. An empty image has no fault.
ImageCheck CheckImageStructure(const TF::Array<unsigned char>& image);
// The structure, and the data of every section against its checksum.
ImageCheck CheckImageChecksums(const TF::Array<unsigned char>& image);
std::string DescribeImageCheck(const ImageCheck& check);

bool ValidateImageStructure(const TF::Array<unsigned char>& image);
bool ValidateImageChecksums(const TF::Array<unsigned char>& image);

// Appends a view of each region, in file order, up to the first faulty one.
void AppendImageRegions(const TF::Array<unsigned char>& image, TF::Array<VarnokFileRegion>& regions);
