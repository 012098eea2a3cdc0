#include "Tests/Support/PngWriter.h"

#include <png.h>

#include <csetjmp>
#include <span>
#include <stdexcept>

#include "Platform/PngEncoder.h"

namespace TestSupport {

namespace {

void Collect(png_structp png, png_bytep bytes, std::size_t count) {
  auto& out = *static_cast<Bytes*>(png_get_io_ptr(png));
  out.insert(out.end(), bytes, bytes + count);
}

void Discard(png_structp) {}

void AppendBigEndian(Bytes& out, std::uint32_t value) {
  for (const int shift : {24, 16, 8, 0}) out.push_back(static_cast<unsigned char>(value >> shift & 0xFF));
}

std::uint32_t Checksum(std::span<const unsigned char> bytes) {
  std::uint32_t sum = 0xFFFFFFFF;
  for (const unsigned char byte : bytes) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

void WriteColors(png_structp png, png_infop info, const PngImage& image) {
  if (!image.mPalette.empty()) {
    png_color palette[PNG_MAX_PALETTE_LENGTH] = {};
    for (std::size_t at = 0; at < image.mPalette.size(); ++at) {
      const PngColor& color = image.mPalette[at];
      palette[at] = {static_cast<png_byte>(color.mRed), static_cast<png_byte>(color.mGreen),
                     static_cast<png_byte>(color.mBlue)};
    }
    png_set_PLTE(png, info, palette, static_cast<int>(image.mPalette.size()));
  }
  if (!image.mPaletteAlpha.empty()) {
    png_set_tRNS(png, info, image.mPaletteAlpha.data(), static_cast<int>(image.mPaletteAlpha.size()),
                 nullptr);
  }
  if (!image.mTransparent.empty()) {
    const PngColor& color = image.mTransparent[0];
    const png_color_16 transparent{0, color.mRed, color.mGreen, color.mBlue, color.mRed};
    png_set_tRNS(png, info, nullptr, 0, &transparent);
  }
}

bool GuardedWrite(png_structp png, png_infop info, const PngImage& image, Bytes& out) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, &out, Collect, Discard);
  png_set_IHDR(png, info, image.mWidth, image.mHeight, image.mBits, image.mKind,
               image.mInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  WriteColors(png, info, image);
  png_write_info(png, info);
  const int passes = png_set_interlace_handling(png);
  const std::size_t rowSize = png_get_rowbytes(png, info);
  if (image.mRows.size() != rowSize * image.mHeight) return false;
  for (int pass = 0; pass < passes; ++pass) {
    for (std::uint32_t y = 0; y < image.mHeight; ++y) png_write_row(png, image.mRows.data() + y * rowSize);
  }
  png_write_end(png, info);
  return true;
}

}  // namespace

Bytes WritePng(const PngImage& image) {
  Bytes out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  const bool written = GuardedWrite(png, info, image, out);
  png_destroy_write_struct(&png, &info);
  if (!written) throw std::runtime_error("the test picture cannot be written");
  return out;
}

Bytes WriteArgbPng(std::uint32_t width, std::uint32_t height, const std::vector<std::uint32_t>& pixels) {
  return Platform::EncodePng({width, height, pixels});
}

Bytes PngChunk(std::string_view type, const Bytes& contents) {
  Bytes chunk;
  AppendBigEndian(chunk, static_cast<std::uint32_t>(contents.size()));
  chunk.insert(chunk.end(), type.begin(), type.end());
  chunk.insert(chunk.end(), contents.begin(), contents.end());
  AppendBigEndian(chunk, Checksum(std::span(chunk).subspan(4)));
  return chunk;
}

}  // namespace TestSupport
