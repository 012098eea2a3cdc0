#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Valid UTF-8 without zero characters, whatever the text holds: what is no character becomes U+FFFD.
std::string CleanUtf8(std::u16string_view text);
std::string CleanUtf8(std::string_view text);

}  // namespace Platform
