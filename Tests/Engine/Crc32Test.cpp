#include "Engine/Crc32.h"

#include <gtest/gtest.h>

#include <string_view>

#include "Tests/Support/Engine/TestBytes.h"

namespace {

using EngineTest::Bytes;
using EngineTest::MakeData;

std::uint32_t BitwiseCrc(const unsigned char* data, std::size_t size) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
  }
  return ~crc;
}

TEST(Crc32, KnownTextsHaveTheirPublishedChecksums) {
  const struct {
    std::string_view text;
    std::uint32_t crc;
  } cases[] = {{"", 0},
               {"a", 0xE8B7BE43},
               {"123456789", 0xCBF43926},
               {"The quick brown fox jumps over the lazy dog", 0x414FA339}};
  for (const auto& test : cases) {
    EXPECT_EQ(Crc32(reinterpret_cast<const unsigned char*>(test.text.data()), test.text.size()), test.crc)
        << test.text;
  }
}

TEST(Crc32, EveryLengthAndAlignmentAgreesWithTheBitwiseForm) {
  const Bytes data = MakeData(200, 7);
  for (std::size_t start = 0; start < 16; ++start) {
    for (std::size_t size = 0; start + size <= data.size(); ++size) {
      ASSERT_EQ(Crc32(data.data() + start, size), BitwiseCrc(data.data() + start, size))
          << start << " " << size;
    }
  }
}

}  // namespace
