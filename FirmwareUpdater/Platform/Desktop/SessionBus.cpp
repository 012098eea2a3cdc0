#include "Platform/Desktop/SessionBus.h"

#include <gio/gio.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>

#include "Platform/Desktop/Handles.h"

namespace Platform {

namespace {

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

std::string SessionBusAddress() {
  const std::string address = Variable("DBUS_SESSION_BUS_ADDRESS");
  if (!address.empty()) return g_dbus_is_supported_address(address.c_str(), nullptr) ? address : "";
  const std::string path = Variable("XDG_RUNTIME_DIR") + "/bus";
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) return {};
  const std::unique_ptr<char, Releaser<g_free>> escaped(g_dbus_address_escape_value(path.c_str()));
  return std::string("unix:path=") + escaped.get();
}

}  // namespace Platform
