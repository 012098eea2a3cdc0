#pragma once

#include <cstdint>

namespace TF {

// How a picture fills a rectangle of another size.
enum class ResizeType : std::uint32_t { kStretch = 0, kTile = 1, kCenter = 2 };

}  // namespace TF
