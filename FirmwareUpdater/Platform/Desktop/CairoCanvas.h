#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

#include "Platform/Canvas.h"
#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/LiveObjects.h"

namespace Platform {

// A canvas over one block of pixels. What is made of whole rectangles goes straight to the pixel
// library below Cairo, which takes nothing from the heap for it; paths and text go through Cairo.
class CairoCanvas : public Canvas {
 public:
  CairoCanvas(std::int32_t width, std::int32_t height);

  PixelView GetPixels() const override;
  void Clear() override;
  void SetClip(const PixelRect& rect) override;
  void SetPixels(const PixelRect& rect, std::uint32_t color) override;
  void FillRect(const PixelRect& rect, std::uint32_t color) override;
  void DrawPicture(const CanvasPicture& picture, std::int32_t x, std::int32_t y) override;
  bool DrawCanvas(const Canvas& source, const PixelRect& part, std::int32_t x, std::int32_t y) override;
  void DrawLine(const CanvasPoint& from, const CanvasPoint& to, double width, std::uint32_t color) override;
  void StrokePath(const CanvasPath& path, const PathPlacement& placement, double width,
                  std::uint32_t color) override;
  void FillPath(const CanvasPath& path, const PathPlacement& placement, std::uint32_t color) override;
  void DrawText(CanvasFont& font, std::u16string_view text, double x, double baseline,
                std::uint32_t color) override;

 private:
  PixelRect WholeArea() const { return {0, 0, mWidth, mHeight}; }
  // Cairo with clip and colour set; null when there is nothing to draw. What is to be drawn lies in
  // ink: where the clip cuts nothing of that, Cairo works without one, which is quicker.
  cairo_t* BeginCairo(const PixelRect& ink, std::uint32_t color);
  void SetCairoClip(const PixelRect& clip);
  void MakeCairo();
  void BeginPixels();
  void Composite(pixman_op_t operation, pixman_image_t* source, const PixelRect& from, std::int32_t x,
                 std::int32_t y);

  LiveObject mLive;
  const std::int32_t mWidth;
  const std::int32_t mHeight;
  std::unique_ptr<std::uint32_t[], Releaser<std::free>> mPixels;
  PixmanImageHandle mImage;
  std::uint32_t mSolidPixel = 0;
  PixmanImageHandle mSolid;  // Shows mSolidPixel everywhere.
  PixelRect mClip;
  CairoSurfaceHandle mSurface;
  CairoHandle mCairo;
  PixelRect mCairoClip;  // The whole area stands for none.
  // Who wrote last: the other must be told before it goes on.
  bool mCairoWrote = false;
  bool mPixelsWrote = false;
};

}  // namespace Platform
