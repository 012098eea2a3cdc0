#include "Platform/PngEncoder.h"

#include <png.h>

#include <new>
#include <stdexcept>

namespace Platform {

std::vector<unsigned char> EncodePng(const Picture& picture) {
  if (picture.mWidth == 0 || picture.mHeight == 0 ||
      picture.mPixels.size() != std::size_t{picture.mWidth} * picture.mHeight) {
    throw std::invalid_argument("a picture without its pixels");
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.mWidth;
  image.height = picture.mHeight;
  image.format = PNG_FORMAT_BGRA;
  png_alloc_size_t size = 0;
  const auto write = [&](void* memory) {
    if (png_image_write_to_memory(&image, memory, &size, 0, picture.mPixels.data(), 0, nullptr) == 0)
      throw std::bad_alloc();
  };
  write(nullptr);
  std::vector<unsigned char> file(size);
  write(file.data());
  file.resize(size);
  return file;
}

}  // namespace Platform
