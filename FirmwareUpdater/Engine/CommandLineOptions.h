#pragma once

#include "TFFramework/Utilities/Storage/StringT.h"

// The options of the scripting interface. They are found whatever their case; values keep the
// case in which they were typed.
namespace CommandLineOption {

inline constexpr const char16_t* kAlwaysUpdate = u"-ALWAYS_UPDATE";
inline constexpr const char16_t* kReturnUpdateModeStatus = u"-RETURN_UPDATE_MODE_STATUS";
inline constexpr const char16_t* kSilentIfUpdateNotNeeded = u"-SILENT_IF_UPDATE_NOT_NEEDED";
inline constexpr const char16_t* kSilent = u"-SILENT";
inline constexpr const char16_t* kStartUpdateAutomatically = u"-START_UPDATE_AUTOMATICALLY";
inline constexpr const char16_t* kAbsoluteFirmwareFilePath = u"-ABSOLUTE_FIRMWARE_FILE_PATH=";
inline constexpr const char16_t* kFirmwareImageName = u"-FIRMWARE_IMAGE_NAME=";

}  // namespace CommandLineOption

// Looks for option, which begins with "-" and is written in capitals, in the whole command
// line. Only its first occurrence counts. An option that ends with "=" takes the text behind
// it, up to the next blank or the end of the line, or from a double quote through the next
// one, quotes included; a blank right behind the sign means that the option is absent. Any
// other option must be followed by a blank or by the end of the line.
//
// value is empty unless an option with a value was found.
bool FindOption(const TF::String& commandLine, const TF::String& option, TF::String& value);
