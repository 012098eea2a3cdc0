#pragma once

#include <string>
#include <string_view>

namespace Platform {

// Invalid UTF-8 becomes U+FFFD.
std::u16string ToUtf16(std::string_view utf8);

}  // namespace Platform
