#pragma once

#include <cairo.h>

#include <cstdint>

#include "Platform/WindowSystem.h"

namespace Platform {

// An opaque colour as 0xRRGGBB.
void SetColor(cairo_t* cairo, std::uint32_t color);

// Fills the square; kNone draws nothing.
void DrawMessageIcon(cairo_t* cairo, MessageIcon icon, const PixelRect& square);

}  // namespace Platform
