#pragma once

#include <cstdint>
#include <vector>

#include "TFFramework/ControlBase/LookDescriptor.h"
#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// Paints a look without its text into memory, as the program does, so that a test can ask what a text
// would stand on.
class LookCanvas {
 public:
  // Pixels; every one is ground at first.
  LookCanvas(std::int32_t width, std::int32_t height, const LColor& ground);

  // Over the ground, in the canvas's size. Once.
  void Paint(const ConstRCPtr<LLookDescriptor>& look);

  std::int32_t GetWidth() const { return mWidth; }
  std::int32_t GetHeight() const { return mHeight; }
  // x and y must lie in the canvas.
  const LColor& At(std::int32_t x, std::int32_t y) const;

 private:
  std::int32_t mWidth;
  std::int32_t mHeight;
  std::vector<LColor> mPixels;
};

// How well two opaque colours can be told apart, from 1 for equal ones to 21 for black and white: the
// ratio that the accessibility guidelines for the web define.
double ContrastOf(const LColor& left, const LColor& right);

}  // namespace TF
