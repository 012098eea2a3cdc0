#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"

namespace TF {

LGDIRenderContextInfo::LGDIRenderContextInfo(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                                             bool offscreen)
    : LRenderContextInfo(rect, window, offscreen),
      mBackBuffer(MakeRC<LGDIRendererOffscreenSurface>(SizeT<std::int32_t>{rect.mWidth, rect.mHeight})),
      mAltBuffer(MakeRC<LGDIRendererOffscreenSurface>(SizeT<std::int32_t>{rect.mWidth, rect.mHeight})) {}

}  // namespace TF
