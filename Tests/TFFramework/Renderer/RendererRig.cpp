#include "Tests/TFFramework/Renderer/RendererRig.h"

#include <algorithm>

#include "TFFramework/Utilities/Graphics/BitmapData.h"

using TF::MakeRC;
using TF::RCPtr;

void MemoryWindow::Present(const Platform::PixelView& pixels, std::span<const Platform::PixelRect> rects) {
  mWidth = pixels.mWidth;
  mHeight = pixels.mHeight;
  mRects.assign(rects.begin(), rects.end());
  mPixels.clear();
  const std::size_t words = pixels.mStride / sizeof(std::uint32_t);
  for (std::int32_t y = 0; y < mHeight; ++y) {
    const std::uint32_t* const row = pixels.mPixels + static_cast<std::size_t>(y) * words;
    mPixels.insert(mPixels.end(), row, row + mWidth);
  }
}

std::uint32_t MemoryWindow::At(std::int32_t x, std::int32_t y) const {
  if (x < 0 || y < 0 || x >= mWidth || y >= mHeight) return 0xDEADBEEF;
  return mPixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) +
                 static_cast<std::size_t>(x)];
}

std::int32_t MemoryWindow::CountInk() const {
  return static_cast<std::int32_t>(
      std::count_if(mPixels.begin(), mPixels.end(), [](std::uint32_t pixel) { return pixel != 0; }));
}

TF::RectT<std::int32_t> MemoryWindow::GetInk() const {
  std::int32_t left = mWidth, top = mHeight, right = 0, bottom = 0;
  for (std::int32_t y = 0; y < mHeight; ++y) {
    for (std::int32_t x = 0; x < mWidth; ++x) {
      if (At(x, y) == 0) continue;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
  }
  if (right == 0) return {};
  return {left, top, right - left, bottom - top};
}

RendererRig::RendererRig(const TF::SizeT<std::int32_t>& size)
    : mRenderer(TF::LRenderer::Create(static_cast<std::int32_t>(TF::RendererType::kGdi), &mWindow)) {
  mRenderer->CreateRenderContext({0, 0, size.mWidth, size.mHeight}, &mWindow, false, mContext);
}

void RendererRig::Draw(const std::function<void(TF::LRenderer&)>& drawing) {
  DrawIn(TF::Region(mContext->mRect), drawing);
}

void RendererRig::DrawIn(const TF::Region& region, const std::function<void(TF::LRenderer&)>& drawing) {
  mContext->mRegion = region;
  mRenderer->RenderStart(mContext);
  drawing(*mRenderer);
  mRenderer->RenderFinish(mContext);
}

RCPtr<TF::LRenderContextInfo> RendererRig::MakeSurface(std::int32_t width, std::int32_t height) {
  RCPtr<TF::LRenderContextInfo> surface;
  mRenderer->CreateRenderContext({0, 0, width, height}, nullptr, true, surface);
  return surface;
}

RCPtr<TF::LBitmap> MakePicture(std::int32_t width, const std::vector<std::uint32_t>& pixels) {
  const auto height = static_cast<std::int32_t>(pixels.size()) / width;
  const auto bitmap = TF::LBitmap::CreateFilledBitmap({width, height}, {});
  const auto data = MakeRC<TF::LBitmapData>(bitmap, TF::LockMode::kWrite);
  std::copy(pixels.begin(), pixels.end(), data->GetPixels());
  return bitmap;
}
