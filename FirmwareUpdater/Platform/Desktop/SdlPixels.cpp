#include "Platform/Desktop/SdlPixels.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

namespace Platform {

namespace {

constexpr int kPixelBits = 32;
constexpr std::uint32_t kOpaque = 0xFF;
constexpr int kAlphaShift = 24;

std::uint32_t Straighten(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> kAlphaShift;
  if (alpha == 0 || alpha == kOpaque) return alpha == 0 ? 0 : pixel;
  std::uint32_t result = alpha << kAlphaShift;
  for (int shift = 0; shift < kAlphaShift; shift += 8) {
    const std::uint32_t channel = pixel >> shift & 0xFF;
    result |= std::min((channel * kOpaque + alpha / 2) / alpha, kOpaque) << shift;
  }
  return result;
}

}  // namespace

SdlSurfaceHandle ViewSurface(const PixelView& pixels, std::uint32_t format) {
  // SDL only reads from it.
  auto* const data = const_cast<std::uint32_t*>(pixels.mPixels);
  SdlSurfaceHandle surface(SDL_CreateRGBSurfaceWithFormatFrom(data, pixels.mWidth, pixels.mHeight, kPixelBits,
                                                              static_cast<int>(pixels.mStride), format));
  if (!surface) throw std::runtime_error(std::string("cannot use a picture: ") + SDL_GetError());
  return surface;
}

SdlSurfaceHandle StraightCopy(const PixelView& pixels) {
  if (pixels.mWidth <= 0 || pixels.mHeight <= 0) return nullptr;
  SdlSurfaceHandle copy(
      SDL_CreateRGBSurfaceWithFormat(0, pixels.mWidth, pixels.mHeight, kPixelBits, SDL_PIXELFORMAT_ARGB8888));
  if (!copy) return nullptr;
  for (std::int32_t y = 0; y < pixels.mHeight; ++y) {
    const auto* const from = reinterpret_cast<const std::uint32_t*>(
        reinterpret_cast<const std::byte*>(pixels.mPixels) + static_cast<std::size_t>(y) * pixels.mStride);
    auto* const to =
        reinterpret_cast<std::uint32_t*>(static_cast<std::byte*>(copy->pixels) + y * copy->pitch);
    std::transform(from, from + pixels.mWidth, to, Straighten);
  }
  return copy;
}

}  // namespace Platform
