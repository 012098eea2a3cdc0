#include "Platform/DebugOutput.h"

#include <syslog.h>

#include <algorithm>
#include <cstddef>

namespace Platform {

void WriteDebugOutput(std::string_view text) {
  constexpr std::size_t kLongestText = 0xFFFF;  // Longer ones the log would not take anyway.
  if (text.empty()) return;
  const auto length = static_cast<int>(std::min(text.size(), kLongestText));
  syslog(LOG_USER | LOG_DEBUG, "%.*s", length, text.data());
}

}  // namespace Platform
