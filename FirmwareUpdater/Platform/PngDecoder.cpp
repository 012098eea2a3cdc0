#include "Platform/PngDecoder.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstring>

namespace Platform {

namespace {

// Pixels leave the library as bytes blue, green, red, alpha.
static_assert(std::endian::native == std::endian::little);

constexpr png_uint_32 kOpaque = 0xFF;
constexpr png_alloc_size_t kMaxChunk = 4 * 1024 * 1024;  // Bytes.
constexpr std::size_t kPixelSize = sizeof(std::uint32_t);

// The library reports an error by a jump back to the setjmp of the Guarded function that called
// it. Such a function holds no object with a destructor, and the members live outside of it.
class PngReader {
 public:
  explicit PngReader(std::span<const unsigned char> bytes) : mLeft(bytes) {}
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader() { png_destroy_read_struct(&mPng, &mInfo, nullptr); }

  std::optional<Picture> Read();

 private:
  static void FailQuietly(png_structp png, png_const_charp) { png_longjmp(png, 1); }
  static void IgnoreWarning(png_structp, png_const_charp) {}
  static void ReadBytes(png_structp png, png_bytep out, std::size_t count);

  bool Create();
  bool GuardedReadHeader();
  bool GuardedReadPixels(std::uint32_t* pixels);
  void AskForArgb();

  png_structp mPng = nullptr;
  png_infop mInfo = nullptr;
  std::span<const unsigned char> mLeft;
  png_uint_32 mWidth = 0;
  png_uint_32 mHeight = 0;
  int mPasses = 1;
};

void PngReader::ReadBytes(png_structp png, png_bytep out, std::size_t count) {
  auto& left = static_cast<PngReader*>(png_get_io_ptr(png))->mLeft;
  if (count > left.size()) png_error(png, "cut");
  std::memcpy(out, left.data(), count);
  left = left.subspan(count);
}

bool PngReader::Create() {
  mPng = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, FailQuietly, IgnoreWarning);
  if (!mPng) return false;
  mInfo = png_create_info_struct(mPng);
  return mInfo != nullptr;
}

// What does not change pixels is skipped unread: a damaged text or profile spoils no picture.
bool PngReader::GuardedReadHeader() {
  if (setjmp(png_jmpbuf(mPng)) != 0) return false;
  png_set_read_fn(mPng, this, ReadBytes);
  png_set_user_limits(mPng, kMaxPictureSide, kMaxPictureSide);
  png_set_chunk_malloc_max(mPng, kMaxChunk);
  png_set_keep_unknown_chunks(mPng, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  png_read_info(mPng, mInfo);
  mWidth = png_get_image_width(mPng, mInfo);
  mHeight = png_get_image_height(mPng, mInfo);
  return std::uint64_t{mWidth} * mHeight <= kMaxPicturePixels;
}

void PngReader::AskForArgb() {
  png_set_expand(mPng);  // Palettes, few bits and the transparent colour, to channels of 8 bits.
  png_set_scale_16(mPng);
  png_set_gray_to_rgb(mPng);
  png_set_add_alpha(mPng, kOpaque, PNG_FILLER_AFTER);
  png_set_bgr(mPng);
  mPasses = png_set_interlace_handling(mPng);
  png_read_update_info(mPng, mInfo);
}

bool PngReader::GuardedReadPixels(std::uint32_t* pixels) {
  if (setjmp(png_jmpbuf(mPng)) != 0) return false;
  AskForArgb();
  if (png_get_rowbytes(mPng, mInfo) != mWidth * kPixelSize) return false;
  for (int pass = 0; pass < mPasses; ++pass) {
    for (png_uint_32 y = 0; y < mHeight; ++y) {
      png_read_row(mPng, reinterpret_cast<png_bytep>(pixels + std::size_t{y} * mWidth), nullptr);
    }
  }
  png_read_end(mPng, nullptr);  // Fails when the end is missing.
  return true;
}

std::optional<Picture> PngReader::Read() {
  if (!Create() || !GuardedReadHeader()) return std::nullopt;
  Picture picture{mWidth, mHeight, std::vector<std::uint32_t>(std::size_t{mWidth} * mHeight)};
  if (!GuardedReadPixels(picture.mPixels.data())) return std::nullopt;
  return picture;
}

}  // namespace

std::optional<Picture> DecodePng(std::span<const unsigned char> bytes) {
  return PngReader(bytes).Read();
}

}  // namespace Platform
