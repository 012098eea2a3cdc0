#include <algorithm>
#include <cstdlib>

#include "Engine/Crc32.h"
#include "Engine/FirmwareImage.h"

// Whatever the bytes, the checks and the view stay inside them and agree with each other.

namespace {

using Image = TF::Array<unsigned char>;

void Require(bool condition) {
  if (!condition) std::abort();
}

bool LiesInside(const Image& image, const unsigned char* start, std::uint64_t size) {
  const unsigned char* begin = image.GetBuffer();
  const unsigned char* end = begin + image.GetCount();
  return start >= begin && start <= end && size <= static_cast<std::uint64_t>(end - start);
}

void CheckRegion(const Image& image, const VarnokFileRegion& region, int position) {
  const auto* start = reinterpret_cast<const unsigned char*>(region.mHeader);
  Require(LiesInside(image, start, region.mHeader->mRegionSize));
  Require(region.mHeader->mRegionIndex == static_cast<std::uint32_t>(position));
  Require(region.mHeader->mSectionCount == static_cast<std::uint32_t>(region.mSections.GetCount()));
  for (const VarnokFileSection& section : region.mSections) {
    Require(section.mData == start + section.mEntry->mDataOffset);
    Require(LiesInside(image, section.mData, section.mEntry->mSize));
    Require(std::uint64_t{section.mEntry->mAddress} + section.mEntry->mSize <= std::uint64_t{1} << 32);
  }
}

bool HasRightChecksums(const TF::Array<VarnokFileRegion>& regions) {
  return std::all_of(regions.begin(), regions.end(), [](const VarnokFileRegion& region) {
    return std::all_of(region.mSections.begin(), region.mSections.end(),
                       [](const VarnokFileSection& section) {
                         return Crc32(section.mData, section.mEntry->mSize) == section.mEntry->mCrc;
                       });
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Image image;
  image.SetCount(static_cast<int>(size));
  std::copy(data, data + size, image.begin());

  const bool isStructured = ValidateImageStructure(image);
  TF::Array<VarnokFileRegion> regions;
  AppendImageRegions(image, regions);

  std::uint64_t covered = 0;
  for (int position = 0; position < regions.GetCount(); ++position) {
    CheckRegion(image, regions[position], position);
    covered += regions[position].mHeader->mRegionSize;
  }
  Require((covered == size) == isStructured);
  Require(ValidateImageChecksums(image) == (isStructured && HasRightChecksums(regions)));
  return 0;
}
