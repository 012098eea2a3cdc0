#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/ResizeType.h"

namespace TF {

// A part of a picture drawn at another size, in premultiplied pixels. Only the picture's own rectangle is
// read: what it lacks, and what it leaves free, is transparent. Every pixel shows the one of the
// picture that LVisualPart answers for it, so that what can be seen can be hit.
//
// Both sides of size must be above 0, and part must lie in it. Throws invalid_argument for an unknown type.
std::vector<std::uint32_t> ScalePicture(const LBitmap& bitmap, const SizeT<std::int32_t>& size,
                                        ResizeType type, const RectT<std::int32_t>& part);

}  // namespace TF
