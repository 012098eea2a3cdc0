#include "TFFramework/ControlBase/VisualPart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr double kSameSize = 1.1920929e-06;
constexpr double kFloorTolerance = 1.1920929e-07;

// The floor, where what is a whole number but for its last bits stays what it is.
double Snap(double value) {
  return std::floor(value + std::abs(value) * kFloorTolerance);
}

SizeT<double> ToDouble(const SizeT<std::int32_t>& size) {
  return {static_cast<double>(size.mWidth), static_cast<double>(size.mHeight)};
}

bool IsInside(const PointT<double>& point, const SizeT<double>& size) {
  return point.mX >= 0 && point.mY >= 0 && point.mX < size.mWidth && point.mY < size.mHeight;
}

std::uint32_t AlphaOf(std::uint32_t argb) {
  return argb >> 24;
}

// Where a side of a drawn size lies in the part: from, and to before.
struct SourceRange {
  SourceRange(double position, double size, double drawn)
      : mFrom(Snap(position * size / drawn)),
        mTo(Snap(position * size / drawn + std::max(1.0, size / drawn))) {}

  double mFrom;
  double mTo;
};

}  // namespace

const RCPtr<LVisualPart>& LVisualPart::Of(const LVisualPartDescriptor& descriptor) {
  if (!descriptor.mVisualPart) descriptor.mVisualPart = MakeRC<LVisualPart>(descriptor);
  return descriptor.mVisualPart;
}

LVisualPart::LVisualPart(const LVisualPartDescriptor& descriptor)
    : mName(descriptor.mName),
      mSize(descriptor.mSize),
      mResizeType(descriptor.mResizeType),
      mColorizer(descriptor.mColorizer),
      mColorizerAlphaMod(descriptor.mColorizerAlphaMod) {
  if (!descriptor.mImageFile.IsEmpty()) mBitmap = LoadPicture(descriptor.mImageFile, descriptor.mImageRect);
  if (!descriptor.mMaskFile.IsEmpty()) mMask = LoadPicture(descriptor.mMaskFile, descriptor.mMaskRect);
  if (!mPictureMissing) Colorize();
  if (mBitmap) mSize = {mBitmap->GetWidth(), mBitmap->GetHeight()};
}

LVisualPart::LVisualPart(const RCPtr<LBitmap>& bitmap, ResizeType resizeType)
    : mBitmap(bitmap), mResizeType(resizeType), mPictureMissing(!bitmap) {
  if (mBitmap) mSize = {mBitmap->GetWidth(), mBitmap->GetHeight()};
}

RCPtr<LBitmap> LVisualPart::LoadPicture(const String& path, const RectT<std::int32_t>& rect) {
  const RCPtr<LBitmap> sheet = LBitmap::LoadBitmap(path);
  if (sheet) return sheet->CreateSubBitmap(rect.mX, rect.mY, rect.mWidth, rect.mHeight);
  mPictureMissing = true;
  LogRecord(fmt::format("skin: part \"{}\" draws nothing, its picture \"{}\" cannot be loaded", ToUtf8(mName),
                        ToUtf8(path)));
  return nullptr;
}

// A solid colour without a picture stays a colour, which costs no pixels.
void LVisualPart::Colorize() {
  if (!mColorizer || (!mBitmap && !mMask && mColorizer->IsSolid())) return;
  mBitmap = LBitmap::CreateColorizedBitmap(mColorizer, mColorizerAlphaMod, mSize, mBitmap, mMask);
}

LColor LVisualPart::GetSolidColor() const {
  if (!mColorizer) Throw<std::runtime_error>("", "TF::LVisualPart::GetSolidColor");
  LColor color = mColorizer->mColor;
  color.mAlpha *= mColorizerAlphaMod;
  return color;
}

// A colour fills what it is drawn in, whatever its own size, unless it stands in the middle.
RectT<float> LVisualPart::PlaceColor(const SizeT<float>& size) const {
  if (mResizeType != ResizeType::kCenter) return {0, 0, size.mWidth, size.mHeight};
  const auto half = [](float outer, std::int32_t inner) {
    return static_cast<float>((static_cast<std::int64_t>(outer) - inner) / 2);
  };
  return {half(size.mWidth, mSize.mWidth), half(size.mHeight, mSize.mHeight),
          static_cast<float>(mSize.mWidth), static_cast<float>(mSize.mHeight)};
}

void LVisualPart::Draw(LRenderer& renderer, const SizeT<float>& size) const {
  if (mPictureMissing) return;
  if (mBitmap) {
    renderer.DrawBitmap(mBitmap, {0, 0, size.mWidth, size.mHeight}, mResizeType);
    return;
  }
  if (!mColorizer) Throw<std::runtime_error>("", "TF::LVisualPart::Draw");
  renderer.FillRect(PlaceColor(size), GetSolidColor(), true);
}

