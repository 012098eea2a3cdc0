#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/ControlBase/LookDescriptor.h"
#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// Paints looks without their texts into memory, so that a test can ask what a text would stand on. It
// places parts as a look does and takes the nearest pixel of a picture that is stretched.
class LookCanvas {
 public:
  // Pixels; every one is ground at first.
  LookCanvas(std::int32_t width, std::int32_t height, const LColor& ground);

  void Paint(const LLookDescriptor& look);

  std::int32_t GetWidth() const { return mWidth; }
  std::int32_t GetHeight() const { return mHeight; }
  // x and y must lie in the canvas.
  const LColor& At(std::int32_t x, std::int32_t y) const;

 private:
  void PaintPart(const LVisualPartDescriptor& part, const RectT<std::int32_t>& rect);
  void Blend(std::int32_t x, std::int32_t y, const LColor& color);

  std::int32_t mWidth;
  std::int32_t mHeight;
  std::vector<LColor> mPixels;
};

// How well two opaque colours can be told apart, from 1 for equal ones to 21 for black and white: the
// ratio that the accessibility guidelines for the web define.
double ContrastOf(const LColor& left, const LColor& right);

}  // namespace TF
