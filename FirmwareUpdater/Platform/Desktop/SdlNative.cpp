#include "Platform/Desktop/SdlNative.h"

#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

#include "Platform/DebugOutput.h"
#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/SdlVideo.h"

namespace Platform {

namespace {

constexpr xcb_keycode_t kRightAltKeycode = 108;
constexpr xcb_keysym_t kLevel3Shift = 0xFE03;
constexpr xcb_keysym_t kModeSwitch = 0xFF7E;

constexpr std::size_t kSmallestRequest = 0x4000;  // Bytes that every X server takes.
constexpr std::size_t kRequestHeader = 64;        // More than there is around a text.

int WriteDownError(Display*, XErrorEvent* error) {
  WriteDebugOutput("The X server reports error " + std::to_string(error->error_code) + " of request " +
                   std::to_string(error->request_code) + "." + std::to_string(error->minor_code));
  return 0;
}

}  // namespace

std::uintptr_t NativeHandleOf(SDL_Window* window) {
  SDL_SysWMinfo info{};
  SDL_VERSION(&info.version);
  if (SDL_GetWindowWMInfo(window, &info) != SDL_TRUE || info.subsystem != SDL_SYSWM_X11) return 0;
  return info.info.x11.window;
}

bool HasAltGr() {
  if (!IsOnX11()) return true;
  const std::unique_ptr<xcb_connection_t, Releaser<xcb_disconnect>> connection(xcb_connect(nullptr, nullptr));
  const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, Releaser<std::free>> reply(
      xcb_get_keyboard_mapping_reply(
          connection.get(), xcb_get_keyboard_mapping(connection.get(), kRightAltKeycode, 1), nullptr));
  if (!reply) return true;
  const xcb_keysym_t* const first = xcb_get_keyboard_mapping_keysyms(reply.get());
  const xcb_keysym_t* const end = first + xcb_get_keyboard_mapping_keysyms_length(reply.get());
  return std::any_of(first, end,
                     [](xcb_keysym_t symbol) { return symbol == kLevel3Shift || symbol == kModeSwitch; });
}

std::size_t MostBytesAtOnce() {
  if (!IsOnX11()) return std::numeric_limits<std::size_t>::max();
  const std::unique_ptr<xcb_connection_t, Releaser<xcb_disconnect>> connection(xcb_connect(nullptr, nullptr));
  // In units of four bytes; 0 without a connection.
  const std::size_t most = std::size_t{xcb_get_maximum_request_length(connection.get())} * 4;
  return std::max(most, kSmallestRequest) - kRequestHeader;
}

void ForgiveDisplayErrors() {
  XSetErrorHandler(WriteDownError);
}

}  // namespace Platform
