#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Raster drawing on surfaces in memory, in whole pixels and without smoothing, text excepted.
// Coordinates are those of the surface, y downwards; colours are 0xAARRGGBB, not premultiplied. What
// lies outside of surface or clip is left out, whatever its size; what is no number draws nothing.
//
// Threads: one at a time for all objects of one desktop.
namespace Platform {

// A width or height at or below 0 is an empty rectangle.
struct PixelRect {
  std::int32_t mX = 0;
  std::int32_t mY = 0;
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;

  bool operator==(const PixelRect&) const = default;
};

// Pixels to read, 0xAARRGGBB with the colours premultiplied.
struct PixelView {
  const std::uint32_t* mPixels = nullptr;
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  std::size_t mStride = 0;  // Bytes from one row to the next.
};

// Where finished pixels become visible.
class WindowSurface {
 public:
  virtual ~WindowSurface() = default;
  // Shows these rectangles of the picture at their own places; each lies inside the picture. Alpha
  // does not count.
  virtual void Present(const PixelView& pixels, std::span<const PixelRect> rects) = 0;
};

// Pixels made ready for drawing.
class CanvasPicture {
 public:
  virtual ~CanvasPicture() = default;
};

struct CanvasPoint {
  double mX = 0;
  double mY = 0;
};

enum class CanvasPathKind {
  kSegments,  // Each pair of points is a line; an odd last point is left out.
  kPolyline,
  kPolygon,  // Closed; filled by the even-odd rule.
};

class CanvasPath {
 public:
  virtual ~CanvasPath() = default;
};

// Each point of a path is scaled, then moved; the width of a line is not scaled.
struct PathPlacement {
  double mScaleX = 1;
  double mScaleY = 1;
  double mOffsetX = 0;
  double mOffsetY = 0;
};

// Points; a larger size counts as this one.
inline constexpr double kLargestFontSize = 1000;

struct FontDescription {
  std::u16string mFamily;  // Empty for the sans serif family, which also stands in for unknown ones.
  double mSize = 0;        // Points; 96 dots to the inch.
  bool mBold = false;
  bool mItalic = false;
};

// The designer's measures for a size of 1, unhinted and positive.
struct FontDesign {
  double mAscent = 0;
  double mDescent = 0;
  double mLineSpacing = 0;
};

// A font that has been found. Characters it lacks come from other fonts.
class CanvasFont {
 public:
  virtual ~CanvasFont() = default;
  virtual FontDesign GetDesign() const = 0;
  // Pixels that the text advances, blanks at its ends included. Of a text of absurd length only the
  // beginning counts, here and in drawing.
  virtual double MeasureWidth(std::u16string_view text) = 0;
};

// A surface to draw on. New ones are transparent.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual PixelView GetPixels() const = 0;
  // Makes all pixels transparent, whatever the clip.
  virtual void Clear() = 0;
  // Limits all that follows, but for Clear and SetPixels.
  virtual void SetClip(const PixelRect& rect) = 0;

  // Stores the colour with its alpha, whatever the clip and what was there.
  virtual void SetPixels(const PixelRect& rect, std::uint32_t color) = 0;
  // The other operations lay their colour over what is there.
  virtual void FillRect(const PixelRect& rect, std::uint32_t color) = 0;
  virtual void DrawPicture(const CanvasPicture& picture, std::int32_t x, std::int32_t y) = 0;
  // Draws a part of another canvas. False when it is this one.
  virtual bool DrawCanvas(const Canvas& source, const PixelRect& part, std::int32_t x, std::int32_t y) = 0;
  // Lines run through the middle of the pixels and include their ends; the least width is 1.
  virtual void DrawLine(const CanvasPoint& from, const CanvasPoint& to, double width,
                        std::uint32_t color) = 0;
  virtual void StrokePath(const CanvasPath& path, const PathPlacement& placement, double width,
                          std::uint32_t color) = 0;
  virtual void FillPath(const CanvasPath& path, const PathPlacement& placement, std::uint32_t color) = 0;
  // x is the left end of the text, baseline the height of its first line's base.
  virtual void DrawText(CanvasFont& font, std::u16string_view text, double x, double baseline,
                        std::uint32_t color) = 0;
};

}  // namespace Platform
