#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/Vbin/Image.h"

namespace Vbin {

// Bytes made by rule instead of read from a file.
struct Fill {
  enum class Pattern : std::uint8_t {
    kByte,    // "0xNN", "zero", "ones": one value throughout
    kCount,   // "count": 0, 1, 2 ... 255, 0 ...
    kRandom,  // "random": noise that the seed decides
  };
  Pattern mPattern = Pattern::kByte;
  std::uint8_t mByte = 0;
  std::uint32_t mSize = 0;  // Bytes.
  std::uint32_t mSeed = 1;
};

std::vector<std::uint8_t> MakeFill(const Fill& fill);

// An image as the command line describes it, before any data is read or made. All operations
// throw std::invalid_argument with a sentence that quotes what is wrong.
class ImagePlan {
 public:
  // "hw=0x..,index=auto,attributes=..,parameter=..,data-size=auto,crc=auto"; hw is a must.
  void AddRegion(std::string_view text);

  // "address=0x..,file=PATH" or "address=0x..,fill=PATTERN:SIZE[:SEED]"; belongs to the last
  // region. file takes the rest of the text, commas included.
  void AddSection(std::string_view text);

  // Reads the files and makes the image. Sizes are added up before memory is taken; too much of
  // it is std::length_error, a file that cannot be read std::runtime_error.
  std::vector<std::uint8_t> Build() const;

 private:
  struct SectionPlan {
    std::uint32_t mAddress = 0;
    std::string mFile;  // Empty: mFill counts.
    Fill mFill;
  };
  struct RegionPlan {
    RegionDescription mDescription;  // Without sections.
    std::vector<SectionPlan> mSections;
  };

  void CheckTotalSize() const;
  static SectionDescription Load(const SectionPlan& plan);

  std::vector<RegionPlan> mRegions;
};

}  // namespace Vbin
