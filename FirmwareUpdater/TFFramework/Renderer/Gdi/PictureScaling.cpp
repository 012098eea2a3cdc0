#include "TFFramework/Renderer/Gdi/PictureScaling.h"

#include <algorithm>
#include <stdexcept>

#include "Platform/Pixel.h"
#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

namespace {

constexpr std::int32_t kOutside = -1;

// Which column of the picture each of count drawn columns shows, or which row.
std::vector<std::int32_t> MapAxis(std::int32_t source, std::int32_t drawn, ResizeType type,
                                  std::int32_t first, std::int32_t count) {
  std::vector<std::int32_t> map(static_cast<std::size_t>(count), kOutside);
  if (source < 1) return map;
  // Half a pixel, where the difference is odd, goes to the near side.
  const std::int64_t margin = std::int64_t{drawn} - source;
  const std::int64_t nearMargin = margin >= 0 ? (margin + 1) / 2 : margin / 2;
  for (std::int64_t place = first; place < std::int64_t{first} + count; ++place) {
    std::int64_t from = kOutside;
    if (type == ResizeType::kStretch) from = place * source / drawn;
    if (type == ResizeType::kTile) from = place % source;
    if (type == ResizeType::kCenter) from = place - nearMargin;
    if (from >= 0 && from < source)
      map[static_cast<std::size_t>(place - first)] = static_cast<std::int32_t>(from);
  }
  return map;
}

// Places in the picture become places in its image.
void MoveInto(std::vector<std::int32_t>& map, std::int32_t offset, std::uint32_t imageSide) {
  for (std::int32_t& place : map) {
    const std::int64_t moved = std::int64_t{place} + offset;
    const bool inside = place != kOutside && moved >= 0 && moved < imageSide;
    place = inside ? static_cast<std::int32_t>(moved) : kOutside;
  }
}

void ScaleRow(const std::uint32_t* source, const std::vector<std::int32_t>& columns, std::uint32_t* target) {
  for (const std::int32_t column : columns) {
    *target++ = column == kOutside ? 0 : Platform::Premultiply(source[column]);
  }
}

bool IsKnown(ResizeType type) {
  return type == ResizeType::kStretch || type == ResizeType::kTile || type == ResizeType::kCenter;
}

}  // namespace

std::vector<std::uint32_t> ScalePicture(const LBitmap& bitmap, const SizeT<std::int32_t>& size,
                                        ResizeType type, const RectT<std::int32_t>& part) {
  if (size == SizeT<std::int32_t>{bitmap.GetWidth(), bitmap.GetHeight()}) type = ResizeType::kStretch;
  if (!IsKnown(type)) {
    Throw<std::invalid_argument>("Invalid ResizeType passed to DrawBitmap.", "TF::LGDIRenderer::DrawBitmap");
  }
  const auto width = static_cast<std::size_t>(part.mWidth);
  std::vector<std::uint32_t> pixels(width * static_cast<std::size_t>(part.mHeight));
  if (!bitmap.GetImage()) return pixels;
  const Platform::Picture& image = bitmap.GetImage()->mPicture;
  std::vector<std::int32_t> columns = MapAxis(bitmap.GetWidth(), size.mWidth, type, part.mX, part.mWidth);
  std::vector<std::int32_t> rows = MapAxis(bitmap.GetHeight(), size.mHeight, type, part.mY, part.mHeight);
  MoveInto(columns, bitmap.GetX(), image.mWidth);
  MoveInto(rows, bitmap.GetY(), image.mHeight);
  for (std::size_t y = 0; y < rows.size(); ++y) {
    if (rows[y] == kOutside) continue;
    std::uint32_t* const target = pixels.data() + y * width;
    if (y > 0 && rows[y] == rows[y - 1]) {
      std::copy_n(target - width, width, target);
    } else {
      ScaleRow(image.mPixels.data() + static_cast<std::size_t>(rows[y]) * image.mWidth, columns, target);
    }
  }
  return pixels;
}

}  // namespace TF
