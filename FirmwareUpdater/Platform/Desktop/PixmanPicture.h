#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Canvas.h"
#include "Platform/Desktop/Handles.h"

namespace Platform {

class PixmanPicture : public CanvasPicture {
 public:
  // Throws invalid_argument when the pixels are not width times height.
  PixmanPicture(std::int32_t width, std::int32_t height, std::vector<std::uint32_t> pixels);

  std::int32_t GetWidth() const { return mWidth; }
  std::int32_t GetHeight() const { return mHeight; }
  // Without a transparent pixel, so that copying does.
  bool IsOpaque() const { return mIsOpaque; }
  pixman_image_t* GetImage() const { return mImage.get(); }
  // True when places in the image do not fit the library's numbers, so that drawing needs a cutout.
  bool IsHuge() const;
  // A part of the image as an image of its own, over the same pixels.
  PixmanImageHandle Cutout(const PixelRect& part) const;

 private:
  PixmanImageHandle MakeImage(std::uint32_t* pixels, std::int32_t width, std::int32_t height) const;

  const std::int32_t mWidth;
  const std::int32_t mHeight;
  mutable std::vector<std::uint32_t> mPixels;  // The library takes them for writable.
  const bool mIsOpaque;
  PixmanImageHandle mImage;
};

}  // namespace Platform
