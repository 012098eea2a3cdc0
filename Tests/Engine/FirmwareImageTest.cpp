#include "Engine/FirmwareImage.h"

#include <gtest/gtest.h>

#include <functional>

#include "Tests/Support/Engine/TestBytes.h"

namespace {

using namespace EngineTest;

constexpr std::uint32_t kHardware = 0x01020304;

// Offsets of fields in the first region of an image.
constexpr std::size_t kReserved = 4;
constexpr std::size_t kHardwareId = 36;
constexpr std::size_t kRegionIndex = 40;
constexpr std::size_t kRegionCrc = 56;
constexpr std::size_t kRegionSize = 60;
constexpr std::size_t kSectionCount = 64;
constexpr std::size_t kFirstEntry = 68;
constexpr std::size_t kEntryAddress = kFirstEntry;
constexpr std::size_t kEntrySize = kFirstEntry + 4;
constexpr std::size_t kEntryCrc = kFirstEntry + 8;
constexpr std::size_t kEntryOffset = kFirstEntry + 12;

// Two regions, the second with two sections, one of them empty.
Bytes GoodImage() {
  return MakeImage(
      {MakeRegion(kHardware, {{0x1000, MakeData(100, 1)}}),
       MakeRegion(kHardware, {{0x2000, MakeData(33, 2)}, {0x3000, {}}, {0x4000, MakeData(7, 3)}})});
}

std::size_t FirstRegionSize(const Bytes& image) {
  return GetWord(image, kRegionSize);
}

TEST(FirmwareImage, ImagesInOrderPassBothChecks) {
  const Bytes images[] = {{},
                          MakeImage({MakeRegion(kHardware, {})}),
                          MakeImage({MakeRegion(kHardware, {{0, {0x55}}})}),
                          GoodImage()};
  for (const Bytes& image : images) {
    EXPECT_TRUE(ValidateImageStructure(ToArray(image))) << image.size();
    EXPECT_TRUE(ValidateImageChecksums(ToArray(image))) << image.size();
  }
}

TEST(FirmwareImage, FaultyStructureIsRefusedByBothChecks) {
  const struct {
    const char* name;
    std::function<void(Bytes&)> damage;
    ImageFault fault;
    std::uint32_t region;
    std::uint32_t section;
  } cases[] = {
      {"wrong magic", [](Bytes& b) { b[0] ^= 1; }, ImageFault::kWrongMagic, 0, 0},
      {"wrong magic of the second region", [](Bytes& b) { b[FirstRegionSize(b) + 3] = 'N'; },
       ImageFault::kWrongMagic, 1, 0},
      {"size one byte more than the file",
       [](Bytes& b) { PutWord(b, kRegionSize, static_cast<std::uint32_t>(b.size() + 1)); },
       ImageFault::kRegionPastEndOfFile, 0, 0},
      {"size at the 32-bit limit", [](Bytes& b) { PutWord(b, kRegionSize, 0xFFFFFFFF); },
       ImageFault::kRegionPastEndOfFile, 0, 0},
      {"size 0 would never advance", [](Bytes& b) { PutWord(b, kRegionSize, 0); },
       ImageFault::kTablePastRegion, 0, 0},
      {"size below the header", [](Bytes& b) { PutWord(b, kRegionSize, 67); }, ImageFault::kTablePastRegion,
       0, 0},
      {"size below the table", [](Bytes& b) { PutWord(b, kRegionSize, 68 + 15); },
       ImageFault::kTablePastRegion, 0, 0},
      {"table past the region", [](Bytes& b) { PutWord(b, kSectionCount, 8); }, ImageFault::kTablePastRegion,
       0, 0},
      {"table size that wraps to a small one", [](Bytes& b) { PutWord(b, kSectionCount, 0x10000001); },
       ImageFault::kTablePastRegion, 0, 0},
      {"section count at the 32-bit limit", [](Bytes& b) { PutWord(b, kSectionCount, 0xFFFFFFFF); },
       ImageFault::kTablePastRegion, 0, 0},
      {"index that is not the position", [](Bytes& b) { PutWord(b, kRegionIndex, 1); },
       ImageFault::kIndexIsNotPosition, 0, 0},
      {"two regions with index 0", [](Bytes& b) { PutWord(b, FirstRegionSize(b) + kRegionIndex, 0); },
       ImageFault::kIndexIsNotPosition, 1, 0},
      {"section one byte past its region", [](Bytes& b) { PutWord(b, kEntrySize, 101); },
       ImageFault::kSectionPastRegion, 0, 0},
      {"section offset past its region", [](Bytes& b) { PutWord(b, kEntryOffset, 85); },
       ImageFault::kSectionPastRegion, 0, 0},
      {"section end that wraps to a small one",
       [](Bytes& b) { PutWord(b, kEntryOffset, 0xFFFFFFF0), PutWord(b, kEntrySize, 0x20); },
       ImageFault::kSectionPastRegion, 0, 0},
      {"empty section that starts past its region",
       [](Bytes& b) { PutWord(b, FirstRegionSize(b) + kEntryOffset + 16, 0xFFFFFFFF); },
       ImageFault::kSectionPastRegion, 1, 1},
      {"section past the last address", [](Bytes& b) { PutWord(b, kEntryAddress, 0xFFFFFFFF - 98); },
       ImageFault::kSectionPastAddressSpace, 0, 0},
      {"bytes behind the last region", [](Bytes& b) { b.push_back(0); }, ImageFault::kHeaderCutOff, 2, 0},
      {"a bare magic behind the last region",
       [](Bytes& b) {
         b.insert(b.end(), {'!', 'V', 'b', 'n'});
       },
       ImageFault::kHeaderCutOff, 2, 0},
      {"a zeroed header behind the last region", [](Bytes& b) { b.resize(b.size() + 68); },
       ImageFault::kWrongMagic, 2, 0},
  };
  for (const auto& test : cases) {
    Bytes image = GoodImage();
    test.damage(image);
    const ImageCheck check = CheckImageStructure(ToArray(image));
    EXPECT_EQ(check.mFault, test.fault) << test.name;
    EXPECT_EQ(check.mRegion, test.region) << test.name;
    EXPECT_EQ(check.mSection, test.section) << test.name;
    EXPECT_FALSE(ValidateImageStructure(ToArray(image))) << test.name;
    EXPECT_FALSE(ValidateImageChecksums(ToArray(image))) << test.name;
  }
}

TEST(FirmwareImage, SectionUpToTheLastAddressPasses) {
  EXPECT_TRUE(
      ValidateImageStructure(ToArray(MakeImage({MakeRegion(kHardware, {{0xFFFFFFFF - 9, MakeData(10)}})}))));
}

// One region whose sections all name the same data.
Bytes SharingImage(std::uint32_t sections, std::size_t dataBytes) {
  Bytes image = MakeImage({MakeRegion(kHardware, {{0, MakeData(dataBytes)}})});
  Bytes entry(image.begin() + kFirstEntry, image.begin() + kEntryOffset + 4);
  const auto size = static_cast<std::uint32_t>(image.size() + entry.size() * (sections - 1));
  PutWord(image, kRegionSize, size);
  PutWord(image, kSectionCount, sections);
  PutWord(image, kEntryOffset, static_cast<std::uint32_t>(size - dataBytes));
  entry.assign(image.begin() + kFirstEntry, image.begin() + kEntryOffset + 4);
  for (std::uint32_t i = 1; i < sections; ++i)
    image.insert(image.begin() + kFirstEntry, entry.begin(), entry.end());
  return image;
}

TEST(FirmwareImage, SectionsMayShareBytesButNotSoOftenThatACheckNeverEnds) {
  EXPECT_TRUE(ValidateImageChecksums(ToArray(SharingImage(16, 50'000))));
  const ImageCheck check = CheckImageStructure(ToArray(SharingImage(20, 50'000)));
  EXPECT_EQ(check.mFault, ImageFault::kSectionsShareTooMuch);
  EXPECT_EQ(check.mSection, 16u);
  EXPECT_FALSE(ValidateImageChecksums(ToArray(SharingImage(20, 50'000))));
}

// Only a cut between the two regions leaves a whole image.
TEST(FirmwareImage, TruncatedAtAnyByteIsRefused) {
  const Bytes image = GoodImage();
  const std::size_t boundary = FirstRegionSize(image);
  for (std::size_t size = 1; size < image.size(); ++size) {
    const auto cut = ToArray(Bytes(image.begin(), image.begin() + size));
    ASSERT_EQ(ValidateImageStructure(cut), size == boundary) << size;
    ASSERT_EQ(ValidateImageChecksums(cut), size == boundary) << size;
  }
}

TEST(FirmwareImage, FlippedBitsAreFoundWhereAChecksumCoversThem) {
  const Bytes image = GoodImage();
  const std::size_t data = 68 + 16;
  const struct {
    const char* name;
    std::size_t first;
    std::size_t size;
    bool passes;
  } cases[] = {{"reserved bytes", kReserved, 32, true},   {"hardware id", kHardwareId, 4, true},
               {"region checksum", kRegionCrc, 4, true},  {"magic", 0, 4, false},
               {"section checksum", kEntryCrc, 4, false}, {"section data", data, 100, false}};
  for (const auto& test : cases) {
    for (std::size_t bit = 0; bit < test.size * 8; ++bit) {
      Bytes flipped = image;
      flipped[test.first + bit / 8] ^= static_cast<unsigned char>(1 << bit % 8);
      ASSERT_EQ(ValidateImageChecksums(ToArray(flipped)), test.passes) << test.name << " bit " << bit;
    }
  }
}

TEST(FirmwareImage, WrongChecksumNamesItsSection) {
  Bytes image = GoodImage();
  image.back() ^= 0x80;
  EXPECT_TRUE(ValidateImageStructure(ToArray(image)));
  EXPECT_EQ(DescribeImageCheck(CheckImageChecksums(ToArray(image))),
            "region 1, section 2: the section's data does not match its checksum");
}

TEST(FirmwareImage, ViewPointsIntoTheFile) {
  const auto image = ToArray(GoodImage());
  TF::Array<VarnokFileRegion> regions;
  AppendImageRegions(image, regions);

  ASSERT_EQ(regions.GetCount(), 2);
  EXPECT_EQ(reinterpret_cast<const unsigned char*>(regions[0].mHeader), image.GetBuffer());
  EXPECT_EQ(regions[1].mHeader->mHardwareId, kHardware);
  EXPECT_EQ(regions[1].mHeader->mRegionIndex, 1u);
  EXPECT_EQ(regions[1].mHeader->mParameter, 0x50607080u);
  EXPECT_EQ(regions[1].mHeader->mDataSize, 40u);
  ASSERT_EQ(regions[1].mSections.GetCount(), 3);
  EXPECT_EQ(regions[1].mSections[2].mEntry->mAddress, 0x4000u);
  EXPECT_EQ(regions[1].mSections[2].mEntry->mSize, 7u);
  EXPECT_EQ(regions[1].mSections[2].mData, image.GetBuffer() + image.GetCount() - 7);
}

// Regions of odd sizes put later headers at odd addresses.
TEST(FirmwareImage, RegionsAtAnyAlignmentAreRead) {
  std::vector<Vbin::RegionDescription> regions;
  for (std::size_t size = 1; size <= 9; ++size)
    regions.push_back(MakeRegion(kHardware, {{0x10, MakeData(size)}}));
  EXPECT_TRUE(ValidateImageChecksums(ToArray(MakeImage(regions))));
}

TEST(FirmwareImage, ViewOfADamagedImageEndsAtTheDamage) {
  Bytes image = GoodImage();
  PutWord(image, FirstRegionSize(image) + kSectionCount, 0xFFFFFFFF);
  const auto array = ToArray(image);
  TF::Array<VarnokFileRegion> regions;
  AppendImageRegions(array, regions);
  EXPECT_EQ(regions.GetCount(), 1);
}

}  // namespace
