#include "Tools/Support/Number.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>

namespace Tools {

std::uint32_t ParseNumber(std::string_view text, std::string_view what, std::uint32_t limit) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const std::string_view digits = hexadecimal ? text.substr(2) : text;
  const char* const end = digits.data() + digits.size();
  std::uint32_t value = 0;
  const auto [stop, error] = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
  if (error == std::errc::invalid_argument || stop != end)
    throw std::invalid_argument(fmt::format("{}: \"{}\" is not a number", what, text));
  if (error == std::errc::result_out_of_range || value > limit)
    throw std::invalid_argument(fmt::format("{}: {} is above {}", what, text, limit));
  return value;
}

}  // namespace Tools
