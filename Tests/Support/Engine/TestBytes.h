#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "TFFramework/Utilities/Storage/Array.h"
#include "Tools/Vbin/Image.h"

// Bytes, hex texts and images for the tests of the engine.
namespace EngineTest {

using Bytes = std::vector<unsigned char>;

// size bytes that look random and are the same in every run.
Bytes MakeData(std::size_t size, std::uint32_t seed = 1);

Vbin::RegionDescription MakeRegion(std::uint32_t hardwareId, std::vector<Vbin::SectionDescription> sections);
Bytes MakeImage(std::vector<Vbin::RegionDescription> regions);

void PutWord(Bytes& bytes, std::size_t offset, std::uint32_t value);
std::uint32_t GetWord(const Bytes& bytes, std::size_t offset);

template <class T = unsigned char>
TF::Array<T> ToArray(const Bytes& bytes) {
  TF::Array<T> array;
  array.SetCount(static_cast<int>(bytes.size()));
  for (std::size_t i = 0; i < bytes.size(); ++i) array.GetBuffer()[i] = static_cast<T>(bytes[i]);
  return array;
}

template <class T>
Bytes FromArray(const TF::Array<T>& array) {
  const auto* begin = reinterpret_cast<const unsigned char*>(array.GetBuffer());
  return Bytes(begin, begin + array.GetCount());
}

// "F0 00 17" and the like.
Bytes FromHex(const std::string& hex);
std::string ToHex(const Bytes& bytes);

}  // namespace EngineTest
