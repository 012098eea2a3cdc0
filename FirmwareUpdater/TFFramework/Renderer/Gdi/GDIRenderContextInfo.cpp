#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"

namespace TF {

LGDIRenderContextInfo::LGDIRenderContextInfo(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                                             bool offscreen)
    : LRenderContextInfo(rect, window, offscreen),
      mBackBuffer(MakeRC<LGDIRendererOffscreenSurface>(SizeT<std::int32_t>{rect.mWidth, rect.mHeight})),
      mAltBuffer(MakeRC<LGDIRendererOffscreenSurface>(SizeT<std::int32_t>{rect.mWidth, rect.mHeight})) {}

void LGDIRenderContextInfo::ShowAgain() {
  if (mIsOffscreen || !mWindow) return;
  const Platform::PixelView pixels = mBackBuffer->GetCanvas().GetPixels();
  const Platform::PixelRect whole{0, 0, pixels.mWidth, pixels.mHeight};
  mWindow->Present(pixels, {&whole, 1});
}

}  // namespace TF
