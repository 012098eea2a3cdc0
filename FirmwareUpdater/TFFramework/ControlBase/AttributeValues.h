#pragma once

#include <cstdint>
#include <string_view>

#include "TFFramework/Utilities/Graphics/Color.h"

// What the text of an attribute means. Nothing here depends on the locale, and no text is an error:
// what cannot be read is false or 0.
namespace TF {

// True for exactly "True".
bool ParseBool(std::u16string_view text);
// Up to four hexadecimal digits behind "0x", which must be the beginning and in lower case. Else the
// decimal number that the text begins with, behind blanks and a sign; a number that does not fit
// becomes the nearest one that does.
std::int32_t ParseInt(std::u16string_view text);
// The decimal number with fraction and exponent that the text begins with, behind blanks and a
// sign. 0 for a number that is not finite or does not fit.
float ParseFloat(std::u16string_view text);
// Hexadecimal digits behind an optional "0x" or "0X", and nothing else: eight are alpha, red, green,
// blue; six the same without alpha, which is then 0; two are alpha alone.
LColor ParseColor(std::u16string_view text);

}  // namespace TF
