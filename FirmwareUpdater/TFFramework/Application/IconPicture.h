#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Platform/Canvas.h"
#include "Platform/PngDecoder.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/IconGroup.h"

namespace TF {

// One size of an icon or a cursor, ready for a window: its colours are premultiplied.
struct IconPicture {
  Platform::Picture mPicture;
  PointT<std::int32_t> mHotSpot;

  // As long as this lives.
  Platform::PixelView GetView() const;
};

// From a group in the program's resources, the size that fits side best, in pixels. Nothing when there is
// no sound one. Any thread.
std::optional<IconPicture> LoadIconResource(LIconGroup::Kind kind, std::u16string_view name,
                                            std::int32_t side);

}  // namespace TF
