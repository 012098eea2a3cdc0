#include "TFFramework/Application/DiagnosticsOptions.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr std::string_view kConsoleOption = "-DEBUG_CONSOLE";
constexpr std::string_view kDatagramOption = "-DEBUG_CONSOLE:";

// The number at the start of the text, 0 when there is none or it is too large.
std::int32_t LeadingNumber(std::string_view text) {
  std::int32_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? number : 0;
}

}  // namespace

DiagnosticsOptions ParseDiagnosticsOptions(const String& commandLine) {
  DiagnosticsOptions options;
  const std::string line = ToUtf8(commandLine.ToUpper());
  const std::size_t found = line.find(kDatagramOption);
  if (found == std::string::npos) {
    if (line.find(kConsoleOption) != std::string::npos) options.mRoute = DiagnosticsOptions::Route::kConsole;
    return options;
  }
  const std::size_t port = found + kDatagramOption.size();
  const std::size_t end = std::min(line.find(' ', port), line.size());
  const std::size_t colon = std::min(line.find(':', port), end);
  if (colon <= port + 1) return options;
  options.mRoute = DiagnosticsOptions::Route::kDatagrams;
  options.mPort = LeadingNumber(std::string_view(line).substr(port, colon - port));
  if (colon + 1 < end) options.mHost = line.substr(colon + 1, end - colon - 1);
  return options;
}

void ApplyDiagnosticsOptions(const DiagnosticsOptions& options) {
  switch (options.mRoute) {
    case DiagnosticsOptions::Route::kDebugger:
      break;
    case DiagnosticsOptions::Route::kConsole:
      GetDiagnosticsLog().OpenConsole();
      break;
    case DiagnosticsOptions::Route::kDatagrams:
      GetDiagnosticsLog().SetRemoteTarget(options.mHost.empty() ? nullptr : options.mHost.c_str(),
                                          options.mPort);
      break;
  }
}

}  // namespace TF
