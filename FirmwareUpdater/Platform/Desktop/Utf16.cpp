#include "Platform/Desktop/Utf16.h"

#include <glib.h>

#include <memory>

#include "Platform/Desktop/CleanUtf8.h"
#include "Platform/Desktop/Handles.h"

namespace Platform {

std::u16string ToUtf16(std::string_view utf8) {
  const std::string valid = CleanUtf8(utf8);
  glong length = 0;
  const std::unique_ptr<gunichar2, Releaser<g_free>> units(
      g_utf8_to_utf16(valid.c_str(), -1, nullptr, &length, nullptr));
  return {units.get(), units.get() + length};
}

}  // namespace Platform
