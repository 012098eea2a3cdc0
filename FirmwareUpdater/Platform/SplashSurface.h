#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Platform/EventHandle.h"

namespace Platform {

// What a splash window shows: rows of opaque 0xFFRRGGBB pixels without gaps.
struct SplashPicture {
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  std::span<const std::uint32_t> mPixels;
};

// A window without a frame in the middle of the screen's work area, above the others. It stands on a
// connection of its own to the display and goes with the object.
//
// Threads: the one that opened it.
class SplashSurface {
 public:
  SplashSurface() = default;
  SplashSurface(const SplashSurface&) = delete;
  SplashSurface& operator=(const SplashSurface&) = delete;
  virtual ~SplashSurface() = default;

  // Shows a bar over the picture's lower edge, filled up to position, 0 to 100, in 0xFFRRGGBB.
  virtual void ShowBar(std::int32_t position, std::uint32_t color) = 0;

  // Until wake is set or the time is over; draws again what the display asks for meanwhile.
  // kFailed when the display is gone.
  virtual WaitStatus Wait(EventHandle& wake, std::uint32_t milliseconds) = 0;
};

}  // namespace Platform
