#pragma once

// What the program calls itself.
inline constexpr const char16_t* kCompanyName = u"Varnok";
inline constexpr const char16_t* kProductName = u"Tessel";
inline constexpr const char16_t* kProductVersion = u"1.0.14";
