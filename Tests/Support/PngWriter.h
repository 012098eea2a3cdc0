#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace TestSupport {

using Bytes = std::vector<unsigned char>;

// One colour of a palette; or with red alone a gray.
struct PngColor {
  std::uint16_t mRed = 0;
  std::uint16_t mGreen = 0;
  std::uint16_t mBlue = 0;
};

// What a written PNG is made of. The kinds are those of the file format: 0 gray, 2 red green blue,
// 3 palette, 4 gray with alpha, 6 red green blue alpha.
struct PngImage {
  std::uint32_t mWidth = 1;
  std::uint32_t mHeight = 1;
  int mBits = 8;
  int mKind = 6;
  Bytes mRows = {};  // The packed rows, one after the other.
  bool mInterlaced = false;
  std::vector<PngColor> mPalette = {};
  Bytes mPaletteAlpha = {};                 // Of the first entries.
  std::vector<PngColor> mTransparent = {};  // At most one: the colour that has no alpha.
};

// The file; throws runtime_error when the library refuses.
Bytes WritePng(const PngImage& image);

// The same for pixels 0xAARRGGBB.
Bytes WriteArgbPng(std::uint32_t width, std::uint32_t height, const std::vector<std::uint32_t>& pixels);

// One chunk of a file, with its length and checksum.
Bytes PngChunk(std::string_view type, const Bytes& contents);

}  // namespace TestSupport
