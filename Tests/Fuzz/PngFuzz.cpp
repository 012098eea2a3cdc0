#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "Platform/PngDecoder.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/BitmapData.h"
#include "TFFramework/Utilities/Storage/Resources.h"

// Whatever the file, a picture that loads has the pixels that were decoded, within the limits, and
// tinting a copy of it changes neither the picture nor any alpha.

namespace {

constexpr std::size_t kFirstChunk = 8;      // Behind the signature.
constexpr std::size_t kChunkOverhead = 12;  // Length, type and checksum.
constexpr std::size_t kLengthSize = 4;
constexpr std::uint32_t kAlpha = 0xFF000000;
constexpr std::size_t kMaxTinted = 65536;  // Pixels, so that runs stay short.

void Require(bool condition) {
  if (!condition) std::abort();
}

std::uint32_t ReadBigEndian(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
         bytes[3];
}

std::uint32_t Checksum(std::span<const std::uint8_t> bytes) {
  std::uint32_t sum = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

void CompareWithDecoded(TF::LBitmap& bitmap, const Platform::Picture& picture) {
  Require(picture.mWidth <= Platform::kMaxPictureSide && picture.mHeight <= Platform::kMaxPictureSide);
  Require(picture.mPixels.size() == std::size_t{picture.mWidth} * picture.mHeight);
  Require(picture.mPixels.size() <= Platform::kMaxPicturePixels);
  Require(bitmap.GetWidth() == static_cast<std::int32_t>(picture.mWidth));
  Require(bitmap.GetHeight() == static_cast<std::int32_t>(picture.mHeight));
  Require(bitmap.GetImage()->mPicture.mPixels == picture.mPixels);
}

void Tint(TF::LBitmap& bitmap, const Platform::Picture& picture) {
  const auto colorizer = TF::MakeRC<TF::LColorizer>();
  colorizer->mColor = {1, 0.5F, 0, 0.75F};
  const auto part = bitmap.CreateSubBitmap(bitmap.GetWidth() / 2, bitmap.GetHeight() / 2, 0, 0);
  const auto tinted = TF::LBitmap::CreateColorizedBitmap(colorizer, 1, {}, part, nullptr);
  const auto& after = tinted->GetImage()->mPicture.mPixels;
  Require(after.size() == picture.mPixels.size());
  Require(std::equal(after.begin(), after.end(), picture.mPixels.begin(),
                     [](std::uint32_t one, std::uint32_t other) { return ((one ^ other) & kAlpha) == 0; }));
  Require(bitmap.GetImage()->mPicture.mPixels == picture.mPixels);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Without sound checksums hardly a mutation would get past the first chunk.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  size = LLVMFuzzerMutate(data, size, maxSize);
  if (seed % 16 == 0) return size;  // Unsound ones are worth a try too.
  std::size_t at = kFirstChunk;
  while (size >= at + kChunkOverhead && ReadBigEndian(data + at) <= size - at - kChunkOverhead) {
    const std::size_t checked = kLengthSize + ReadBigEndian(data + at);
    const std::uint32_t sum = Checksum({data + at + kLengthSize, checked});
    std::uint8_t* const out = data + at + kLengthSize + checked;
    for (int index = 0; index < 4; ++index) out[index] = static_cast<std::uint8_t>(sum >> (24 - 8 * index));
    at += kLengthSize + checked + 4;
  }
  return size;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<unsigned char> file(data, data + size);
  const TF::Resource resources[] = {{u"GDIPLUS", u"PICTURE_PNG", file}};
  TF::SetResources(resources);
  const auto bitmap = TF::LBitmap::LoadBitmap(u"::Picture.png");
  TF::SetResources({});

  const auto picture = Platform::DecodePng(file);
  Require(picture.has_value() == static_cast<bool>(bitmap));
  if (!picture) return 0;
  CompareWithDecoded(*bitmap, *picture);
  if (picture->mPixels.size() <= kMaxTinted) Tint(*bitmap, *picture);
  return 0;
}
