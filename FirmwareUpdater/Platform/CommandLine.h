#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Platform {

// Makes the one line that the program's options are searched in: programPath (inner form),
// then the arguments, parted by one blank. An argument with a blank is quoted, after its first
// "=" if it has one, else as a whole; so is a program path with a blank.
//
// The value of "-ABSOLUTE_FIRMWARE_FILE_PATH=" becomes an absolute inner path, the one of
// "-FIRMWARE_IMAGE_NAME=" an inner name; both options in any case. An empty value, and one
// that begins with a double quote, stays as it is.
std::u16string JoinCommandLine(std::u16string_view programPath, std::span<const std::string> arguments);

}  // namespace Platform
