#include "Platform/Desktop/CleanUtf8.h"

#include <glib.h>

#include <cstdint>
#include <memory>

#include "Platform/Desktop/Handles.h"

namespace Platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The character at position, which moves behind it.
char32_t Take(std::u16string_view text, std::size_t& position) {
  const char32_t unit = text[position++];
  if (unit == 0 || IsLowSurrogate(unit)) return kReplacement;
  if (!IsHighSurrogate(unit)) return unit;
  if (position == text.size() || !IsLowSurrogate(text[position])) return kReplacement;
  return 0x10000 + ((unit - 0xD800) << 10) + (text[position++] - 0xDC00);
}

void Append(std::string& utf8, char32_t character) {
  const auto tail = [&](int shift) { utf8 += static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    utf8 += static_cast<char>(character);
  } else if (character < 0x800) {
    utf8 += static_cast<char>(0xC0 | character >> 6);
    tail(0);
  } else if (character < 0x10000) {
    utf8 += static_cast<char>(0xE0 | character >> 12);
    tail(6);
    tail(0);
  } else {
    utf8 += static_cast<char>(0xF0 | character >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

std::string CleanUtf8(std::u16string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) Append(utf8, Take(text, position));
  return utf8;
}

std::string CleanUtf8(std::string_view text) {
  const std::unique_ptr<char, Releaser<g_free>> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
  return valid.get();
}

}  // namespace Platform
