#pragma once

#include <vector>

#include "Platform/PngDecoder.h"

namespace Platform {

// The picture as a PNG file of 8 bits a channel, with alpha. Throws invalid_argument when the pixels do not
// fill the picture, bad_alloc without memory. Any thread.
std::vector<unsigned char> EncodePng(const Picture& picture);

}  // namespace Platform
