#include "Engine/SevenBitPacking.h"

#include <gtest/gtest.h>

#include "Tests/Support/Engine/TestBytes.h"

namespace {

using namespace EngineTest;

TEST(SevenBitPacking, VectorsPackAndUnpack) {
  const struct {
    const char* data;
    const char* packed;
  } cases[] = {
      {"", ""},
      {"00", "00 00"},
      {"80", "01 00"},
      {"81 FF 03 04 05 06 87 08 C2", "43 01 7F 03 04 05 06 07 02 08 42"},
      {"FF FF FF FF FF FF FF", "7F 7F 7F 7F 7F 7F 7F 7F"},
      {"00 80 00 80 00 80 00 80", "2A 00 00 00 00 00 00 00 01 00"},
  };
  for (const auto& test : cases) {
    TF::Array<unsigned char> packed;
    TF::Array<unsigned char> data;
    const auto expected = FromHex(test.packed);
    EXPECT_EQ(PackSevenBit(ToArray(FromHex(test.data)), packed), static_cast<int>(expected.size()));
    EXPECT_EQ(ToHex(FromArray(packed)), test.packed);
    EXPECT_EQ(UnpackSevenBit(packed, data), static_cast<int>(FromHex(test.data).size()));
    EXPECT_EQ(ToHex(FromArray(data)), test.data);
  }
}

TEST(SevenBitPacking, SizesFollowTheGroups) {
  const struct {
    std::size_t data;
    std::size_t packed;
  } cases[] = {{0, 0}, {1, 2}, {7, 8}, {8, 10}, {14, 16}, {15, 18}, {48, 55}, {254, 291}};
  for (const auto& test : cases) {
    EXPECT_EQ(PackedSize(test.data), test.packed);
    EXPECT_EQ(UnpackedSize(test.packed), test.data);
  }
}

TEST(SevenBitPacking, EveryLengthComesBackAsItWas) {
  TF::Array<unsigned char> packed;
  TF::Array<unsigned char> unpacked;
  for (std::size_t size = 0; size <= 260; ++size) {
    const Bytes data = MakeData(size, static_cast<std::uint32_t>(size + 1));
    PackSevenBit(ToArray(data), packed);
    for (const unsigned char byte : FromArray(packed)) ASSERT_LT(byte, 0x80) << size;
    UnpackSevenBit(packed, unpacked);
    ASSERT_EQ(FromArray(unpacked), data);
  }
}

// What was packed, cut at any byte, still gives the whole data bytes that are there.
TEST(SevenBitPacking, CutOffDataGivesWhatIsThere) {
  const Bytes data = MakeData(40, 3);
  TF::Array<unsigned char> packed;
  PackSevenBit(ToArray(data), packed);
  const Bytes whole = FromArray(packed);
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    TF::Array<unsigned char> unpacked;
    UnpackSevenBit(ToArray(Bytes(whole.begin(), whole.begin() + cut)), unpacked);
    const Bytes result = FromArray(unpacked);
    ASSERT_EQ(result.size(), cut - (cut + 7) / 8);
    ASSERT_TRUE(std::equal(result.begin(), result.end(), data.begin()));
  }
}

}  // namespace
