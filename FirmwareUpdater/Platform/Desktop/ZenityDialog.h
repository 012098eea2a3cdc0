#pragma once

#include <optional>
#include <string>

#include "Platform/FileChooser.h"

namespace Platform {

// Asks by the program zenity. Empty where it cannot be started, with the reason in why. A descriptor that can
// be read from ends the dialog as if the user had cancelled it.
//
// Threads: any; returns when there is an answer.
std::optional<FileChoice> AskZenity(const FileRequest& request, int cancelDescriptor, std::string& why);

}  // namespace Platform
