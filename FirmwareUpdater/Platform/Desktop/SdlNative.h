#pragma once

#include <cstdint>

struct SDL_Window;

// What SDL knows no call for.
namespace Platform {

// The window's number on an X11 display, else 0.
std::uintptr_t NativeHandleOf(SDL_Window* window);

// Whether the right Alt key chooses a third character in the present layout. Where that cannot be asked
// it counts as true: typing goes before shortcuts.
bool HasAltGr();

}  // namespace Platform
