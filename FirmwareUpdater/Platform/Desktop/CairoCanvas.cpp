#include "Platform/Desktop/CairoCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

#include "Platform/Desktop/CairoPath.h"
#include "Platform/Desktop/PangoTextFont.h"
#include "Platform/Desktop/PixmanPicture.h"
#include "Platform/Pixel.h"

namespace Platform {

namespace {

constexpr std::int32_t kMaxSide = 16384;  // Pixels.
constexpr int kBitsPerPixel = 32;
constexpr int kWordSize = sizeof(std::uint32_t);
constexpr std::uint32_t kMaxByte = 255;
constexpr double kPixelMiddle = 0.5;

std::uint32_t AlphaOf(std::uint32_t color) {
  return color >> 24;
}

std::uint32_t Channel(std::uint32_t color, int shift) {
  return color >> shift & kMaxByte;
}

PixelRect Overlap(const PixelRect& a, const PixelRect& b) {
  const std::int32_t x = std::max(a.mX, b.mX);
  const std::int32_t y = std::max(a.mY, b.mY);
  const auto right = std::min(std::int64_t{a.mX} + a.mWidth, std::int64_t{b.mX} + b.mWidth);
  const auto bottom = std::min(std::int64_t{a.mY} + a.mHeight, std::int64_t{b.mY} + b.mHeight);
  if (right <= x || bottom <= y) return {};
  return {x, y, static_cast<std::int32_t>(right - x), static_cast<std::int32_t>(bottom - y)};
}

bool IsEmpty(const PixelRect& rect) {
  return rect.mWidth <= 0 || rect.mHeight <= 0;
}

bool IsInReach(double value) {
  return std::abs(value) <= kMaxCoordinate;
}

std::int32_t WholeAbove(double value) {
  return static_cast<std::int32_t>(std::ceil(value));
}

// The pixels of a level or upright line.
std::optional<PixelRect> AreaOfStraightLine(const CanvasPoint& from, const CanvasPoint& to, double width) {
  if (from.mX != to.mX && from.mY != to.mY) return std::nullopt;
  const std::int32_t left = WholeAbove(std::min(from.mX, to.mX) - width / 2);
  const std::int32_t top = WholeAbove(std::min(from.mY, to.mY) - width / 2);
  return PixelRect{left, top, WholeAbove(std::max(from.mX, to.mX) + width / 2) - left,
                   WholeAbove(std::max(from.mY, to.mY) + width / 2) - top};
}

bool IsUsable(const PathPlacement& placement) {
  return IsInReach(placement.mScaleX) && IsInReach(placement.mScaleY) && IsInReach(placement.mOffsetX) &&
         IsInReach(placement.mOffsetY) && placement.mScaleX != 0 && placement.mScaleY != 0;
}

double LineWidth(double width) {
  return width > 1 ? std::min(width, kMaxCoordinate) : 1;
}

// The path's points are placed, the pen that draws them is not.
void AppendPlaced(cairo_t* cairo, const CanvasPath& path, const PathPlacement& placement, double shift) {
  cairo_new_path(cairo);
  static_cast<const CairoPath&>(path).AppendTo(cairo, placement, shift);
}

}  // namespace

CairoCanvas::CairoCanvas(std::int32_t width, std::int32_t height)
    : mWidth(std::clamp(width, 1, kMaxSide)),
      mHeight(std::clamp(height, 1, kMaxSide)),
      mPixels(static_cast<std::uint32_t*>(
          std::calloc(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight), kWordSize))),
      mClip(WholeArea()) {
  if (!mPixels) throw std::bad_alloc();
  mImage.reset(
      pixman_image_create_bits_no_clear(PIXMAN_a8r8g8b8, mWidth, mHeight, mPixels.get(), mWidth * kWordSize));
  mSolid.reset(pixman_image_create_bits_no_clear(PIXMAN_a8r8g8b8, 1, 1, &mSolidPixel, kWordSize));
  if (!mImage || !mSolid) throw std::bad_alloc();
  pixman_image_set_repeat(mSolid.get(), PIXMAN_REPEAT_NORMAL);
}

