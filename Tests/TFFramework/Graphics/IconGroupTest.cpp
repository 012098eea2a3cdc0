#include "TFFramework/Utilities/Graphics/IconGroup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Tests/Support/PngWriter.h"

namespace TF {
namespace {

using TestSupport::Bytes;

// One picture of a container; a side of 256 is written as 0.
struct IconPicture {
  std::uint32_t mSide;
  std::uint16_t mHotSpotX = 0;
  std::uint16_t mHotSpotY = 0;
};

constexpr std::uint16_t kIcon = 1;
constexpr std::uint16_t kCursor = 2;
constexpr std::size_t kHeaderSize = 6;
constexpr std::size_t kEntrySize = 16;

void Append(Bytes& bytes, std::uint32_t value, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
}

// Every pixel of a picture is its side.
Bytes Container(std::uint16_t kind, const std::vector<IconPicture>& pictures) {
  Bytes bytes, pngs;
  Append(bytes, 0, 2);
  Append(bytes, kind, 2);
  Append(bytes, static_cast<std::uint32_t>(pictures.size()), 2);
  const std::size_t behind = kHeaderSize + kEntrySize * pictures.size();
  for (const IconPicture& picture : pictures) {
    const std::uint32_t side = picture.mSide;
    const Bytes png =
        TestSupport::WriteArgbPng(side, side, std::vector(std::size_t{side} * side, 0xFF000000U | side));
    Append(bytes, side, 1);
    Append(bytes, side, 1);
    Append(bytes, 0, 2);
    Append(bytes, picture.mHotSpotX, 2);
    Append(bytes, picture.mHotSpotY, 2);
    Append(bytes, static_cast<std::uint32_t>(png.size()), 4);
    Append(bytes, static_cast<std::uint32_t>(behind + pngs.size()), 4);
    pngs.insert(pngs.end(), png.begin(), png.end());
  }
  bytes.insert(bytes.end(), pngs.begin(), pngs.end());
  return bytes;
}

TEST(LIconGroup, ReadsSizesHotSpotsAndPixels) {
  const Bytes bytes = Container(kCursor, {{32, 3, 4}, {256, 255, 0}});
  const auto group = LIconGroup::Read(bytes);
  ASSERT_TRUE(group);
  EXPECT_EQ(group->GetKind(), LIconGroup::Kind::kCursor);
  ASSERT_EQ(group->GetEntries().size(), 2U);
  EXPECT_EQ(group->GetEntries()[0].mHotSpot, (PointT<std::int32_t>{3, 4}));
  EXPECT_EQ(group->GetEntries()[1].mHotSpot, (PointT<std::int32_t>{255, 0}));
  EXPECT_EQ(group->GetEntries()[1].mSize, (SizeT<std::int32_t>{256, 256}));
  const auto picture = LIconGroup::Decode(group->GetEntries()[1]);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->mWidth, 256U);
  EXPECT_EQ(picture->mPixels.back(), 0xFF000100U);
}

TEST(LIconGroup, TakesTheWordsOfAnIconForNoHotSpot) {
  const Bytes bytes = Container(kIcon, {{16, 1, 32}});
  const auto group = LIconGroup::Read(bytes);
  ASSERT_TRUE(group);
  EXPECT_EQ(group->GetKind(), LIconGroup::Kind::kIcon);
  EXPECT_EQ(group->GetEntries()[0].mHotSpot, (PointT<std::int32_t>{0, 0}));
}

TEST(LIconGroup, FindsTheSmallestPictureThatReachesTheWantedSize) {
  const Bytes bytes = Container(kIcon, {{32}, {16}, {64}, {24}});
  const auto group = LIconGroup::Read(bytes);
  ASSERT_TRUE(group);
  constexpr struct {
    std::int32_t mWanted, mFound;
  } kCases[] = {{-1, 16}, {0, 16}, {16, 16}, {17, 24}, {24, 24}, {25, 32}, {64, 64}, {65, 64}, {1000, 64}};
  for (const auto& test : kCases) {
    EXPECT_EQ(group->FindEntry(test.mWanted).mSize.mWidth, test.mFound) << test.mWanted;
  }
}

TEST(LIconGroup, RefusesAContainerCutAnywhere) {
  const Bytes bytes = Container(kIcon, {{16}, {20}});
  ASSERT_TRUE(LIconGroup::Read(bytes));
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_FALSE(LIconGroup::Read(cut)) << length;
  }
}

TEST(LIconGroup, RefusesWhatItsHeadDoesNotDescribe) {
  const Bytes good = Container(kCursor, {{16, 15, 15}, {20}});
  const std::size_t second = kHeaderSize + kEntrySize;
  const struct {
    const char* mName;
    std::size_t mOffset;
    std::uint32_t mValue;
    std::size_t mLength;
  } kCases[] = {
      {"a first word other than 0", 0, 1, 2},
      {"no kind", 2, 0, 2},
      {"an unknown kind", 2, 3, 2},
      {"no pictures", 4, 0, 2},
      {"more pictures than are allowed", 4, 65, 2},
      {"as many pictures as a word holds", 4, 0xFFFF, 2},
      {"one picture more than there is", 4, 3, 2},
      {"a width that the picture has not", kHeaderSize, 17, 1},
      {"a height that the picture has not", kHeaderSize + 1, 0, 1},
      {"a hot spot right of the picture", kHeaderSize + 4, 16, 2},
      {"a hot spot below the picture", kHeaderSize + 6, 0xFFFF, 2},
      {"an empty picture", kHeaderSize + 8, 0, 4},
      {"a picture shorter than a header", kHeaderSize + 8, 23, 4},
      {"a picture that ends behind the file", second + 8, 0x00FFFFFF, 4},
      {"a size that with its place overflows 32 bits", second + 8, 0xFFFFFFFF, 4},
      {"a place in the header", kHeaderSize + 12, 0, 4},
      {"a place among the entries", kHeaderSize + 12, static_cast<std::uint32_t>(second), 4},
      {"a place at the end of the file", second + 12, static_cast<std::uint32_t>(good.size()), 4},
      {"a place behind the file", second + 12, 0xFFFFFFFF, 4},
      {"a picture that is no PNG", kHeaderSize + 2 * kEntrySize, 0, 1},
  };
  for (const auto& test : kCases) {
    Bytes bad = good;
    Bytes value;
    Append(value, test.mValue, test.mLength);
    std::copy(value.begin(), value.end(), bad.begin() + static_cast<std::ptrdiff_t>(test.mOffset));
    ASSERT_NE(bad, good) << test.mName;
    EXPECT_FALSE(LIconGroup::Read(bad)) << test.mName;
  }
}

TEST(LIconGroup, SurvivesEveryDamagedByte) {
  const Bytes good = Container(kCursor, {{16, 1, 1}, {20, 2, 2}});
  for (std::size_t i = 0; i < good.size(); ++i) {
    for (const int flip : {0x01, 0x80, 0xFF}) {
      Bytes bad = good;
      bad[i] = static_cast<unsigned char>(bad[i] ^ flip);
      const auto group = LIconGroup::Read(bad);
      if (!group) continue;
      for (const LIconGroup::Entry& entry : group->GetEntries()) {
        const auto picture = LIconGroup::Decode(entry);
        if (!picture) continue;
        EXPECT_EQ(picture->mWidth, static_cast<std::uint32_t>(entry.mSize.mWidth)) << i;
        EXPECT_EQ(picture->mHeight, static_cast<std::uint32_t>(entry.mSize.mHeight)) << i;
      }
    }
  }
}

}  // namespace
}  // namespace TF
