#include "Platform/Desktop/Utf16.h"

#include <glib.h>

#include <memory>

#include "Platform/Desktop/Handles.h"

namespace Platform {

std::u16string ToUtf16(std::string_view utf8) {
  const std::unique_ptr<char, Releaser<g_free>> valid(
      g_utf8_make_valid(utf8.data(), static_cast<gssize>(utf8.size())));
  glong length = 0;
  const std::unique_ptr<gunichar2, Releaser<g_free>> units(
      g_utf8_to_utf16(valid.get(), -1, nullptr, &length, nullptr));
  return {units.get(), units.get() + length};
}

}  // namespace Platform
