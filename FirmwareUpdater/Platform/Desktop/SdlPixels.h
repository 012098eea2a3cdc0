#pragma once

#include <SDL_surface.h>

#include <memory>

#include "Platform/Canvas.h"
#include "Platform/Desktop/Handles.h"

namespace Platform {

using SdlSurfaceHandle = std::unique_ptr<SDL_Surface, Releaser<SDL_FreeSurface>>;

// SDL's view of the pixels, which must outlive it. Throws runtime_error.
SdlSurfaceHandle ViewSurface(const PixelView& pixels, std::uint32_t format);

// A copy with the colours as they were before alpha was multiplied into them; null for an empty picture.
SdlSurfaceHandle StraightCopy(const PixelView& pixels);

}  // namespace Platform
