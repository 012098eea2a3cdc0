#include "Platform/Desktop/PixmanPicture.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

constexpr std::uint32_t kAlphaMask = 0xFF000000;

bool HasOpaquePixelsOnly(const std::vector<std::uint32_t>& pixels) {
  return std::all_of(pixels.begin(), pixels.end(),
                     [](std::uint32_t pixel) { return (pixel & kAlphaMask) == kAlphaMask; });
}

}  // namespace

PixmanPicture::PixmanPicture(std::int32_t width, std::int32_t height, std::vector<std::uint32_t> pixels)
    : mWidth(width), mHeight(height), mPixels(std::move(pixels)), mIsOpaque(HasOpaquePixelsOnly(mPixels)) {
  const bool fits = width > 0 && height > 0 &&
                    mPixels.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (!fits) throw std::invalid_argument("a picture's pixels do not fit its size");
  mImage.reset(pixman_image_create_bits_no_clear(mIsOpaque ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8, width, height,
                                                 mPixels.data(),
                                                 width * static_cast<int>(sizeof(std::uint32_t))));
  if (!mImage) throw std::bad_alloc();
}

}  // namespace Platform
