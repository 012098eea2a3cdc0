#include "Platform/Desktop/SdlVideo.h"

#include <SDL.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "Platform/Desktop/SdlNative.h"

namespace Platform {

namespace {

constexpr const char* kX11 = "x11";
constexpr const char* kWayland = "wayland";

bool IsDriver(const char* name) {
  const char* const driver = SDL_GetCurrentVideoDriver();
  return driver && std::string_view(driver) == name;
}

void SetHints() {
  // A window surface through OpenGL takes five times the memory and three times the time to the first
  // picture.
  SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  SDL_SetHint(SDL_HINT_APP_NAME, program_invocation_short_name);
  // The click that activates a window counts, too.
  SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
  // The end of the program is its own decision.
  SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
  // The main thread may be busy for seconds, for which no desktop should offer to end the program.
  SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_PING, "0");
  // The default would join clicks on two neighbours to a double click.
  SDL_SetHint(SDL_HINT_MOUSE_DOUBLE_CLICK_RADIUS, "4");
}

std::string Describe(const char* variable) {
  const char* const value = std::getenv(variable);
  if (!value) return std::string(variable) + " is not set";
  return std::string(variable) + "=\"" + value + "\"";
}

}  // namespace

void StartSdlVideo() {
  SetHints();
  const bool started = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
  // Without a display SDL takes drivers that draw where nobody looks.
  if (!started || !(IsDriver(kX11) || IsDriver(kWayland))) {
    if (started) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    throw std::runtime_error("no display to show windows on: " + Describe("DISPLAY") + ", " +
                             Describe("WAYLAND_DISPLAY"));
  }
  if (IsOnX11()) ForgiveDisplayErrors();
  // There, SDL has no other way to show pixels.
  if (IsDriver(kWayland)) SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "1");
}

bool IsOnX11() {
  return IsDriver(kX11);
}

}  // namespace Platform
