#pragma once

#include "TFFramework/Renderer/Gdi/GDIRendererOffscreenSurface.h"
#include "TFFramework/Renderer/RenderContextInfo.h"

namespace TF {

// A target of LGDIRenderer. What is drawn stays in the back buffer from frame to frame, so that a
// frame needs to draw only what has changed.
class LGDIRenderContextInfo : public LRenderContextInfo {
 public:
  static constexpr std::int32_t kMaxSurfaceSide = 4096;  // Pixels.

  LGDIRenderContextInfo(const RectT<std::int32_t>& rect, Platform::WindowSurface* window, bool offscreen);

  SizeT<std::int32_t> GetMaxSurfaceSize() const override { return {kMaxSurfaceSide, kMaxSurfaceSide}; }
  void ShowAgain() override;

  RCPtr<LGDIRendererOffscreenSurface> mBackBuffer;
  // Takes turns with the back buffer when a surface is drawn and goes on empty.
  RCPtr<LGDIRendererOffscreenSurface> mAltBuffer;
};

}  // namespace TF
