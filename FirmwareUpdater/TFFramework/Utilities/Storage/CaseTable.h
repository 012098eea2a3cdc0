#pragma once

#include <cstdint>
#include <string_view>

namespace TF {

// Case mapping of single characters, one to one and the same in every locale, so that a
// text never changes its length. Characters without a partner map to themselves.
char16_t ToUpperCase(char16_t character);
char16_t ToLowerCase(char16_t character);
char ToUpperCase(char character);
char ToLowerCase(char character);

// Negative, 0 or positive, by lower-case characters.
std::int32_t CompareIgnoreCase(std::u16string_view left, std::u16string_view right);
bool EqualsIgnoreCase(std::u16string_view left, std::u16string_view right);

}  // namespace TF
