#include "Platform/Desktop.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "Platform/Folders.h"
#include "Platform/NativePath.h"

namespace Platform {

namespace {

constexpr const char16_t* kModuleName = u"\\libtessel-desktop.so";
constexpr const char* kEntryName = "TesselDesktop";

[[noreturn]] void ThrowLoadError() {
  const char* const reason = dlerror();
  throw std::runtime_error(std::string("cannot load the desktop module: ") + (reason ? reason : "unknown"));
}

Desktop& LoadDesktop() {
  const std::string path = ToNativePath(ProgramFolder() + kModuleName);
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!module) ThrowLoadError();
  void* const entry = dlsym(module, kEntryName);
  if (!entry) ThrowLoadError();
  Desktop* const desktop = reinterpret_cast<Desktop* (*)()>(entry)();
  return *desktop;
}

}  // namespace

Desktop& GetDesktop() {
  static Desktop& desktop = LoadDesktop();
  return desktop;
}

}  // namespace Platform
