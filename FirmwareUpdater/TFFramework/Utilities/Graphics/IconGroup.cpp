#include "TFFramework/Utilities/Graphics/IconGroup.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace TF {
namespace {

using Bytes = std::span<const unsigned char>;

// The file: a header of three words (0, kind, number of entries), the entries, and the pictures
// anywhere behind them. Words are little endian.
constexpr std::size_t kHeaderSize = 6;
constexpr std::size_t kKindOffset = 2;
constexpr std::size_t kCountOffset = 4;

// An entry: width and height in a byte each, two bytes without a use here, the hot spot of a cursor,
// and the size and the place of the picture.
constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kHotSpotXOffset = 4;
constexpr std::size_t kHotSpotYOffset = 6;
constexpr std::size_t kPictureSizeOffset = 8;
constexpr std::size_t kPictureOffset = 12;

// A PNG: its signature, and as its first chunk the header with the sides, big endian.
constexpr unsigned char kPngStart[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                       0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr std::size_t kPngWidthOffset = std::size(kPngStart);
constexpr std::size_t kPngHeightOffset = kPngWidthOffset + 4;
constexpr std::size_t kShortestPng = kPngHeightOffset + 4;

std::uint32_t ReadBigEndian(Bytes bytes, std::size_t offset, std::size_t length) {
  std::uint32_t value = 0;
  for (const unsigned char byte : bytes.subspan(offset, length)) value = value << 8 | byte;
  return value;
}

std::uint16_t ReadWord(Bytes bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

std::uint32_t ReadDouble(Bytes bytes, std::size_t offset) {
  return ReadWord(bytes, offset) | static_cast<std::uint32_t>(ReadWord(bytes, offset + 2)) << 16;
}

// A byte has no room for the largest side, which is written as 0.
std::int32_t ReadSide(Bytes bytes, std::size_t offset) {
  return bytes[offset] == 0 ? LIconGroup::kLargestSide : bytes[offset];
}

bool IsPngOfSize(Bytes png, const SizeT<std::int32_t>& size) {
  return png.size() >= kShortestPng && std::equal(std::begin(kPngStart), std::end(kPngStart), png.begin()) &&
         ReadBigEndian(png, kPngWidthOffset, 4) == static_cast<std::uint32_t>(size.mWidth) &&
         ReadBigEndian(png, kPngHeightOffset, 4) == static_cast<std::uint32_t>(size.mHeight);
}

// The place is refused when it lies before behind: in the header or among the entries.
std::optional<LIconGroup::Entry> ReadEntry(Bytes file, std::size_t start, std::size_t behind,
                                           LIconGroup::Kind kind) {
  const Bytes record = file.subspan(start, kEntrySize);
  LIconGroup::Entry entry;
  entry.mSize = {ReadSide(record, 0), ReadSide(record, 1)};
  if (kind == LIconGroup::Kind::kCursor) {
    entry.mHotSpot = {ReadWord(record, kHotSpotXOffset), ReadWord(record, kHotSpotYOffset)};
  }
  if (entry.mHotSpot.mX >= entry.mSize.mWidth || entry.mHotSpot.mY >= entry.mSize.mHeight) return {};
  const std::size_t size = ReadDouble(record, kPictureSizeOffset);
  const std::size_t offset = ReadDouble(record, kPictureOffset);
  if (offset < behind || offset > file.size() || size > file.size() - offset) return {};
  entry.mPng = file.subspan(offset, size);
  if (!IsPngOfSize(entry.mPng, entry.mSize)) return {};
  return entry;
}

std::int32_t ShortSide(const LIconGroup::Entry& entry) {
  return std::min(entry.mSize.mWidth, entry.mSize.mHeight);
}

std::int32_t Area(const LIconGroup::Entry& entry) {
  return entry.mSize.mWidth * entry.mSize.mHeight;
}

}  // namespace

std::optional<LIconGroup> LIconGroup::Read(std::span<const unsigned char> bytes) {
  if (bytes.size() < kHeaderSize || ReadWord(bytes, 0) != 0) return {};
  const auto kind = static_cast<Kind>(ReadWord(bytes, kKindOffset));
  if (kind != Kind::kIcon && kind != Kind::kCursor) return {};
  const std::size_t count = ReadWord(bytes, kCountOffset);
  const std::size_t behind = kHeaderSize + count * kEntrySize;
  if (count == 0 || count > kMostEntries || behind > bytes.size()) return {};
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < count; ++i) {
    const std::optional<Entry> entry = ReadEntry(bytes, kHeaderSize + i * kEntrySize, behind, kind);
    if (!entry) return {};
    entries.push_back(*entry);
  }
  return LIconGroup(kind, std::move(entries));
}

const LIconGroup::Entry& LIconGroup::FindEntry(std::int32_t side) const {
  const auto isBetter = [side](const Entry& left, const Entry& right) {
    const bool leftReaches = ShortSide(left) >= side, rightReaches = ShortSide(right) >= side;
    if (leftReaches != rightReaches) return leftReaches;
    return leftReaches ? Area(left) < Area(right) : Area(left) > Area(right);
  };
  return *std::min_element(mEntries.begin(), mEntries.end(), isBetter);
}

std::optional<Platform::Picture> LIconGroup::Decode(const Entry& entry) {
  return Platform::DecodePng(entry.mPng);
}

}  // namespace TF
