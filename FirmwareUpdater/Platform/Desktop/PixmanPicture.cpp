#include "Platform/Desktop/PixmanPicture.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

constexpr std::uint32_t kAlphaMask = 0xFF000000;
// Pixels. The library counts in 16 bits with a sign.
constexpr std::int32_t kMaxPlainSide = 30000;

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
  mImage = MakeImage(mPixels.data(), width, height);
}

PixmanImageHandle PixmanPicture::MakeImage(std::uint32_t* pixels, std::int32_t width,
                                           std::int32_t height) const {
  PixmanImageHandle image(
      pixman_image_create_bits_no_clear(mIsOpaque ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8, width, height, pixels,
                                        mWidth * static_cast<int>(sizeof(std::uint32_t))));
  if (!image) throw std::bad_alloc();
  return image;
}

bool PixmanPicture::IsHuge() const {
  return mWidth > kMaxPlainSide || mHeight > kMaxPlainSide;
}

PixmanImageHandle PixmanPicture::Cutout(const PixelRect& part) const {
  const auto first = static_cast<std::size_t>(part.mY) * static_cast<std::size_t>(mWidth) +
                     static_cast<std::size_t>(part.mX);
  return MakeImage(mPixels.data() + first, part.mWidth, part.mHeight);
}

}  // namespace Platform
