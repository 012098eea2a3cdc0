#include "Tools/Vbin/Image.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "Tests/Tools/ComputerSide.h"

using namespace Vbin;
using ToolsTest::Bytes;
using ToolsTest::Filled;
using ToolsTest::TwoRegionImage;

namespace {

void Put(Bytes& image, std::size_t offset, std::uint32_t value) {
  for (int byte = 0; byte < 4; ++byte)
    image.at(offset + byte) = static_cast<std::uint8_t>(value >> (8 * byte));
}

constexpr std::size_t kFirstTable = kRegionHeaderSize;
constexpr std::size_t kFirstRegionSize = kRegionHeaderSize + kSectionEntrySize + 1921;
constexpr std::size_t kSecondTable = kFirstRegionSize + kRegionHeaderSize;
constexpr std::size_t kSecondRegionSize = kRegionHeaderSize + 2 * kSectionEntrySize + 240 + 4000;

}  // namespace

TEST(VbinImageTest, ChecksumIsTheStandardOneInAnyPieces) {
  const Bytes digits{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  for (std::size_t cut = 0; cut <= digits.size(); ++cut) {
    const std::span<const std::uint8_t> bytes(digits);
    EXPECT_EQ(Crc32(bytes.subspan(cut), Crc32(bytes.first(cut))), 0xCBF43926);
  }
  EXPECT_EQ(Crc32({}), 0U);
}

TEST(VbinImageTest, LaysOutAnImageByteForByte) {
  RegionDescription region;
  region.mHardwareId = 0x04030201;
  region.mAttributes = {0xA0, 0xA1, 0xA2, 0xA3};
  region.mParameter = 0x14131211;
  region.mSections = {{0x24232221, {'1', '2', '3', '4', '5'}}, {0x34333231, {'6', '7', '8', '9'}}};
  Bytes expected{0x21, 0x56, 0x62, 0x6E};
  expected.resize(36, 0);
  const Bytes rest{1,    2,    3,    4,    0,    0,    0,    0,     // Hardware id, index.
                   0xA0, 0xA1, 0xA2, 0xA3, 0x11, 0x12, 0x13, 0x14,  // Attributes, parameter.
                   9,    0,    0,    0,    0x26, 0x39, 0xF4, 0xCB,  // Data size, region CRC.
                   109,  0,    0,    0,    2,    0,    0,    0,     // Region size, sections.
                   0x21, 0x22, 0x23, 0x24, 5,    0,    0,    0,     //
                   0x1B, 0xEF, 0xF5, 0xCB, 100,  0,    0,    0,     //
                   0x31, 0x32, 0x33, 0x34, 4,    0,    0,    0,     //
                   0x0D, 0x43, 0x3E, 0xCD, 105,  0,    0,    0,     //
                   '1',  '2',  '3',  '4',  '5',  '6',  '7',  '8',  '9'};
  expected.insert(expected.end(), rest.begin(), rest.end());
  const Bytes image = BuildImage({{region}});
  ASSERT_EQ(image.size(), expected.size());
  // The sections' own checksums come from Crc32, which has its own test.
  Put(expected, kFirstTable + kSectionCrcOffset, Crc32(region.mSections[0].mData));
  Put(expected, kFirstTable + kSectionEntrySize + kSectionCrcOffset, Crc32(region.mSections[1].mData));
  EXPECT_EQ(image, expected);
}

TEST(VbinImageTest, ReadsBackWhatWasDescribed) {
  const ImageDescription description = TwoRegionImage();
  const Bytes image = BuildImage(description);
  EXPECT_TRUE(CheckImage(image).empty());
  const std::vector<Region> regions = ReadImage(image);
  ASSERT_EQ(regions.size(), 2U);
  EXPECT_EQ(regions[0].mFileOffset, 0U);
  EXPECT_EQ(regions[1].mFileOffset, kFirstRegionSize);
  EXPECT_EQ(regions[1].mRegionSize, kSecondRegionSize);
  for (std::size_t index = 0; index < regions.size(); ++index) {
    const Region& region = regions[index];
    const RegionDescription& expected = description.mRegions[index];
    EXPECT_EQ(region.mRegionIndex, index);
    EXPECT_EQ(region.mHardwareId, expected.mHardwareId);
    EXPECT_EQ(region.mAttributes, expected.mAttributes);
    EXPECT_EQ(region.mParameter, expected.mParameter);
    EXPECT_EQ(region.mRegionCrc, ComputeRegionCrc(region));
    ASSERT_EQ(region.mSections.size(), expected.mSections.size());
    std::size_t size = 0;
    for (std::size_t section = 0; section < region.mSections.size(); ++section) {
      const auto& data = region.mSections[section].mData;
      EXPECT_EQ(region.mSections[section].mAddress, expected.mSections[section].mAddress);
      EXPECT_EQ(Bytes(data.begin(), data.end()), expected.mSections[section].mData);
      size += data.size();
    }
    EXPECT_EQ(region.mDataSize, size);
  }
}

TEST(VbinImageTest, TakesGivenHeaderValuesInsteadOfComputedOnes) {
  RegionDescription region;
  region.mRegionIndex = 7;
  region.mDataSize = 0;
  region.mRegionCrc = 0x12345678;
  region.mSections = {{0, Filled(3, 1)}};
  Bytes image = BuildImage({{region}});
  ASSERT_EQ(CheckImage(image).size(), 1U);
  Put(image, kRegionIndexOffset, 0);
  const Region read = ReadImage(image).at(0);
  EXPECT_EQ(read.mDataSize, 0U);
  EXPECT_EQ(read.mRegionCrc, 0x12345678U);
}

TEST(VbinImageTest, NamesCheckRegionAndSectionOfEveryFault) {
  const Bytes valid = BuildImage(TwoRegionImage());
  const struct {
    const char* mWhat;
    std::size_t mOffset;
    std::uint32_t mValue;
    Check mCheck;
    std::size_t mRegion;
    std::optional<std::size_t> mSection;
  } cases[] = {
      {"first magic", 0, 0x6E625620, Check::kMagic, 0, {}},
      {"second magic", kFirstRegionSize, 0, Check::kTrailingBytes, 1, {}},
      {"size 0", kRegionSizeOffset, 0, Check::kRegionSizeZero, 0, {}},
      {"size below the header", kRegionSizeOffset, kRegionHeaderSize - 1, Check::kRegionTooSmall, 0, {}},
      {"one byte beyond the end",
       kFirstRegionSize + kRegionSizeOffset,
       kSecondRegionSize + 1,
       Check::kRegionBeyondEnd,
       1,
       {}},
      {"far beyond the end", kRegionSizeOffset, 0xFFFFFFFF, Check::kRegionBeyondEnd, 0, {}},
      {"long table", kFirstRegionSize + kSectionCountOffset, 0xFFFFFFFF, Check::kTableBeyondRegion, 1, {}},
      {"table one entry too long",
       kFirstRegionSize + kSectionCountOffset,
       2 + 4240 / 16 + 1,
       Check::kTableBeyondRegion,
       1,
       {}},
      {"index", kFirstRegionSize + kRegionIndexOffset, 0, Check::kRegionIndex, 1, {}},
      {"data one byte beyond", kSecondTable + kSectionEntrySize + kSectionSizeOffset, 4001,
       Check::kDataBeyondRegion, 1, 1},
      {"offset beyond", kSecondTable + kSectionDataOffset, kSecondRegionSize, Check::kDataBeyondRegion, 1, 0},
      {"size that would wrap", kFirstTable + kSectionSizeOffset, 0xFFFFFFFF, Check::kDataBeyondRegion, 0, 0},
      {"offset that would wrap", kFirstTable + kSectionDataOffset, 0xFFFFFFFF, Check::kDataBeyondRegion, 0,
       0},
      {"beyond the last address", kFirstTable + kSectionAddressOffset, 0xFFFFFFFF, Check::kAddressRange, 0,
       0},
      {"section CRC", kSecondTable + kSectionEntrySize + kSectionCrcOffset, 1, Check::kCrc, 1, 1},
      {"data", kFirstRegionSize - 4, 0, Check::kCrc, 0, 0},
  };
  for (const auto& item : cases) {
    Bytes image = valid;
    Put(image, item.mOffset, item.mValue);
    const std::vector<Problem> problems = CheckImage(image);
    ASSERT_EQ(problems.size(), 1U) << item.mWhat;
    EXPECT_EQ(problems[0].mCheck, item.mCheck) << item.mWhat << ": " << problems[0].mText;
    EXPECT_EQ(problems[0].mRegion, item.mRegion) << item.mWhat;
    EXPECT_EQ(problems[0].mSection, item.mSection) << item.mWhat;
    const std::string place = item.mSection
                                  ? fmt::format("region {}, section {}: ", item.mRegion, *item.mSection)
                                  : fmt::format("region {}: ", item.mRegion);
    EXPECT_TRUE(problems[0].mText.starts_with(place + std::string(CheckName(item.mCheck))))
        << problems[0].mText;
    EXPECT_THROW(ReadImage(image), std::invalid_argument);
  }
}

TEST(VbinImageTest, TellsAllFaultsOfAnImageUpToALimit) {
  Bytes image = BuildImage(TwoRegionImage());
  Put(image, kFirstTable + kSectionCrcOffset, 1);
  Put(image, kFirstRegionSize + kRegionIndexOffset, 9);
  Put(image, kSecondTable + kSectionSizeOffset, 0x80000000);
  image.push_back(0x21);
  std::vector<Check> checks;
  for (const Problem& problem : CheckImage(image)) checks.push_back(problem.mCheck);
  EXPECT_EQ(checks, (std::vector<Check>{Check::kCrc, Check::kRegionIndex, Check::kDataBeyondRegion,
                                        Check::kTrailingBytes}));
  RegionDescription many;
  many.mSections.resize(3 * kMaxProblems, {0, {1}});
  Bytes bad = BuildImage({{many}});
  std::fill(bad.end() - 3 * kMaxProblems, bad.end(), 2);
  EXPECT_EQ(CheckImage(bad).size(), kMaxProblems);
}

TEST(VbinImageTest, StopsAtSectionsThatNameTheSameBytesWithoutEnd) {
  RegionDescription region;
  region.mSections = {{0, Bytes(50'000, 1)}};
  region.mSections.resize(20, {0, {}});
  Bytes image = BuildImage({{region}});
  const Bytes first(image.begin() + kRegionHeaderSize + 4, image.begin() + kRegionHeaderSize + 16);
  for (std::size_t i = 1; i < 20; ++i) {
    std::copy(first.begin(), first.end(), image.begin() + kRegionHeaderSize + i * kSectionEntrySize + 4);
  }
  const std::vector<Problem> problems = CheckImage(image);
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0].mCheck, Check::kSharedData);
  EXPECT_EQ(problems[0].mSection, 16U);
}

TEST(VbinImageTest, FreeBytesOfTheFormatAreFree) {
  Bytes image = BuildImage(TwoRegionImage());
  std::fill(image.begin() + 4, image.begin() + 36, 0xA5);
  Put(image, kRegionCrcOffset, 1);
  Put(image, kDataSizeOffset, 0xFFFFFFFF);
  EXPECT_TRUE(CheckImage(image).empty());
  EXPECT_TRUE(CheckImage(BuildImage({{RegionDescription()}})).empty());
}

TEST(VbinImageTest, ATruncatedImageIsValidOnlyBetweenRegions) {
  const Bytes image = BuildImage(TwoRegionImage());
  for (std::size_t size = 0; size < image.size(); ++size) {
    // A copy of its own, so that a read behind the end is found.
    const Bytes cut(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size));
    const std::vector<Problem> problems = CheckImage(cut);
    ASSERT_EQ(problems.empty(), size == kFirstRegionSize) << size;
    if (problems.empty()) continue;
    const bool inSecond = size > kFirstRegionSize;
    const std::size_t left = inSecond ? size - kFirstRegionSize : size;
    const Check expected = size == 0                  ? Check::kEmpty
                           : left < 4 && inSecond     ? Check::kTrailingBytes
                           : left < 4                 ? Check::kMagic
                           : left < kRegionHeaderSize ? Check::kHeaderTruncated
                                                      : Check::kRegionBeyondEnd;
    ASSERT_EQ(problems.back().mCheck, expected) << size;
  }
}

TEST(VbinImageTest, SurvivesEveryHostileNumber) {
  const Bytes image = BuildImage(TwoRegionImage());
  const std::uint32_t values[] = {0, 1, 67, 68, 0x7FFFFFFF, 0x80000000, 0xFFFFFFEF, 0xFFFFFFFF};
  for (const std::size_t start : {std::size_t{0}, kFirstRegionSize}) {
    const std::size_t end = start + kRegionHeaderSize + kSectionEntrySize;
    for (std::size_t field = start; field < end; field += 4) {
      for (const std::uint32_t value : values) {
        for (const bool manySections : {false, true}) {
          Bytes hostile = image;
          if (manySections) Put(hostile, start + kSectionCountOffset, 0x0FFFFFFF);
          Put(hostile, field, value);
          const std::vector<Problem> problems = CheckImage(hostile);
          EXPECT_LE(problems.size(), kMaxProblems);
          if (problems.empty()) {
            EXPECT_LE(ReadImage(hostile).size(), 2U);
          }
        }
      }
    }
  }
}
