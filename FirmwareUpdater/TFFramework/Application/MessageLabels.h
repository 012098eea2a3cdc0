#pragma once

#include <cstdint>

#include "Platform/WindowSystem.h"

namespace TF {

// What the buttons of messages say in the language of an identifier as LFrameworkApp::GetLanguage gives
// it; English for languages that the program does not speak.
Platform::MessageLabels MessageLabelsOf(std::uint32_t language);

}  // namespace TF
