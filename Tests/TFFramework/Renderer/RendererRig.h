#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "Platform/Canvas.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"

// A window in memory. It keeps what was shown last.
class MemoryWindow : public Platform::WindowSurface {
 public:
  void Present(const Platform::PixelView& pixels, std::span<const Platform::PixelRect> rects) override;

  // 0xAARRGGBB, premultiplied, as the buffer holds it; outside of it 0xDEADBEEF.
  std::uint32_t At(std::int32_t x, std::int32_t y) const;
  const std::vector<Platform::PixelRect>& GetRects() const { return mRects; }
  std::int32_t GetWidth() const { return mWidth; }
  std::int32_t GetHeight() const { return mHeight; }
  // How many pixels are not transparent, and the rectangle around them.
  std::int32_t CountInk() const;
  TF::RectT<std::int32_t> GetInk() const;

 private:
  std::int32_t mWidth = 0;
  std::int32_t mHeight = 0;
  std::vector<std::uint32_t> mPixels;
  std::vector<Platform::PixelRect> mRects;
};

// A renderer with a window to draw in.
class RendererRig {
 public:
  static constexpr std::int32_t kWidth = 40;
  static constexpr std::int32_t kHeight = 30;

  explicit RendererRig(const TF::SizeT<std::int32_t>& size = {kWidth, kHeight});

  // One frame on empty buffers.
  void Draw(const std::function<void(TF::LRenderer&)>& drawing);
  // One frame that touches a region only.
  void DrawIn(const TF::Region& region, const std::function<void(TF::LRenderer&)>& drawing);
  TF::RCPtr<TF::LRenderContextInfo> MakeSurface(std::int32_t width, std::int32_t height);

  const TF::RCPtr<TF::LRenderer> mRenderer;
  MemoryWindow mWindow;
  TF::RCPtr<TF::LRenderContextInfo> mContext;
};

// Colours by packed value.
inline TF::LColor Color(std::uint32_t argb) {
  return TF::LColor::FromPacked(argb);
}

inline constexpr std::uint32_t kRed = 0xFFFF0000;
inline constexpr std::uint32_t kGreen = 0xFF00FF00;
inline constexpr std::uint32_t kBlue = 0xFF0000FF;

// A picture of these pixels, 0xAARRGGBB and not premultiplied, in rows of width.
TF::RCPtr<TF::LBitmap> MakePicture(std::int32_t width, const std::vector<std::uint32_t>& pixels);
