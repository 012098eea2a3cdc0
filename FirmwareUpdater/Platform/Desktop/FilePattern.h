#pragma once

#include <string>
#include <string_view>

namespace Platform {

// The pattern as dialogs take it that mind case: "*.Bin" becomes "*.[bB][iI][nN]". Letters beyond ASCII
// stay as they are.
std::string AnyCasePattern(std::u16string_view pattern);

}  // namespace Platform
