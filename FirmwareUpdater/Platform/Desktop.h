#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Platform/Canvas.h"
#include "Platform/ProfileStore.h"
#include "Platform/SplashSurface.h"
#include "Platform/WindowSystem.h"

namespace Platform {

// What only a program with a screen needs. It lives in a module of its own, so that a program that
// shows nothing does not pay for loading the libraries behind it.
//
// Threads: main thread, OpenSplash excepted.
class Desktop {
 public:
  virtual ~Desktop() = default;

  // A side below 1 counts as 1. Throws bad_alloc for what no memory holds.
  virtual std::unique_ptr<Canvas> CreateCanvas(std::int32_t width, std::int32_t height) = 0;
  // Takes width times height pixels, 0xAARRGGBB and premultiplied. Throws invalid_argument for
  // another number of them.
  virtual std::unique_ptr<CanvasPicture> CreatePicture(std::int32_t width, std::int32_t height,
                                                       std::vector<std::uint32_t> pixels) = 0;
  virtual std::unique_ptr<CanvasPath> CreatePath(CanvasPathKind kind,
                                                 std::span<const CanvasPoint> points) = 0;
  // Null for a size that is not above 0. A size that no screen holds counts as the largest one.
  virtual std::unique_ptr<CanvasFont> OpenFont(const FontDescription& description) = 0;

  // Any thread, which then owns the surface. An empty title gives a window that stands in no list of
  // windows. Throws runtime_error without a display that can show it.
  virtual std::unique_ptr<SplashSurface> OpenSplash(const SplashPicture& picture,
                                                    const std::string& title) = 0;

  // Started at the first call; lives as long as the process. Throws runtime_error that names the display
  // when that shows no windows; the next call tries again.
  virtual WindowSystem& GetWindowSystem() = 0;

  // The store in a file at an inner path, which need not exist yet.
  virtual std::unique_ptr<ProfileStore> OpenProfile(const std::u16string& path) = 0;
};

// The desktop of this process. The first call loads the module, which stands beside the program and
// stays. Throws runtime_error when it is not there or does not load; the next call tries again.
Desktop& GetDesktop();

}  // namespace Platform
