#pragma once

#include <cstdint>
#include <string_view>

// Lenient conversion between UTF-8 and UTF-16: unpaired surrogates pass as three bytes,
// characters above U+10FFFF become U+FFFD.
namespace TF {

enum class UtfResult : std::int32_t {
  kDone = 0,
  kSourceExhausted = 1,  // The source ends in the middle of a character.
  kTargetFull = 2,
  kSourceIllegal = 3,
};

// Both write at most capacity units, set written, and stop at the first character that does
// not fit or cannot be read.
UtfResult ConvertToUtf8(std::u16string_view source, char* target, std::size_t capacity, std::size_t& written);
UtfResult ConvertToUtf16(std::string_view source, char16_t* target, std::size_t capacity,
                         std::size_t& written);

}  // namespace TF
