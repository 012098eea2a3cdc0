#pragma once

#include <cstdint>
#include <vector>

#include "Platform/Canvas.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Renderer/RenderState.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/Region.h"

namespace TF {

// One target of drawing, a window or an offscreen surface, with the state that drawing has there.
// Made by LRenderer::CreateRenderContext for that renderer alone.
class LRenderContextInfo : public virtual LRefCountedObject {
 public:
  // window must outlive this object; null for a surface.
  LRenderContextInfo(const RectT<std::int32_t>& rect, Platform::WindowSurface* window, bool offscreen)
      : mWindow(window), mIsOffscreen(offscreen), mRect(rect) {}

  virtual SizeT<std::int32_t> GetMaxSurfaceSize() const = 0;
  // Has the window show once more what was drawn last, after it lost its pixels. Nothing for a surface.
  virtual void ShowAgain() = 0;

  Platform::WindowSurface* const mWindow;
  const bool mIsOffscreen;
  // What the frame touches; set by who paints, before RenderStart.
  Region mRegion;
  // The target's area.
  RectT<std::int32_t> mRect;
  RenderState mState;
  std::vector<RenderState> mStateStack;
};

}  // namespace TF