std::uint32_t LVisualPart::GetColorAtPoint(const PointT<double>& point) const {
  if (mPictureMissing || !IsInside(point, ToDouble(mSize))) return kNothing;
  const auto x = static_cast<std::int32_t>(point.mX);
  const auto y = static_cast<std::int32_t>(point.mY);
  if (mBitmap) return mBitmap->GetPixel(x, y).ToPacked();
  if (!mColorizer) Throw<std::runtime_error>("", "TF::LVisualPart::GetColorAtPoint");
  if (mColorizer->IsSolid()) return GetSolidColor().ToPacked();
  if (mColorizer->mType == ColorizerType::kLinearGradient)
    Throw<std::runtime_error>("", "TF::LVisualPart::GetColorAtPoint");
  Throw<std::runtime_error>("", "TF::LVisualPart::GetColorAtPoint");
}

std::uint32_t LVisualPart::GetColorAtPoint(const PointT<double>& point,
                                           const SizeT<double>& drawnSize) const {
  const SizeT<double> size = ToDouble(mSize);
  if (!mBitmap && mColorizer && mColorizer->IsSolid() && !mPictureMissing)
    return GetFilledColor(point, drawnSize);
  if (std::abs(drawnSize.mWidth - size.mWidth) < kSameSize &&
      std::abs(drawnSize.mHeight - size.mHeight) < kSameSize)
    return GetColorAtPoint(point);
  if (!IsInside(point, drawnSize)) return kNothing;
  switch (mResizeType) {
    case ResizeType::kTile:
      if (mSize.mWidth <= 0 || mSize.mHeight <= 0) return kNothing;
      return GetColorAtPoint({static_cast<double>(RoundToInt32(point.mX) % mSize.mWidth),
                              static_cast<double>(RoundToInt32(point.mY) % mSize.mHeight)});
    case ResizeType::kCenter:
      return GetColorAtPoint({point.mX - (drawnSize.mWidth - size.mWidth) * 0.5,
                              point.mY - (drawnSize.mHeight - size.mHeight) * 0.5});
    case ResizeType::kStretch:
      return GetStretchedColor(point, drawnSize);
  }
  Throw<std::runtime_error>("", "TF::LVisualPart::GetColorAtPoint");
}

std::uint32_t LVisualPart::GetFilledColor(const PointT<double>& point, const SizeT<double>& drawnSize) const {
  const RectT<float> filled =
      PlaceColor({static_cast<float>(drawnSize.mWidth), static_cast<float>(drawnSize.mHeight)});
  const PointT<double> inside{point.mX - filled.mX, point.mY - filled.mY};
  const bool isFilled = IsInside(point, drawnSize) && IsInside(inside, {filled.mWidth, filled.mHeight});
  return isFilled ? GetSolidColor().ToPacked() : kNothing;
}

// A part that is drawn smaller than it is may hide the pixel that was drawn among several: any of them
// counts.
std::uint32_t LVisualPart::GetStretchedColor(const PointT<double>& point,
                                             const SizeT<double>& drawnSize) const {
  const SizeT<double> size = ToDouble(mSize);
  if ((size.mWidth <= drawnSize.mWidth && size.mHeight <= drawnSize.mHeight) || !mBitmap) {
    return GetColorAtPoint(
        {point.mX * size.mWidth / drawnSize.mWidth, point.mY * size.mHeight / drawnSize.mHeight});
  }
  const SourceRange columns(point.mX, size.mWidth, drawnSize.mWidth);
  const SourceRange rows(point.mY, size.mHeight, drawnSize.mHeight);
  const RectT<double> area{columns.mFrom, rows.mFrom, columns.mTo - columns.mFrom, rows.mTo - rows.mFrom};
  return FindOpaque(Intersect(area, {0, 0, size.mWidth, size.mHeight}));
}

// Looks at what the image has of the area, which may reach far beyond it.
std::uint32_t LVisualPart::FindOpaque(const RectT<double>& area) const {
  const BitmapImage* const image = mBitmap->GetImage();
  if (!image) return kNothing;
  const Platform::Picture& picture = image->mPicture;
  const RectT<double> moved{area.mX + mBitmap->GetX(), area.mY + mBitmap->GetY(), area.mWidth, area.mHeight};
  const RectT<double> visible =
      Intersect(moved, {0, 0, static_cast<double>(picture.mWidth), static_cast<double>(picture.mHeight)});
  const auto width = static_cast<std::size_t>(visible.mWidth);
  for (auto y = static_cast<std::size_t>(visible.mY); y < static_cast<std::size_t>(visible.GetBottom());
       ++y) {
    const std::uint32_t* const row =
        picture.mPixels.data() + y * picture.mWidth + static_cast<std::size_t>(visible.mX);
    const auto* const found =
        std::find_if(row, row + width, [](std::uint32_t argb) { return AlphaOf(argb) > 0; });
    if (found != row + width) return *found;
  }
  return kNothing;
}

}  // namespace TF
