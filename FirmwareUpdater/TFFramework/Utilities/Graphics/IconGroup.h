#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Platform/PngDecoder.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// An icon or a cursor in several sizes, read from the bytes of an ICO or CUR file whose pictures are
// PNG. The bytes, mostly a resource of the program, must outlive it.
//
// Threads: any, one at a time.
class LIconGroup {
 public:
  enum class Kind : std::uint16_t { kIcon = 1, kCursor = 2 };

  static constexpr std::int32_t kLargestSide = 256;  // Pixels.
  static constexpr std::size_t kMostEntries = 64;

  struct Entry {
    SizeT<std::int32_t> mSize;      // Pixels.
    PointT<std::int32_t> mHotSpot;  // In the picture; 0, 0 for an icon.
    std::span<const unsigned char> mPng;
  };

  // Nothing when the bytes are no such file, hold no or too many pictures, name a picture that does not
  // lie in them or is no PNG of the size said, or a hot spot beside its picture. The pixels are not
  // looked at yet.
  static std::optional<LIconGroup> Read(std::span<const unsigned char> bytes);

  Kind GetKind() const { return mKind; }
  // In the order of the file; at least one.
  const std::vector<Entry>& GetEntries() const { return mEntries; }

  // The smallest picture both of whose sides reach the wanted one, in pixels; without one, that of the
  // largest area.
  const Entry& FindEntry(std::int32_t side) const;
  // The pixels of an entry; nothing when they are damaged.
  static std::optional<Platform::Picture> Decode(const Entry& entry);

 private:
  LIconGroup(Kind kind, std::vector<Entry> entries) : mKind(kind), mEntries(std::move(entries)) {}

  Kind mKind;
  std::vector<Entry> mEntries;
};

}  // namespace TF
