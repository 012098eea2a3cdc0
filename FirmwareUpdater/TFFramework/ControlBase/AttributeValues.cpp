#include "TFFramework/ControlBase/AttributeValues.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

namespace TF {

namespace {

constexpr std::u16string_view kBlanks = u" \t\n\v\f\r";
constexpr std::u16string_view kHexPrefix = u"0x";
constexpr std::size_t kMostHexDigits = 4;  // Of an integer.
constexpr int kAlphaShift = 24;

// What follows leading blanks and a sign.
struct Signed {
  bool mNegative = false;
  std::u16string_view mRest;
};

Signed SplitSign(std::u16string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  return {negative, text};
}

bool IsDigit(char16_t character) {
  return character >= u'0' && character <= u'9';
}

std::optional<std::uint32_t> HexDigit(char16_t character) {
  if (IsDigit(character)) return character - u'0';
  if (character >= u'a' && character <= u'f') return character - u'a' + 10;
  if (character >= u'A' && character <= u'F') return character - u'A' + 10;
  return std::nullopt;
}

// The number of the hexadecimal digits that the text begins with.
std::uint32_t LeadingHex(std::u16string_view text) {
  std::uint32_t value = 0;
  for (const char16_t character : text) {
    const auto digit = HexDigit(character);
    if (!digit) break;
    value = value << 4 | *digit;
  }
  return value;
}

bool IsAllHex(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char16_t character) { return HexDigit(character).has_value(); });
}

}  // namespace

bool ParseBool(std::u16string_view text) {
  return text == u"True";
}

std::int32_t ParseInt(std::u16string_view text) {
  if (text.starts_with(kHexPrefix)) {
    return static_cast<std::int32_t>(LeadingHex(text.substr(kHexPrefix.size(), kMostHexDigits)));
  }
  constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
  const auto [negative, rest] = SplitSign(text);
  std::int64_t value = 0;
  for (const char16_t character : rest) {
    if (!IsDigit(character)) break;
    value = std::min(value * 10 + (character - u'0'), kHighest + 1);
  }
  return static_cast<std::int32_t>(negative ? -value : std::min(value, kHighest));
}

float ParseFloat(std::u16string_view text) {
  const auto [negative, rest] = SplitSign(text);
  const std::size_t length = std::min(rest.find_first_not_of(u"0123456789.eE+-"), rest.size());
  // A first character of its own keeps the conversion from taking a second sign, "inf" or "nan".
  if (length == 0 || !(IsDigit(rest[0]) || rest[0] == u'.')) return 0;
  const std::string number(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(length));
  float value = 0;
  const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
  if (result.ec != std::errc()) return 0;
  return negative ? -value : value;
}

LColor ParseColor(std::u16string_view text) {
  if (text.starts_with(u"0x") || text.starts_with(u"0X")) text.remove_prefix(kHexPrefix.size());
  if (!IsAllHex(text)) return {};
  switch (text.size()) {
    case 8:
    case 6:
      return LColor::FromPacked(LeadingHex(text));
    case 2:
      return LColor::FromPacked(LeadingHex(text) << kAlphaShift);
    default:
      return {};
  }
}

}  // namespace TF
