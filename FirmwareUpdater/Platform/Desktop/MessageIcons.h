#pragma once

#include <cairo.h>

#include "Platform/WindowSystem.h"

namespace Platform {

// Fills the square; kNone draws nothing.
void DrawMessageIcon(cairo_t* cairo, MessageIcon icon, const PixelRect& square);

}  // namespace Platform
