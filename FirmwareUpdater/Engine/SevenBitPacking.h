#pragma once

#include <cstddef>

#include "TFFramework/Utilities/Storage/Array.h"

// Packing of 8-bit data into the 7-bit bytes of a system-exclusive message: groups of up to
// seven data bytes, each group led by a byte that holds their top bits, the first byte's in
// bit 0. Pure functions; any thread.

constexpr std::size_t kDataBytesPerPackedGroup = 7;
constexpr std::size_t kPackedGroupBytes = kDataBytesPerPackedGroup + 1;

constexpr std::size_t PackedSize(std::size_t dataSize) {
  return dataSize + (dataSize + kDataBytesPerPackedGroup - 1) / kDataBytesPerPackedGroup;
}

// A last group that consists of its leading byte alone carries nothing.
constexpr std::size_t UnpackedSize(std::size_t packedSize) {
  const std::size_t rest = packedSize % kPackedGroupBytes;
  return packedSize / kPackedGroupBytes * kDataBytesPerPackedGroup + (rest > 0 ? rest - 1 : 0);
}

// Writes PackedSize(dataSize) bytes to out.
void PackSevenBit(const unsigned char* data, std::size_t dataSize, unsigned char* out);
// Writes the first dataSize data bytes of packed to out; packed must hold that many. Bit 7 of
// a packed byte is ignored.
void UnpackSevenBit(const unsigned char* packed, std::size_t dataSize, unsigned char* out);

// Both set the size of out and return it.
int PackSevenBit(const TF::Array<unsigned char>& data, TF::Array<unsigned char>& out);
int UnpackSevenBit(const TF::Array<unsigned char>& packed, TF::Array<unsigned char>& out);
