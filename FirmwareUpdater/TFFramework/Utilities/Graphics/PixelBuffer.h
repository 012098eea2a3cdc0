#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace TF {

// A rectangle of pixels in memory.
template <class Pixel>
class IPixelBuffer {
 public:
  IPixelBuffer() = default;
  IPixelBuffer(const IPixelBuffer&) = default;
  IPixelBuffer& operator=(const IPixelBuffer&) = default;
  virtual ~IPixelBuffer() = default;

  virtual std::int32_t GetWidth() const = 0;
  virtual std::int32_t GetHeight() const = 0;
  // Bytes from one row to the next.
  virtual std::int32_t GetStride() const = 0;
  // The address of the pixel 0, 0.
  virtual Pixel* GetPixels() = 0;
  // x and y must lie in the rectangle.
  virtual Pixel* GetPixelAddress(std::int32_t x, std::int32_t y) = 0;
};

// Pixels of its own, 0 at first.
template <class Pixel>
class LPixelBuffer : public IPixelBuffer<Pixel> {
 public:
  // A side below 0 counts as 0. Throws bad_alloc for what no memory holds.
  LPixelBuffer(std::int32_t width, std::int32_t height)
      : mWidth(width > 0 ? width : 0),
        mHeight(height > 0 ? height : 0),
        mPixels(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight)) {}

  std::int32_t GetWidth() const final { return mWidth; }
  std::int32_t GetHeight() const final { return mHeight; }
  std::int32_t GetStride() const final { return mWidth * static_cast<std::int32_t>(sizeof(Pixel)); }
  Pixel* GetPixels() final { return mPixels.data(); }
  Pixel* GetPixelAddress(std::int32_t x, std::int32_t y) final {
    return mPixels.data() + std::ptrdiff_t{y} * mWidth + x;
  }

 private:
  const std::int32_t mWidth;
  const std::int32_t mHeight;
  std::vector<Pixel> mPixels;
};

}  // namespace TF
