#include "Platform/CommandLine.h"

#include <array>

#include "Platform/NativePath.h"

namespace Platform {

namespace {

struct PathOption {
  std::string_view name;  // In capitals.
  std::u16string (*convert)(std::string_view native);
};

constexpr std::array kPathOptions{
    PathOption{"-ABSOLUTE_FIRMWARE_FILE_PATH=", FromNativePath},
    PathOption{"-FIRMWARE_IMAGE_NAME=", FromNativeName},
};

char ToCapital(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool BeginsWith(std::string_view argument, std::string_view option) {
  if (argument.size() < option.size()) return false;
  for (std::size_t i = 0; i < option.size(); ++i) {
    if (ToCapital(argument[i]) != option[i]) return false;
  }
  return true;
}

std::u16string Convert(std::string_view argument) {
  for (const auto& option : kPathOptions) {
    if (!BeginsWith(argument, option.name)) continue;
    const std::string_view value = argument.substr(option.name.size());
    if (value.empty() || value.front() == '"') break;
    return FromNativeText(argument.substr(0, option.name.size())) + option.convert(value);
  }
  return FromNativeText(argument);
}

std::u16string Quoted(std::u16string text, std::size_t from) {
  if (text.find(u' ') == text.npos) return text;
  text.insert(from, 1, u'"');
  text += u'"';
  return text;
}

std::size_t BehindFirstEqualSign(const std::u16string& text) {
  const auto equal = text.find(u'=');
  return equal == text.npos ? 0 : equal + 1;
}

}  // namespace

std::u16string JoinCommandLine(std::u16string_view programPath, std::span<const std::string> arguments) {
  std::u16string line = Quoted(std::u16string(programPath), 0);
  for (const auto& argument : arguments) {
    std::u16string text = Convert(argument);
    const std::size_t from = BehindFirstEqualSign(text);
    line += u' ';
    line += Quoted(std::move(text), from);
  }
  return line;
}

}  // namespace Platform
