#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace Tools {

// A whole number from 0 to limit, decimal or hexadecimal behind 0x, with nothing before or
// behind it. Throws std::invalid_argument with a sentence that names what and the text.
std::uint32_t ParseNumber(std::string_view text, std::string_view what,
                          std::uint32_t limit = std::numeric_limits<std::uint32_t>::max());

}  // namespace Tools
