#include "Tests/TFFramework/ControlBase/LookCanvas.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "TFFramework/Utilities/Graphics/Bitmap.h"

namespace TF {
namespace {

struct Span {
  std::int32_t mStart;
  std::int32_t mEnd;
};

// One axis of a part in a frame of this length.
Span PlaceOnAxis(std::optional<std::int32_t> near, std::optional<std::int32_t> far, std::int32_t size,
                 std::int32_t length) {
  if (near && far) return {*near, length + *far};
  if (near) return {*near, *near + size};
  const std::int32_t start = far ? length + *far - size : (length - size) / 2;
  return {start, start + size};
}

std::optional<std::int32_t> Given(bool isGiven, std::int32_t offset) {
  return isGiven ? std::optional(offset) : std::nullopt;
}

RectT<std::int32_t> Place(const LDockedPart& part, std::int32_t width, std::int32_t height) {
  const Span x = PlaceOnAxis(Given(part.mHasLeft, part.OffsetLeft), Given(part.mHasRight, part.OffsetRight),
                             part.Width.value_or(part.mPart->mSize.mWidth), width);
  const Span y = PlaceOnAxis(Given(part.mHasTop, part.OffsetTop), Given(part.mHasBottom, part.OffsetBottom),
                             part.Height.value_or(part.mPart->mSize.mHeight), height);
  return {x.mStart, y.mStart, x.mEnd - x.mStart, y.mEnd - y.mStart};
}

double LuminanceOf(const LColor& color) {
  const auto linear = [](float channel) {
    return channel <= 0.03928F ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.mRed) + 0.7152 * linear(color.mGreen) + 0.0722 * linear(color.mBlue);
}

}  // namespace

LookCanvas::LookCanvas(std::int32_t width, std::int32_t height, const LColor& ground)
    : mWidth(width), mHeight(height), mPixels(static_cast<std::size_t>(width * height), ground) {}

const LColor& LookCanvas::At(std::int32_t x, std::int32_t y) const {
  return mPixels.at(static_cast<std::size_t>(y * mWidth + x));
}

void LookCanvas::Paint(const LLookDescriptor& look) {
  if (look.mClientPart) PaintPart(*look.mClientPart->mPart, Place(*look.mClientPart, mWidth, mHeight));
  for (const auto& part : look.mNonClientParts) PaintPart(*part->mPart, Place(*part, mWidth, mHeight));
}

void LookCanvas::PaintPart(const LVisualPartDescriptor& part, const RectT<std::int32_t>& rect) {
  RCPtr<LBitmap> picture;
  LColor color;
  if (part.mImageFile.IsEmpty()) {
    color = part.mColorizer->mColor;
    color.mAlpha *= part.mColorizerAlphaMod;
  } else {
    picture = LBitmap::LoadBitmap(part.mImageFile);
  }
  const RectT<std::int32_t>& source = part.mImageRect;
  for (std::int32_t y = std::max(rect.mY, 0); y < std::min(rect.GetBottom(), mHeight); ++y) {
    for (std::int32_t x = std::max(rect.mX, 0); x < std::min(rect.GetRight(), mWidth); ++x) {
      if (picture) {
        color = picture->GetPixel(source.mX + (x - rect.mX) * source.mWidth / rect.mWidth,
                                  source.mY + (y - rect.mY) * source.mHeight / rect.mHeight);
      }
      Blend(x, y, color);
    }
  }
}

void LookCanvas::Blend(std::int32_t x, std::int32_t y, const LColor& color) {
  LColor& pixel = mPixels.at(static_cast<std::size_t>(y * mWidth + x));
  const float alpha = color.mAlpha + pixel.mAlpha * (1 - color.mAlpha);
  const float share = alpha > 0 ? color.mAlpha / alpha : 0;
  pixel = {std::lerp(pixel.mRed, color.mRed, share), std::lerp(pixel.mGreen, color.mGreen, share),
           std::lerp(pixel.mBlue, color.mBlue, share), alpha};
}

double ContrastOf(const LColor& left, const LColor& right) {
  const auto [dark, light] = std::minmax({LuminanceOf(left), LuminanceOf(right)});
  return (light + 0.05) / (dark + 0.05);
}

}  // namespace TF
