#pragma once

#include <string_view>

// Writes each line that the gallery shows to standard output, for programs that drive it. Main thread.
void TraceLine(std::string_view text);
