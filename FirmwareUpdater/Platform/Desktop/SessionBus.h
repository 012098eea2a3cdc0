#pragma once

#include <string>

namespace Platform {

// Where the user's session bus is to be found; empty where there is none. Who asks GLib instead may start a
// bus that stays behind.
std::string SessionBusAddress();

}  // namespace Platform
