#include "Platform/NativePath.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Platform {

namespace {

// A byte without a character of its own is kPrivateBase plus the byte.
constexpr char16_t kPrivateBase = 0xF700;
constexpr char16_t kPrivateBackslash = kPrivateBase + '\\';
constexpr char16_t kPrivateByteFirst = kPrivateBase + 0x80;
constexpr char16_t kPrivateByteLast = kPrivateBase + 0xFF;

constexpr char32_t kSurrogateFirst = 0xD800;
constexpr char32_t kLowSurrogateFirst = 0xDC00;
constexpr char32_t kSurrogateEnd = 0xE000;
constexpr char32_t kSupplementaryFirst = 0x10000;
constexpr char32_t kCharacterEnd = 0x110000;

enum class TextKind { kPath, kPlain };

bool StandsForByte(char32_t unit) {
  return unit == kPrivateBackslash || (unit >= kPrivateByteFirst && unit <= kPrivateByteLast);
}

// Bytes of the sequence that a lead byte announces; 0 for a byte that cannot lead.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF5 ? 4 : 0;
}

// Reads one character and returns its bytes; 0 when they are no valid UTF-8 or name a code
// unit that stands for a byte.
std::size_t DecodeCharacter(std::string_view text, char32_t& character) {
  static constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, kSupplementaryFirst};
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = SequenceLength(lead);
  if (length == 0 || length > text.size()) return 0;
  character = length == 1 ? lead : lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return 0;
    character = character << 6 | (byte & 0x3Fu);
  }
  const bool surrogate = character >= kSurrogateFirst && character < kSurrogateEnd;
  const bool shortest = character >= kSmallest[length] && character < kCharacterEnd;
  return shortest && !surrogate && !StandsForByte(character) ? length : 0;
}

void AppendCharacter(std::u16string& text, char32_t character) {
  if (character < kSupplementaryFirst) {
    text += static_cast<char16_t>(character);
    return;
  }
  const char32_t rest = character - kSupplementaryFirst;
  text += static_cast<char16_t>(kSurrogateFirst + (rest >> 10));
  text += static_cast<char16_t>(kLowSurrogateFirst + (rest & 0x3FF));
}

std::u16string Decode(std::string_view native, TextKind kind) {
  std::u16string inner;
  inner.reserve(native.size());
  while (!native.empty()) {
    char32_t character = 0;
    const std::size_t length = DecodeCharacter(native, character);
    if (length == 0) {
      inner += static_cast<char16_t>(kPrivateBase + static_cast<unsigned char>(native[0]));
    } else if (kind == TextKind::kPath && character == U'\\') {
      inner += kPrivateBackslash;
    } else {
      AppendCharacter(inner, kind == TextKind::kPath && character == U'/' ? U'\\' : character);
    }
    native.remove_prefix(length == 0 ? 1 : length);
  }
  return inner;
}

void AppendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const int trailing = character < 0x800 ? 1 : character < kSupplementaryFirst ? 2 : 3;
  static constexpr std::array<char32_t, 4> kLeadMarks{0, 0xC0, 0xE0, 0xF0};
  text += static_cast<char>(kLeadMarks[trailing] | character >> (6 * trailing));
  for (int i = trailing - 1; i >= 0; --i) text += static_cast<char>(0x80u | (character >> (6 * i) & 0x3Fu));
}

// A surrogate without its partner counts as a character of its own: such a name is unusual
// but must not turn into another file's.
char32_t TakeCharacter(std::u16string_view& text) {
  const char32_t first = text[0];
  text.remove_prefix(1);
  const bool high = first >= kSurrogateFirst && first < kLowSurrogateFirst;
  if (!high || text.empty() || text[0] < kLowSurrogateFirst || text[0] >= kSurrogateEnd) return first;
  const char32_t second = text[0];
  text.remove_prefix(1);
  return kSupplementaryFirst + ((first - kSurrogateFirst) << 10) + (second - kLowSurrogateFirst);
}

// "." when the working directory has been removed: paths then stay relative to it.
std::string WorkingDirectory() {
  std::vector<char> buffer(256);
  while (getcwd(buffer.data(), buffer.size()) == nullptr) {
    if (errno != ERANGE) return ".";
    buffer.resize(buffer.size() * 2);
  }
  return buffer.data();
}

std::string MakeAbsolute(std::string_view native) {
  if (native.front() == '/') return std::string(native);
  std::string path = WorkingDirectory();
  if (path.back() != '/') path += '/';
  return path.append(native);
}

}  // namespace

std::u16string FromNativePath(std::string_view native) {
  if (native.empty()) return {};
  std::string path = MakeAbsolute(native);
  const std::size_t start = path.find_first_not_of('/');
  if (start == std::string::npos) return u"\\";
  if (path.front() == '/') path.erase(0, start - 1);
  if (path.rfind('/') == 0) path.insert(0, "/.");
  return Decode(path, TextKind::kPath);
}

std::u16string FromNativeName(std::string_view native) {
  return Decode(native, TextKind::kPath);
}

std::u16string FromNativeText(std::string_view native) {
  return Decode(native, TextKind::kPlain);
}

std::string ToNativePath(std::u16string_view inner) {
  std::string native;
  native.reserve(inner.size());
  while (!inner.empty()) {
    const char32_t character = TakeCharacter(inner);
    if (character == U'\\')
      native += '/';
    else if (StandsForByte(character))
      native += static_cast<char>(character & 0xFF);
    else
      AppendUtf8(native, character);
  }
  return native;
}

}  // namespace Platform
