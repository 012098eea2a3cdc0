#pragma once

#include <cstddef>
#include <cstdint>

struct SDL_Window;

// What SDL knows no call for.
namespace Platform {

// The window's number on an X11 display, else 0.
std::uintptr_t NativeHandleOf(SDL_Window* window);

// Whether the right Alt key chooses a third character in the present layout. Where that cannot be asked
// it counts as true: typing goes before shortcuts.
bool HasAltGr();

// How large a text may be so that the display takes it in one piece, as SDL hands it over.
std::size_t MostBytesAtOnce();

// From now on an error that the X server reports is only written down. Unforgiven it would end the
// program, and SDL itself causes some: its wake-ups go to windows that may be gone by then.
void ForgiveDisplayErrors();

}  // namespace Platform
