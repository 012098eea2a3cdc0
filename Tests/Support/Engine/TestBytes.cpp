#include "Tests/Support/Engine/TestBytes.h"

#include <fmt/format.h>

#include <random>
#include <sstream>
#include <utility>

namespace EngineTest {

Bytes MakeData(std::size_t size, std::uint32_t seed) {
  std::minstd_rand random(seed);
  Bytes data(size);
  for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
  return data;
}

Vbin::RegionDescription MakeRegion(std::uint32_t hardwareId, std::vector<Vbin::SectionDescription> sections) {
  Vbin::RegionDescription region;
  region.mHardwareId = hardwareId;
  region.mAttributes = {0xA1, 0xA2, 0xA3, 0xA4};
  region.mParameter = 0x50607080;
  region.mSections = std::move(sections);
  return region;
}

Bytes MakeImage(std::vector<Vbin::RegionDescription> regions) {
  return Vbin::BuildImage({std::move(regions)});
}

void PutWord(Bytes& bytes, std::size_t offset, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<unsigned char>(value >> 8 * i);
}

std::uint32_t GetWord(const Bytes& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | bytes.at(offset + i);
  return value;
}

Bytes FromHex(const std::string& hex) {
  Bytes bytes;
  std::istringstream words(hex);
  for (std::string word; words >> word;)
    bytes.push_back(static_cast<unsigned char>(std::stoul(word, nullptr, 16)));
  return bytes;
}

std::string ToHex(const Bytes& bytes) {
  std::string hex;
  for (const unsigned char byte : bytes) hex += fmt::format("{}{:02X}", hex.empty() ? "" : " ", byte);
  return hex;
}

}  // namespace EngineTest
