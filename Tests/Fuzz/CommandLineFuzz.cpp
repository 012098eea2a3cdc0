#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "Engine/CommandLineOptions.h"

// The first line of the input is an option, the rest a command line. What is found must stand
// in the command line as the rules say.

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

void CheckValue(std::u16string_view line, std::u16string_view option, std::u16string_view value) {
  const std::size_t end = TF::String(line).ToUpper().View().find(option) + option.size();
  Require(line.substr(end, value.size()) == value);
  const std::u16string_view rest = line.substr(end + value.size());
  if (!value.starts_with(u'"')) {
    Require(value.find(u' ') == std::u16string_view::npos && (rest.empty() || rest.front() == u' '));
  } else {
    const std::size_t closing = value.find(u'"', 1);
    Require(closing == std::u16string_view::npos ? rest.empty() : closing + 1 == value.size());
  }
}

void CheckOption(const TF::String& line, const TF::String& option) {
  TF::String value(u"left over");
  const bool found = FindOption(line, option, value);
  if (!found) return Require(value.IsEmpty());
  Require(option.Length() >= 2 && option[0] == u'-');
  if (option.View().back() == u'=')
    CheckValue(line.View(), option.View(), value.View());
  else
    Require(value.IsEmpty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t lineEnd = input.find('\n');
  const TF::String option = TF::FromUtf8(input.substr(0, lineEnd));
  const TF::String line =
      TF::FromUtf8(lineEnd == std::string_view::npos ? std::string_view() : input.substr(lineEnd + 1));
  CheckOption(line, option);
  for (const char16_t* known :
       {CommandLineOption::kSilent, CommandLineOption::kSilentIfUpdateNotNeeded,
        CommandLineOption::kAbsoluteFirmwareFilePath, CommandLineOption::kFirmwareImageName}) {
    CheckOption(line, known);
  }
  return 0;
}
