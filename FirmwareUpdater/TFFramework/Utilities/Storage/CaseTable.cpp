#include "TFFramework/Utilities/Storage/CaseTable.h"

#include <algorithm>
#include <array>

namespace TF {

namespace {

// Upper-case letters first to last, every step-th of them, with their lower-case letters
// distance further on. Ranges are sorted by first.
struct CaseRange {
  char16_t first;
  char16_t last;
  std::int16_t distance;
  std::uint8_t step;
};

constexpr CaseRange kRanges[] = {
    {0x0041, 0x005A, 32, 1},                            // Latin
    {0x00C0, 0x00D6, 32, 1},                            // Latin-1
    {0x00D8, 0x00DE, 32, 1},   {0x0100, 0x012E, 1, 2},  // Latin Extended-A, without the dotted and dotless i
    {0x0132, 0x0136, 1, 2},    {0x0139, 0x0147, 1, 2},  {0x014A, 0x0176, 1, 2},
    {0x0178, 0x0178, -121, 1}, {0x0179, 0x017D, 1, 2},  {0x01CD, 0x01DB, 1, 2},  // Latin Extended-B, pairs
    {0x01DE, 0x01EE, 1, 2},    {0x01F8, 0x021E, 1, 2},  {0x0222, 0x0232, 1, 2},
    {0x0386, 0x0386, 38, 1},  // Greek
    {0x0388, 0x038A, 37, 1},   {0x038C, 0x038C, 64, 1}, {0x038E, 0x038F, 63, 1},
    {0x0391, 0x03A1, 32, 1},   {0x03A3, 0x03AB, 32, 1}, {0x0400, 0x040F, 80, 1},  // Cyrillic
    {0x0410, 0x042F, 32, 1},   {0x0460, 0x0480, 1, 2},  {0x048A, 0x04BE, 1, 2},
    {0x04C1, 0x04CD, 1, 2},    {0x04D0, 0x052E, 1, 2},  {0x0531, 0x0556, 48, 1},  // Armenian
    {0x1E00, 0x1E94, 1, 2},                                                       // Latin Extended Additional
    {0x1EA0, 0x1EFE, 1, 2},    {0x24B6, 0x24CF, 26, 1},                           // Circled letters
    {0xFF21, 0xFF3A, 32, 1},                                                      // Full width
};

using Table = std::array<char16_t, 0x10000>;

Table MakeTable(bool toUpper) {
  Table table;
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<char16_t>(i);
  for (const CaseRange& range : kRanges) {
    for (std::int32_t upper = range.first; upper <= range.last; upper += range.step) {
      const std::int32_t lower = upper + range.distance;
      if (toUpper)
        table[static_cast<std::size_t>(lower)] = static_cast<char16_t>(upper);
      else
        table[static_cast<std::size_t>(upper)] = static_cast<char16_t>(lower);
    }
  }
  return table;
}

constexpr char16_t kLastAscii = 0x7F;

char16_t Ascii(char16_t character, char16_t first, char16_t last) {
  return character >= first && character <= last ? static_cast<char16_t>(character ^ 0x20) : character;
}

}  // namespace

char16_t ToUpperCase(char16_t character) {
  if (character <= kLastAscii) return Ascii(character, u'a', u'z');
  static const Table table = MakeTable(true);
  return table[character];
}

char16_t ToLowerCase(char16_t character) {
  if (character <= kLastAscii) return Ascii(character, u'A', u'Z');
  static const Table table = MakeTable(false);
  return table[character];
}

char ToUpperCase(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

char ToLowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::int32_t CompareIgnoreCase(std::u16string_view left, std::u16string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const std::int32_t difference = ToLowerCase(left[i]) - ToLowerCase(right[i]);
    if (difference != 0) return difference;
  }
  if (left.size() == right.size()) return 0;
  return left.size() < right.size() ? -1 : 1;
}

bool EqualsIgnoreCase(std::u16string_view left, std::u16string_view right) {
  return left.size() == right.size() && CompareIgnoreCase(left, right) == 0;
}

}  // namespace TF
