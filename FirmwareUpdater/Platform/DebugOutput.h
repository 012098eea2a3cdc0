#pragma once

#include <string_view>

namespace Platform {

// Shows UTF-8 text to a developer who looks for it, in the system's log at debug level, and
// nowhere else. Never fails; an empty text is none. Any thread.
void WriteDebugOutput(std::string_view text);

}  // namespace Platform
