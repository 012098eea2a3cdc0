#include "TFFramework/Utilities/Storage/UtfConversion.h"

#include <string>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstBeyondBasicPlane = 0x10000;
constexpr std::size_t kMaxUtf8Length = 4;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

struct Decoded {
  UtfResult result;
  char32_t character;
  std::size_t length;  // Source units.
};

Decoded DecodeUtf16(std::u16string_view source) {
  const char32_t first = source[0];
  if (!IsHighSurrogate(first)) return {UtfResult::kDone, first, 1};
  if (source.size() < 2) return {UtfResult::kSourceExhausted, 0, 0};
  const char32_t second = source[1];
  if (!IsLowSurrogate(second)) return {UtfResult::kDone, first, 1};
  return {UtfResult::kDone, kFirstBeyondBasicPlane + ((first - 0xD800) << 10) + (second - 0xDC00), 2};
}

std::size_t Utf8Length(char32_t character) {
  if (character < 0x80) return 1;
  if (character < 0x800) return 2;
  return character < kFirstBeyondBasicPlane ? 3 : 4;
}

void EncodeUtf8(char32_t character, std::size_t length, char* target) {
  static constexpr unsigned char kLeadMarks[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
  for (std::size_t i = length - 1; i > 0; --i) {
    target[i] = static_cast<char>(0x80 | (character & 0x3F));
    character >>= 6;
  }
  target[0] = static_cast<char>(kLeadMarks[length] | character);
}

std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF7 ? kMaxUtf8Length : 0;
}

Decoded DecodeUtf8(std::string_view source) {
  const auto lead = static_cast<unsigned char>(source[0]);
  const std::size_t length = SequenceLength(lead);
  if (length == 0) return {UtfResult::kSourceIllegal, 0, 0};
  if (length == 1) return {UtfResult::kDone, lead, 1};
  char32_t character = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if (i >= source.size()) return {UtfResult::kSourceExhausted, 0, 0};
    const auto next = static_cast<unsigned char>(source[i]);
    if ((next & 0xC0) != 0x80) return {UtfResult::kSourceIllegal, 0, 0};
    character = (character << 6) | (next & 0x3F);
  }
  if (Utf8Length(character) != length) return {UtfResult::kSourceIllegal, 0, 0};
  return {UtfResult::kDone, character > kLastCharacter ? kReplacement : character, length};
}

// Appends what Convert gives for source, with U+FFFD for each unit that it stops at.
template <class Target, class Source, class Convert>
Target ConvertAll(Source source, std::size_t growth, std::basic_string_view<typename Target::value_type> mark,
                  Convert convert) {
  Target target;
  while (!source.empty()) {
    const std::size_t before = target.size();
    target.resize(before + source.size() * growth);
    std::size_t written = 0;
    std::size_t read = 0;
    const UtfResult result = convert(source, target.data() + before, source.size() * growth, read, written);
    target.resize(before + written);
    if (result == UtfResult::kDone) break;
    target += mark;
    source.remove_prefix(read + 1);
  }
  return target;
}

UtfResult Utf16ToUtf8(std::u16string_view source, char* target, std::size_t capacity, std::size_t& read,
                      std::size_t& written) {
  for (read = written = 0; read < source.size();) {
    const Decoded decoded = DecodeUtf16(source.substr(read));
    if (decoded.result != UtfResult::kDone) return decoded.result;
    const std::size_t length = Utf8Length(decoded.character);
    if (written + length > capacity) return UtfResult::kTargetFull;
    EncodeUtf8(decoded.character, length, target + written);
    written += length;
    read += decoded.length;
  }
  return UtfResult::kDone;
}

UtfResult Utf8ToUtf16(std::string_view source, char16_t* target, std::size_t capacity, std::size_t& read,
                      std::size_t& written) {
  for (read = written = 0; read < source.size();) {
    const Decoded decoded = DecodeUtf8(source.substr(read));
    if (decoded.result != UtfResult::kDone) return decoded.result;
    const bool pair = decoded.character >= kFirstBeyondBasicPlane;
    if (written + (pair ? 2 : 1) > capacity) return UtfResult::kTargetFull;
    if (pair) {
      const char32_t offset = decoded.character - kFirstBeyondBasicPlane;
      target[written++] = static_cast<char16_t>(0xD800 + (offset >> 10));
      target[written++] = static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
    } else {
      target[written++] = static_cast<char16_t>(decoded.character);
    }
    read += decoded.length;
  }
  return UtfResult::kDone;
}

}  // namespace

UtfResult ConvertToUtf8(std::u16string_view source, char* target, std::size_t capacity,
                        std::size_t& written) {
  std::size_t read = 0;
  return Utf16ToUtf8(source, target, capacity, read, written);
}

UtfResult ConvertToUtf16(std::string_view source, char16_t* target, std::size_t capacity,
                         std::size_t& written) {
  std::size_t read = 0;
  return Utf8ToUtf16(source, target, capacity, read, written);
}

std::string ToUtf8(std::u16string_view text) {
  return ConvertAll<std::string>(text, kMaxUtf8Length, "\xEF\xBF\xBD", Utf16ToUtf8);
}

String FromUtf8(std::string_view text) {
  return String(ConvertAll<std::u16string>(text, 1, u"\uFFFD", Utf8ToUtf16));
}

}  // namespace TF
