#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Platform {

// The decoder refuses pictures beyond these, whatever their bytes say.
inline constexpr std::uint32_t kMaxPictureSide = 16384;  // Pixels.
inline constexpr std::uint32_t kMaxPicturePixels = 16 * 1024 * 1024;

// A decoded picture: rows from the top, each from the left, without gaps. A pixel is 0xAARRGGBB
// and not premultiplied.
struct Picture {
  std::uint32_t mWidth = 0;
  std::uint32_t mHeight = 0;
  std::vector<std::uint32_t> mPixels;
};

// Decodes a PNG of any kind; channels of 16 bits are rounded to 8. The stored values are taken as
// they are, without colour correction. Nothing when the picture is damaged, cut or too large.
// Any thread.
std::optional<Picture> DecodePng(std::span<const unsigned char> bytes);

}  // namespace Platform
