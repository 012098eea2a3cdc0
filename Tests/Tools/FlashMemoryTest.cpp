#include "Tools/Vbin/FlashMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "Tests/Tools/ComputerSide.h"

using namespace Vbin;
using ToolsTest::Bytes;
using ToolsTest::Filled;

TEST(FlashMemoryTest, HoldsWhatWasWrittenLastAtEachAddress) {
  FlashMemory flash;
  EXPECT_TRUE(flash.Write(4090, Filled(20, 1)));
  EXPECT_TRUE(flash.Write(4095, Bytes{0xAA, 0xBB}));
  Bytes expected(22, 0xFF);
  const Bytes written = Filled(20, 1);
  std::copy(written.begin(), written.end(), expected.begin() + 1);
  expected.at(6) = 0xAA;
  expected.at(7) = 0xBB;
  EXPECT_EQ(flash.Read(4089, 22), expected);
  EXPECT_EQ(flash.WrittenBytes(), 20U);
  EXPECT_EQ(flash.At(4089), std::nullopt);
  EXPECT_EQ(flash.At(4096), 0xBB);
}

TEST(FlashMemoryTest, EndsAtTheLastAddress) {
  FlashMemory flash;
  EXPECT_TRUE(flash.Write(0xFFFFFFFE, Bytes{1, 2}));
  EXPECT_FALSE(flash.Write(0xFFFFFFFE, Bytes{3, 4, 5}));
  EXPECT_EQ(flash.Read(0xFFFFFFFE, 2), (Bytes{1, 2}));
  EXPECT_EQ(flash.At(0), std::nullopt);
}

TEST(FlashMemoryTest, EqualContentsAreEqualHoweverTheyCame) {
  const Bytes data = Filled(9000, 3);
  FlashMemory whole;
  whole.Write(100, data);
  FlashMemory pieces;
  for (std::size_t end = data.size(); end > 0;) {
    const std::size_t start = end - std::min<std::size_t>(end, 240);
    pieces.Write(static_cast<std::uint32_t>(100 + start), std::span(data).subspan(start, end - start));
    end = start;
  }
  EXPECT_EQ(whole, pieces);
  EXPECT_EQ(whole.ToIntelHex(), pieces.ToIntelHex());
  pieces.Write(9100, Bytes{0});
  EXPECT_NE(whole, pieces);
}

TEST(FlashMemoryTest, WritesIntelHex) {
  FlashMemory flash;
  EXPECT_EQ(flash.ToIntelHex(), ":00000001FF\n");
  flash.Write(0x0000FFFE, Bytes{0x01, 0x02, 0x03});
  flash.Write(0x0800000C, Bytes{0xDE, 0xAD, 0xBE, 0xEF, 0x55});
  flash.Write(0x08000012, Bytes{0x66});
  EXPECT_EQ(flash.ToIntelHex(),
            ":020000040000FA\n"
            ":02FFFE000102FE\n"
            ":020000040001F9\n"
            ":0100000003FC\n"
            ":020000040800F2\n"
            ":04000C00DEADBEEFB8\n"
            ":01001000559A\n"
            ":010012006687\n"
            ":00000001FF\n");
}

TEST(FlashMemoryTest, AnImageFillsTheFlashOfItsHardware) {
  ImageDescription image = ToolsTest::TwoRegionImage();
  image.mRegions[0].mHardwareId = 77;
  const Bytes bytes = BuildImage(image);
  const std::vector<Region> regions = ReadImage(bytes);
  EXPECT_EQ(FlashOf(regions).WrittenBytes(), 1921U + 240 + 4000);
  EXPECT_EQ(FlashOf(regions, 77).WrittenBytes(), 1921U);
  EXPECT_EQ(FlashOf(regions, 77).Read(0x08000000, 1921), image.mRegions[0].mSections[0].mData);
  EXPECT_EQ(FlashOf(regions, 78).WrittenBytes(), 0U);
}
