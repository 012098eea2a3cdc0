#include "Engine/CommandLineOptions.h"

#include <string_view>

namespace {

constexpr char16_t kBlank = u' ';
constexpr char16_t kQuote = u'"';

bool IsWellFormedOption(std::u16string_view option) {
  return option.size() >= 2 && option.front() == u'-';
}

// rest is the line behind the option.
std::u16string_view ValueAtStartOf(std::u16string_view rest) {
  if (!rest.empty() && rest.front() == kQuote) {
    const std::size_t closing = rest.find(kQuote, 1);
    return closing == std::u16string_view::npos ? rest : rest.substr(0, closing + 1);
  }
  return rest.substr(0, rest.find(kBlank));
}

}  // namespace

bool FindOption(const TF::String& commandLine, const TF::String& option, TF::String& value) {
  value = TF::String();
  if (!IsWellFormedOption(option.View())) return false;
  const std::int32_t position = commandLine.ToUpper().Find(option.View());
  if (position < 0) return false;

  const std::u16string_view rest =
      commandLine.View().substr(static_cast<std::size_t>(position + option.Length()));
  const bool blankFollows = !rest.empty() && rest.front() == kBlank;
  if (option.View().back() != u'=') return rest.empty() || blankFollows;
  if (blankFollows) return false;
  value = TF::String(ValueAtStartOf(rest));
  return true;
}
