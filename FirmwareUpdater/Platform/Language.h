#pragma once

#include <cstdint>
#include <string_view>

namespace Platform {

inline constexpr std::uint32_t kEnglishUnitedStates = 0x0409;

// Full language number (primary language in the low 10 bits, region above) of the first of
// LC_ALL, LC_MESSAGES and LANG that is set and not empty.
std::uint32_t UserLanguage();

// The same for one locale name such as "de_AT.UTF-8@euro". A language with an unknown region
// gets its main region; an unknown language, "C" and an empty name get US English.
std::uint32_t LanguageOfLocale(std::string_view locale);

}  // namespace Platform
