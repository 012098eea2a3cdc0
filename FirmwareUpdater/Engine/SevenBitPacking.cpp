#include "Engine/SevenBitPacking.h"

#include <algorithm>

void PackSevenBit(const unsigned char* data, std::size_t dataSize, unsigned char* out) {
  while (dataSize > 0) {
    const std::size_t count = std::min(dataSize, kDataBytesPerPackedGroup);
    unsigned topBits = 0;
    for (std::size_t i = 0; i < count; ++i) {
      topBits |= static_cast<unsigned>(data[i] >> 7) << i;
      out[i + 1] = data[i] & 0x7F;
    }
    out[0] = static_cast<unsigned char>(topBits);
    data += count;
    dataSize -= count;
    out += count + 1;
  }
}

void UnpackSevenBit(const unsigned char* packed, std::size_t dataSize, unsigned char* out) {
  while (dataSize > 0) {
    const std::size_t count = std::min(dataSize, kDataBytesPerPackedGroup);
    const unsigned topBits = packed[0];
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = static_cast<unsigned char>((packed[i + 1] & 0x7F) | (topBits >> i & 1) << 7);
    }
    packed += count + 1;
    dataSize -= count;
    out += count;
  }
}

int PackSevenBit(const TF::Array<unsigned char>& data, TF::Array<unsigned char>& out) {
  const auto dataSize = static_cast<std::size_t>(data.GetCount());
  out.SetCount(static_cast<int>(PackedSize(dataSize)));
  PackSevenBit(data.GetBuffer(), dataSize, out.GetBuffer());
  return out.GetCount();
}

int UnpackSevenBit(const TF::Array<unsigned char>& packed, TF::Array<unsigned char>& out) {
  const std::size_t dataSize = UnpackedSize(static_cast<std::size_t>(packed.GetCount()));
  out.SetCount(static_cast<int>(dataSize));
  UnpackSevenBit(packed.GetBuffer(), dataSize, out.GetBuffer());
  return out.GetCount();
}
