#include "Engine/Crc32.h"

#include <array>

namespace {

constexpr std::uint32_t kPolynomial = 0xEDB88320;
// Bytes taken in one step. Their lookups are independent of each other, so they overlap in
// the processor where the byte-wise loop waits for each one in turn.
constexpr std::size_t kSliceBytes = 16;

using Table = std::array<std::uint32_t, 256>;
using SliceTables = std::array<Table, kSliceBytes>;

constexpr Table MakeByteTable() {
  Table table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t value = byte;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? kPolynomial ^ (value >> 1) : value >> 1;
    table[byte] = value;
  }
  return table;
}

// Table n gives the effect of a byte that n further zero bytes follow.
constexpr SliceTables MakeSliceTables() {
  SliceTables tables{};
  tables[0] = MakeByteTable();
  for (std::size_t slice = 1; slice < kSliceBytes; ++slice) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t previous = tables[slice - 1][byte];
      tables[slice][byte] = tables[0][previous & 0xFF] ^ (previous >> 8);
    }
  }
  return tables;
}

constexpr SliceTables kTables = MakeSliceTables();

std::uint32_t ReadWord(const unsigned char* data) {
  return data[0] | std::uint32_t{data[1]} << 8 | std::uint32_t{data[2]} << 16 | std::uint32_t{data[3]} << 24;
}

// The effect of four bytes that trailing further bytes of the slice follow.
std::uint32_t WordEffect(std::uint32_t word, std::size_t trailing) {
  return kTables[trailing + 3][word & 0xFF] ^ kTables[trailing + 2][word >> 8 & 0xFF] ^
         kTables[trailing + 1][word >> 16 & 0xFF] ^ kTables[trailing][word >> 24];
}

std::uint32_t AddSlice(std::uint32_t state, const unsigned char* data) {
  return WordEffect(state ^ ReadWord(data), 12) ^ WordEffect(ReadWord(data + 4), 8) ^
         WordEffect(ReadWord(data + 8), 4) ^ WordEffect(ReadWord(data + 12), 0);
}

}  // namespace

std::uint32_t Crc32(const unsigned char* data, std::size_t size) {
  std::uint32_t state = 0xFFFFFFFF;
  for (; size >= kSliceBytes; size -= kSliceBytes, data += kSliceBytes) state = AddSlice(state, data);
  for (; size > 0; --size, ++data) state = kTables[0][(state ^ *data) & 0xFF] ^ (state >> 8);
  return ~state;
}