PixelView CairoCanvas::GetPixels() const {
  if (mSurface) cairo_surface_flush(mSurface.get());
  return {mPixels.get(), mWidth, mHeight, static_cast<std::size_t>(mWidth) * kWordSize};
}

void CairoCanvas::Clear() {
  BeginPixels();
  std::memset(mPixels.get(), 0,
              static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight) * kWordSize);
}

void CairoCanvas::SetClip(const PixelRect& rect) {
  mClip = Overlap(rect, WholeArea());
}

void CairoCanvas::BeginPixels() {
  if (mCairoWrote) cairo_surface_flush(mSurface.get());
  mCairoWrote = false;
  mPixelsWrote = true;
}

void CairoCanvas::SetPixels(const PixelRect& rect, std::uint32_t color) {
  const PixelRect area = Overlap(rect, WholeArea());
  if (IsEmpty(area)) return;
  BeginPixels();
  pixman_fill(mPixels.get(), mWidth, kBitsPerPixel, area.mX, area.mY, area.mWidth, area.mHeight,
              Premultiply(color));
}

void CairoCanvas::FillRect(const PixelRect& rect, std::uint32_t color) {
  const PixelRect area = Overlap(rect, mClip);
  if (IsEmpty(area) || AlphaOf(color) == 0) return;
  if (AlphaOf(color) == kMaxByte) return SetPixels(area, color);
  BeginPixels();
  mSolidPixel = Premultiply(color);
  pixman_image_composite32(PIXMAN_OP_OVER, mSolid.get(), nullptr, mImage.get(), 0, 0, 0, 0, area.mX, area.mY,
                           area.mWidth, area.mHeight);
}

void CairoCanvas::Composite(pixman_op_t operation, pixman_image_t* source, const PixelRect& from,
                            std::int32_t x, std::int32_t y) {
  const PixelRect area = Overlap({x, y, from.mWidth, from.mHeight}, mClip);
  if (IsEmpty(area)) return;
  BeginPixels();
  pixman_image_composite32(operation, source, nullptr, mImage.get(), from.mX + (area.mX - x),
                           from.mY + (area.mY - y), 0, 0, area.mX, area.mY, area.mWidth, area.mHeight);
}

void CairoCanvas::DrawPicture(const CanvasPicture& picture, std::int32_t x, std::int32_t y) {
  const auto& source = static_cast<const PixmanPicture&>(picture);
  const pixman_op_t operation = source.IsOpaque() ? PIXMAN_OP_SRC : PIXMAN_OP_OVER;
  const PixelRect whole{0, 0, source.GetWidth(), source.GetHeight()};
  if (!source.IsHuge()) return Composite(operation, source.GetImage(), whole, x, y);
  const PixelRect area = Overlap({x, y, whole.mWidth, whole.mHeight}, mClip);
  if (IsEmpty(area)) return;
  const PixmanImageHandle part = source.Cutout({area.mX - x, area.mY - y, area.mWidth, area.mHeight});
  Composite(operation, part.get(), {0, 0, area.mWidth, area.mHeight}, area.mX, area.mY);
}

bool CairoCanvas::DrawCanvas(const Canvas& source, const PixelRect& part, std::int32_t x, std::int32_t y) {
  const auto& canvas = static_cast<const CairoCanvas&>(source);
  if (&canvas == this) return false;
  const PixelRect inside = Overlap(part, canvas.WholeArea());
  // The place moves with what the source does not have; beyond the limits nothing is visible.
  const std::int64_t left = std::int64_t{x} + inside.mX - part.mX;
  const std::int64_t top = std::int64_t{y} + inside.mY - part.mY;
  if (IsEmpty(inside) || left > kMaxSide || top > kMaxSide || left < -kMaxSide || top < -kMaxSide)
    return true;
  if (canvas.mSurface) cairo_surface_flush(canvas.mSurface.get());
  Composite(PIXMAN_OP_OVER, canvas.mImage.get(), inside, static_cast<std::int32_t>(left),
            static_cast<std::int32_t>(top));
  return true;
}

