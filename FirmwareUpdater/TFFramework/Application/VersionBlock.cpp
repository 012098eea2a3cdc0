#include "TFFramework/Application/VersionBlock.h"

#include <charconv>

namespace TF {

namespace {

constexpr std::string_view kFirstLine = "version block";
constexpr std::string_view kTranslation = "translation ";
constexpr std::string_view kLastLine = "end";
constexpr std::size_t kMaxSize = 65536;  // Bytes.
constexpr std::size_t kDigits = 4;
constexpr int kHexadecimal = 16;

// The next line without its line feed; nothing when no whole line is left.
std::optional<std::string_view> TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  if (end == text.npos) return std::nullopt;
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end + 1);
  return line;
}

std::optional<std::uint32_t> ParseNumber(std::string_view digits) {
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, kHexadecimal);
  if (digits.size() != kDigits || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

bool Convert(std::string_view text, String& out) {
  return !Failed(String::FromUTF8(out, text.data(), static_cast<std::int32_t>(text.size())));
}

}  // namespace

std::optional<VersionBlock> VersionBlock::Parse(std::span<const unsigned char> bytes) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.size() > kMaxSize) return std::nullopt;
  if (text.find('\0') != text.npos || TakeLine(text) != kFirstLine) return std::nullopt;
  VersionBlock block;
  for (;;) {
    const auto line = TakeLine(text);
    if (!line) return std::nullopt;
    if (*line == kLastLine) break;
    if (!block.ParseLine(*line)) return std::nullopt;
  }
  if (!text.empty()) return std::nullopt;
  return block;
}

bool VersionBlock::ParseLine(std::string_view line) {
  if (line.starts_with(kTranslation)) return ParseTranslation(line.substr(kTranslation.size()));
  const std::size_t equals = line.find('=');
  if (equals == line.npos || equals == 0 || mTranslations.empty()) return false;
  String key, text;
  if (!Convert(line.substr(0, equals), key) || !Convert(line.substr(equals + 1), text)) return false;
  mTranslations.back().mStrings.emplace_back(key, text);
  return true;
}

bool VersionBlock::ParseTranslation(std::string_view numbers) {
  if (numbers.size() != 2 * kDigits + 1 || numbers[kDigits] != ' ') return false;
  const auto language = ParseNumber(numbers.substr(0, kDigits));
  const auto codePage = ParseNumber(numbers.substr(kDigits + 1));
  if (!language || !codePage) return false;
  mTranslations.push_back({*language, *codePage, {}});
  return true;
}

}  // namespace TF
