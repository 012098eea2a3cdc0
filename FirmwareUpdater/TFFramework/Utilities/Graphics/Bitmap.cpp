#include "TFFramework/Utilities/Graphics/Bitmap.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/NativePath.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Utilities/Graphics/BitmapData.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "TFFramework/Utilities/Storage/TFFile.h"

namespace TF {

namespace {

constexpr std::u16string_view kResourceType = u"GDIPLUS";
constexpr std::uint32_t kMaxFileSize = 64 * 1024 * 1024;  // Bytes.

// Never destroyed, since pictures may outlive every static object.
std::map<String, RCPtr<LBitmap>>& BitmapTable() {
  static auto* const table = new std::map<String, RCPtr<LBitmap>>();
  return *table;
}

std::optional<Platform::Picture> DecodeResource(const String& path) {
  const auto bytes = FindResourceOfPath(kResourceType, path);
  return bytes ? Platform::DecodePng(*bytes) : std::nullopt;
}

std::optional<Platform::Picture> DecodeFile(const String& path) try {
  File file;
  if (path.IsEmpty() || file.Open(path, String(), kFileRead) != kSuccess) return std::nullopt;
  const std::uint32_t size = file.GetLength();
  if (size > kMaxFileSize) return std::nullopt;
  std::vector<unsigned char> bytes(size);
  bytes.resize(static_cast<std::size_t>(file.Read(bytes.data(), size)));
  return Platform::DecodePng(bytes);
} catch (const std::runtime_error& error) {
  LogRecord(fmt::format("picture: cannot read \"{}\": {}", ToUtf8(path), error.what()));
  return std::nullopt;
}

constexpr std::uint32_t kAlphaMask = 0xFF000000;
constexpr std::uint32_t kByteMask = 0xFF;
constexpr int kRedShift = 16;
constexpr int kGreenShift = 8;
constexpr float kMaxByte = 255.0F;

using ChannelTable = std::array<std::uint32_t, 256>;

// The colour is multiplied by its alpha already.
std::uint32_t MixByte(std::size_t byte, float color, float alpha) {
  const float mixed = ((static_cast<float>(byte) / kMaxByte) * (1.0F - alpha) + color) * kMaxByte + 0.5F;
  if (!(mixed > 0)) return 0;
  return mixed < kMaxByte ? static_cast<std::uint32_t>(mixed) : kByteMask;
}

ChannelTable MixChannel(float color, float alpha) {
  ChannelTable table;
  for (std::size_t byte = 0; byte < table.size(); ++byte) table[byte] = MixByte(byte, color * alpha, alpha);
  return table;
}

void MixPixels(LBitmapData& data, const LColor& color, float alpha) {
  const ChannelTable red = MixChannel(color.mRed, alpha);
  const ChannelTable green = MixChannel(color.mGreen, alpha);
  const ChannelTable blue = MixChannel(color.mBlue, alpha);
  for (std::int32_t y = 0; y < data.GetHeight(); ++y) {
    std::uint32_t* const row = data.GetPixelAddress(0, y);
    for (std::int32_t x = 0; x < data.GetWidth(); ++x) {
      const std::uint32_t pixel = row[x];
      row[x] = (pixel & kAlphaMask) | red[pixel >> kRedShift & kByteMask] << kRedShift |
               green[pixel >> kGreenShift & kByteMask] << kGreenShift | blue[pixel & kByteMask];
    }
  }
}

bool IsEmpty(const SizeT<std::int32_t>& size) {
  return size.mWidth < 1 || size.mHeight < 1;
}

// One file has one full path, whatever way leads to it.
String FullPath(const String& path) {
  if (IsResourcePath(path)) return path;
  // Absolute first: until then a leading ".." has no folder to take away.
  const std::u16string absolute = Platform::FromNativePath(Platform::ToNativePath(path));
  const std::filesystem::path native(Platform::ToNativePath(absolute));
  return String(Platform::FromNativePath(native.lexically_normal().string()));
}

}  // namespace

LBitmap::LBitmap(const String& path, const String& key) : mPath(path), mKey(key) {
  auto picture = IsResourcePath(path) ? DecodeResource(path) : DecodeFile(path);
  if (picture) Take(std::move(*picture));
}

LBitmap::LBitmap(Platform::Picture picture) {
  Take(std::move(picture));
}

void LBitmap::Take(Platform::Picture picture) {
  mWidth = static_cast<std::int32_t>(picture.mWidth);
  mHeight = static_cast<std::int32_t>(picture.mHeight);
  mImage.emplace(BitmapImage{std::move(picture)});
}

RCPtr<LBitmap> LBitmap::LoadBitmap(const String& path) {
  const String key = FullPath(path).ToUpper();
  const auto found = BitmapTable().find(key);
  if (found != BitmapTable().end()) return found->second;
  const auto bitmap = MakeRC<LBitmap>(path, key);
  if (!bitmap->mImage) return nullptr;
  BitmapTable().emplace(key, bitmap);
  bitmap->AddInternalReferences();
  return bitmap;
}

TFRESULT LBitmap::ReleaseInternalReferences() {
  const auto entry = BitmapTable().find(mKey);
  if (entry != BitmapTable().end() && entry->second == this) {
    DropInternalReferences();
    BitmapTable().erase(entry);
  }
  return LRefCountedObject::ReleaseInternalReferences();
}

RCPtr<LBitmap> LBitmap::CreateSubBitmap(double x, double y, double width, double height) {
  const bool isWhole = width < 1 || height < 1;
  auto bitmap = MakeRC<LBitmap>();
  bitmap->mX = isWhole ? mX : RoundToInt32(mX + x);
  bitmap->mY = isWhole ? mY : RoundToInt32(mY + y);
  bitmap->mWidth = isWhole ? mWidth : RoundToInt32(width);
  bitmap->mHeight = isWhole ? mHeight : RoundToInt32(height);
  bitmap->mParent = mParent ? mParent : RCPtr<LBitmap>(this);
  return bitmap;
}

RCPtr<LBitmap> LBitmap::Clone() const {
  if (!IsInsideImage()) return nullptr;
  const Platform::Picture& source = GetImage()->mPicture;
  Platform::Picture copy{static_cast<std::uint32_t>(mWidth), static_cast<std::uint32_t>(mHeight), {}};
  copy.mPixels.reserve(std::size_t{copy.mWidth} * copy.mHeight);
  for (std::int32_t y = mY; y < mY + mHeight; ++y) {
    const std::uint32_t* const row = source.mPixels.data() + std::size_t(y) * source.mWidth + std::size_t(mX);
    copy.mPixels.insert(copy.mPixels.end(), row, row + mWidth);
  }
  return MakeRC<LBitmap>(std::move(copy));
}

LColor LBitmap::GetPixel(std::int32_t x, std::int32_t y) const {
  const BitmapImage* const image = GetImage();
  const std::int64_t imageX = std::int64_t{mX} + x;
  const std::int64_t imageY = std::int64_t{mY} + y;
  if (!image || imageX < 0 || imageY < 0) return {};
  const Platform::Picture& picture = image->mPicture;
  if (imageX >= picture.mWidth || imageY >= picture.mHeight) return {};
  return LColor::FromPacked(picture.mPixels[std::size_t(imageY) * picture.mWidth + std::size_t(imageX)]);
}

RCPtr<LBitmapData> LBitmap::LockPixels() {
  return mParent ? mParent->LockPixels() : MakeRC<LBitmapData>(RCPtr<LBitmap>(this), LockMode::kRead);
}

const BitmapImage* LBitmap::GetImage() const {
  if (mImage) return &*mImage;
  return mParent ? mParent->GetImage() : nullptr;
}

bool LBitmap::IsInsideImage() const {
  const BitmapImage* const image = GetImage();
  if (!image || mX < 0 || mY < 0 || mWidth < 1 || mHeight < 1) return false;
  return std::int64_t{mX} + mWidth <= image->mPicture.mWidth &&
         std::int64_t{mY} + mHeight <= image->mPicture.mHeight;
}

RCPtr<LBitmap> LBitmap::CreateFilledBitmap(const SizeT<std::int32_t>& size, const LColor& color) {
  if (IsEmpty(size)) Throw<std::runtime_error>("", "TF::LBitmap::CreateFilledBitmap");
  const auto width = static_cast<std::uint32_t>(size.mWidth);
  const auto height = static_cast<std::uint32_t>(size.mHeight);
  return MakeRC<LBitmap>(Platform::Picture{
      width, height, std::vector<std::uint32_t>(std::size_t{width} * height, color.ToPacked())});
}

RCPtr<LBitmap> LBitmap::CreateGradientFilledBitmap(const RCPtr<LColorizer>&, float,
                                                   const SizeT<std::int32_t>&) {
  Throw<std::domain_error>("", "TF::LBitmap::CreateGradientFilledBitmap");
}

RCPtr<LBitmap> LBitmap::CreateColorizedBitmap(const RCPtr<LColorizer>& colorizer, float alphaMod,
                                              const SizeT<std::int32_t>& size) {
  if (!colorizer || IsEmpty(size)) Throw<std::runtime_error>("", "TF::LBitmap::CreateColorizedBitmap");
  if (!colorizer->IsSolid()) return CreateGradientFilledBitmap(colorizer, alphaMod, size);
  LColor color = colorizer->mColor;
  color.mAlpha *= alphaMod;
  return CreateFilledBitmap(size, color);
}

RCPtr<LBitmap> LBitmap::CreateColorizedBitmap(const RCPtr<LColorizer>& colorizer, float alphaMod,
                                              const SizeT<std::int32_t>& size, const RCPtr<LBitmap>& picture,
                                              const RCPtr<LBitmap>& mask) {
  if (picture && mask) Throw<std::domain_error>("", "TF::LBitmap::ApplyColorizer");
  const RCPtr<LBitmap>& source = picture ? picture : mask;
  if (!source) return CreateColorizedBitmap(colorizer, alphaMod, size);
  const RCPtr<LBitmap> copy = source->Clone();
  ApplyColorizer(copy, colorizer, alphaMod);
  return copy;
}

void LBitmap::ApplyColorizer(const RCPtr<LBitmap>& bitmap, const RCPtr<LColorizer>& colorizer,
                             float alphaMod) {
  if (!bitmap || !colorizer) Throw<std::runtime_error>("", "TF::LBitmap::ApplyColorizer");
  if (!colorizer->IsSolid()) {
    CreateGradientFilledBitmap(colorizer, alphaMod, {bitmap->GetWidth(), bitmap->GetHeight()});
  }
  const auto data = MakeRC<LBitmapData>(bitmap, LockMode::kReadWrite);
  if (!data->IsLocked()) Throw<std::runtime_error>("", "TF::LBitmap::ApplyColorizer");
  MixPixels(*data, colorizer->mColor, colorizer->mColor.mAlpha * alphaMod);
}

}  // namespace TF