void CairoCanvas::MakeCairo() {
  mCairo.reset();
  if (!mSurface) {
    mSurface.reset(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(mPixels.get()),
                                                       CAIRO_FORMAT_ARGB32, mWidth, mHeight,
                                                       mWidth * kWordSize));
  }
  mCairo.reset(cairo_create(mSurface.get()));
  cairo_set_antialias(mCairo.get(), CAIRO_ANTIALIAS_NONE);
  cairo_set_fill_rule(mCairo.get(), CAIRO_FILL_RULE_EVEN_ODD);
  cairo_set_line_cap(mCairo.get(), CAIRO_LINE_CAP_SQUARE);
  mCairoClip = WholeArea();
}

void CairoCanvas::SetCairoClip(const PixelRect& clip) {
  cairo_t* const cairo = mCairo.get();
  cairo_reset_clip(cairo);
  mCairoClip = clip;
  if (clip == WholeArea()) return;
  cairo_new_path(cairo);
  cairo_rectangle(cairo, clip.mX, clip.mY, clip.mWidth, clip.mHeight);
  cairo_clip(cairo);
}

cairo_t* CairoCanvas::BeginCairo(const PixelRect& ink, std::uint32_t color) {
  if (IsEmpty(mClip) || AlphaOf(color) == 0) return nullptr;
  // An error stays in the Cairo object for good, so that the next drawing needs a new one.
  if (!mCairo || cairo_status(mCairo.get()) != CAIRO_STATUS_SUCCESS) MakeCairo();
  cairo_t* const cairo = mCairo.get();
  if (mPixelsWrote) cairo_surface_mark_dirty(mSurface.get());
  mPixelsWrote = false;
  mCairoWrote = true;
  const PixelRect clip = Overlap(ink, mClip) == ink ? WholeArea() : mClip;
  if (mCairoClip != clip) SetCairoClip(clip);
  cairo_set_source_rgba(cairo, Channel(color, 16) / 255.0, Channel(color, 8) / 255.0,
                        Channel(color, 0) / 255.0, AlphaOf(color) / 255.0);
  return cairo;
}

void CairoCanvas::DrawLine(const CanvasPoint& from, const CanvasPoint& to, double width,
                           std::uint32_t color) {
  if (!IsInReach(from.mX) || !IsInReach(from.mY) || !IsInReach(to.mX) || !IsInReach(to.mY)) return;
  if (const auto area = AreaOfStraightLine(from, to, LineWidth(width))) return FillRect(*area, color);
  cairo_t* const cairo = BeginCairo(WholeArea(), color);
  if (!cairo) return;
  cairo_new_path(cairo);
  cairo_move_to(cairo, from.mX + kPixelMiddle, from.mY + kPixelMiddle);
  cairo_line_to(cairo, to.mX + kPixelMiddle, to.mY + kPixelMiddle);
  cairo_set_line_width(cairo, LineWidth(width));
  cairo_stroke(cairo);
}

void CairoCanvas::StrokePath(const CanvasPath& path, const PathPlacement& placement, double width,
                             std::uint32_t color) {
  cairo_t* const cairo = IsUsable(placement) ? BeginCairo(WholeArea(), color) : nullptr;
  if (!cairo) return;
  AppendPlaced(cairo, path, placement, kPixelMiddle);
  cairo_set_line_width(cairo, LineWidth(width));
  cairo_stroke(cairo);
}

void CairoCanvas::FillPath(const CanvasPath& path, const PathPlacement& placement, std::uint32_t color) {
  cairo_t* const cairo = IsUsable(placement) ? BeginCairo(WholeArea(), color) : nullptr;
  if (!cairo) return;
  AppendPlaced(cairo, path, placement, 0);
  cairo_fill(cairo);
}

void CairoCanvas::DrawText(CanvasFont& font, std::u16string_view text, double x, double baseline,
                           std::uint32_t color) {
  if (text.empty() || !IsInReach(x) || !IsInReach(baseline)) return;
  PangoTextFont& shapes = static_cast<PangoTextFont&>(font);
  const PangoTextFont::TextLayout& layout = shapes.FindLayout(text);
  const PixelRect ink = layout.InkAt(x, baseline);
  if (IsEmpty(Overlap(ink, mClip))) return;
  if (cairo_t* const cairo = BeginCairo(ink, color)) layout.Show(cairo, x, baseline);
}

}  // namespace Platform
