#include "Platform/PngDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "Tests/Support/PngWriter.h"

namespace {

using Platform::DecodePng;
using TestSupport::Bytes;
using TestSupport::PngImage;
using TestSupport::WritePng;

using Pixels = std::vector<std::uint32_t>;

struct Kind {
  const char* mName;
  PngImage mImage;
  Pixels mPixels;
};

std::vector<Kind> Kinds() {
  return {
      {"one bit gray", {2, 1, 1, 0, {0x40}}, {0xFF000000, 0xFFFFFFFF}},
      {"two bit gray", {4, 1, 2, 0, {0x1B}}, {0xFF000000, 0xFF555555, 0xFFAAAAAA, 0xFFFFFFFF}},
      {"four bit gray", {2, 1, 4, 0, {0x1F}}, {0xFF111111, 0xFFFFFFFF}},
      {"gray", {2, 1, 8, 0, {0x01, 0x80}}, {0xFF010101, 0xFF808080}},
      {"gray with a transparent value",
       {2, 1, 8, 0, {0x01, 0x80}, false, {}, {}, {{0x80}}},
       {0xFF010101, 0x00808080}},
      {"few bits with a transparent value",
       {2, 1, 2, 0, {0x90}, false, {}, {}, {{2}}},
       {0x00AAAAAA, 0xFF555555}},
      {"sixteen bit gray", {2, 1, 16, 0, {0x80, 0x80, 0x00, 0xFF}}, {0xFF808080, 0xFF010101}},
      {"gray with alpha", {2, 1, 8, 4, {0x10, 0x20, 0xFF, 0x00}}, {0x20101010, 0x00FFFFFF}},
      {"sixteen bit gray with alpha", {1, 1, 16, 4, {0x10, 0x10, 0x80, 0x80}}, {0x80101010}},
      {"colours", {2, 1, 8, 2, {1, 2, 3, 4, 5, 6}}, {0xFF010203, 0xFF040506}},
      {"colours with a transparent one",
       {2, 1, 8, 2, {1, 2, 3, 4, 5, 6}, false, {}, {}, {{4, 5, 6}}},
       {0xFF010203, 0x00040506}},
      {"sixteen bit colours", {1, 1, 16, 2, {0x11, 0x11, 0x22, 0x22, 0x33, 0x33}}, {0xFF112233}},
      {"colours with alpha stay unpremultiplied",
       {2, 1, 8, 6, {200, 100, 50, 1, 9, 8, 7, 0}},
       {0x01C86432, 0x00090807}},
      {"sixteen bit colours with alpha", {1, 1, 16, 6, {1, 1, 2, 2, 3, 3, 4, 4}}, {0x04010203}},
      {"palette of one bit", {2, 1, 1, 3, {0x40}, false, {{1, 2, 3}, {4, 5, 6}}}, {0xFF010203, 0xFF040506}},
      {"palette with alpha for some",
       {3, 1, 8, 3, {0, 1, 2}, false, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, {0x00, 0x7F}},
       {0x00010203, 0x7F040506, 0xFF070809}},
      {"rows from the top", {1, 3, 8, 0, {1, 2, 3}}, {0xFF010101, 0xFF020202, 0xFF030303}},
  };
}

PngImage LargerImage(bool interlaced) {
  PngImage image{19, 11};
  for (std::uint32_t at = 0; at < image.mWidth * image.mHeight * 4; ++at) {
    image.mRows.push_back(static_cast<unsigned char>(at * at >> 3));
  }
  image.mInterlaced = interlaced;
  return image;
}

constexpr std::size_t kHeaderAt = 8;
constexpr std::size_t kHeaderSize = 25;

// The picture behind a sound header of a gray picture that declares this size.
Bytes WithDeclaredSize(Bytes file, std::uint32_t width, std::uint32_t height) {
  Bytes contents;
  for (const std::uint32_t side : {width, height}) {
    for (const int shift : {24, 16, 8, 0})
      contents.push_back(static_cast<unsigned char>(side >> shift & 0xFF));
  }
  contents.insert(contents.end(), {8, 0, 0, 0, 0});
  const Bytes header = TestSupport::PngChunk("IHDR", contents);
  std::copy(header.begin(), header.end(), file.begin() + kHeaderAt);
  return file;
}

TEST(PngDecoder, EveryKindBecomesUnpremultipliedArgb) {
  for (const Kind& kind : Kinds()) {
    const auto picture = DecodePng(WritePng(kind.mImage));
    ASSERT_TRUE(picture) << kind.mName;
    EXPECT_EQ(picture->mWidth, kind.mImage.mWidth) << kind.mName;
    EXPECT_EQ(picture->mHeight, kind.mImage.mHeight) << kind.mName;
    EXPECT_EQ(picture->mPixels, kind.mPixels) << kind.mName;
  }
}

TEST(PngDecoder, AnInterlacedPictureIsTheSamePicture) {
  const auto plain = DecodePng(WritePng(LargerImage(false)));
  const auto interlaced = DecodePng(WritePng(LargerImage(true)));
  ASSERT_TRUE(plain && interlaced);
  EXPECT_EQ(plain->mPixels, interlaced->mPixels);
  EXPECT_EQ(plain->mPixels[1], 0x06020304u) << "bytes 4 to 7 of the first row";
}

TEST(PngDecoder, APictureCutAnywhereGivesNothingAndPrintsNothing) {
  for (const bool interlaced : {false, true}) {
    const Bytes file = WritePng(LargerImage(interlaced));
    testing::internal::CaptureStderr();
    for (std::size_t size = 0; size < file.size(); ++size) {
      // A buffer of its own, so that reading past the cut is seen.
      const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_FALSE(DecodePng(cut)) << size;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  }
}

TEST(PngDecoder, AFlippedByteGivesNothing) {
  const Bytes file = WritePng(LargerImage(false));
  testing::internal::CaptureStderr();
  for (std::size_t at = 0; at < file.size(); ++at) {
    Bytes damaged = file;
    damaged[at] ^= 0x41;
    EXPECT_FALSE(DecodePng(damaged)) << at;
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PngDecoder, DeclaredSizesBeyondTheLimitsGiveNothing) {
  const Bytes file = WritePng({1, 1, 8, 0, {1}});
  ASSERT_TRUE(DecodePng(WithDeclaredSize(file, 1, 1))) << "the header is sound";
  const std::uint32_t sizes[][2] = {{0, 1},
                                    {1, 0},
                                    {0x7FFFFFFF, 0x7FFFFFFF},
                                    {0xFFFFFFFF, 1},
                                    {1, Platform::kMaxPictureSide + 1},
                                    {Platform::kMaxPictureSide, Platform::kMaxPictureSide}};
  for (const auto& [width, height] : sizes) {
    EXPECT_FALSE(DecodePng(WithDeclaredSize(file, width, height))) << width << " by " << height;
  }
}

TEST(PngDecoder, TheLimitsThemselvesAreAllowed) {
  PngImage widest{Platform::kMaxPictureSide, 1, 1, 0, Bytes(Platform::kMaxPictureSide / 8, 0xFF)};
  ASSERT_TRUE(DecodePng(WritePng(widest)));
  ++widest.mWidth;
  widest.mRows.push_back(0xFF);
  EXPECT_FALSE(DecodePng(WritePng(widest)));

  const std::uint32_t height = Platform::kMaxPicturePixels / Platform::kMaxPictureSide;
  PngImage fullest{Platform::kMaxPictureSide, height, 1, 0, Bytes(Platform::kMaxPicturePixels / 8, 0xFF)};
  ASSERT_TRUE(DecodePng(WritePng(fullest)));
  ++fullest.mHeight;
  fullest.mRows.resize(fullest.mRows.size() + Platform::kMaxPictureSide / 8);
  EXPECT_FALSE(DecodePng(WritePng(fullest)));
}

TEST(PngDecoder, ADamagedCommentSpoilsNoPicture) {
  const Bytes file = WritePng({1, 1, 8, 0, {7}});
  const Bytes comment = TestSupport::PngChunk("zTXt", {'x', 0, 9});
  Bytes commented = file;
  commented.insert(commented.begin() + kHeaderAt + kHeaderSize, comment.begin(), comment.end());
  const auto picture = DecodePng(commented);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->mPixels, Pixels{0xFF070707});
}

}  // namespace
