#pragma once

#include <cstdint>

#include "Platform/Canvas.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Renderer/MeasurementRenderer.h"
#include "TFFramework/Renderer/RenderContextInfo.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Graphics/ColorRectList.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/Polyline.h"
#include "TFFramework/Utilities/Graphics/ResizeType.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"

namespace TF {

enum class RendererType : std::int32_t { kOpenGl = 0, kGdi = 1, kD3D9 = 2 };

// The surface that controls and looks draw on. It has a stack of contexts; drawing goes to the top one,
// in the coordinates and the clip of that context's state, and nowhere without a context.
//
// Threads: main thread, with the contexts and whatever is drawn.
class LRenderer : public LMeasurementRenderer {
 public:
  // type as of RendererType. Throws domain_error for another number, and runtime_error when this
  // program has no such renderer or its libraries are missing: no renderer stands in for another.
  static RCPtr<LRenderer> Create(std::int32_t type, Platform::WindowSurface* window);

  virtual RendererType GetRendererType() const = 0;
  // kFailure, with context null, when there can be no such target.
  virtual TFRESULT CreateRenderContext(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                                       bool offscreen, RCPtr<LRenderContextInfo>& context) = 0;
  // The area of the top context.
  virtual void SetBounds(const RectT<std::int32_t>& rect);
  virtual void SetStencil(const RCPtr<LStencil>& stencil);

  // A frame in a context. Frames nest, each in a context of its own. Both throw runtime_error:
  // RenderStart without a context and for one whose frame has not ended, RenderFinish for any but the
  // top one.
  virtual TFRESULT RenderStart(const RCPtr<LRenderContextInfo>& context);
  virtual TFRESULT RenderFinish(const RCPtr<LRenderContextInfo>& context);

  // point is the top left corner of the line.
  virtual void DrawText(const String& text, const RCPtr<LFont>& font, const PointT<float>& point,
                        const LColor& color) = 0;
  // An outline that runs through the pixels of all four edges, x + width and y + height included.
  virtual void DrawRect(const RectT<float>& rect, const LColor& color, float lineWidth) = 0;
  // Without blend the colour replaces what is there, alpha included, and rect is in the target's own
  // coordinates, whatever origin and clip.
  virtual void FillRect(const RectT<float>& rect, const LColor& color, bool blend) = 0;
  // The area, then the outline; each only with a colour that has an alpha above 0.
  virtual void DrawFilledRect(const RectT<float>& rect, const LColor& fillColor, const LColor& lineColor,
                              float lineWidth) = 0;
  virtual void FillRects(const ColorRectListT<float>& rects, const PointT<float>& offset) = 0;
  virtual void DrawLine(const PointT<float>& from, const PointT<float>& to, const LColor& color,
                        float lineWidth) = 0;
  // Each point is scaled, then moved by offset. Pairs of points, one line, a closed line.
  virtual void DrawLineSegments(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                                const PointT<float>& scale, float lineWidth) = 0;
  virtual void DrawPolyline(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                            const PointT<float>& scale, float lineWidth) = 0;
  virtual void DrawPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                           const PointT<float>& scale, float lineWidth) = 0;
  virtual void FillPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                           const PointT<float>& scale) = 0;
  // A size and picture that were drawn before look as they did then: who changes a picture makes a
  // new object, and the first drawing of a size decides how it is resized. Throws runtime_error
  // outside of a frame and invalid_argument for another resizeType.
  virtual void DrawBitmap(const RCPtr<LBitmap>& bitmap, const RectT<float>& rect, ResizeType resizeType) = 0;
  // Draws sourceRect of an offscreen context's picture. kInvalidArgument for another context,
  // kFailure when there is nothing to draw on.
  virtual TFRESULT DrawContext(const RCPtr<LRenderContextInfo>& context, const PointT<float>& point,
                               const RectT<std::int32_t>& sourceRect) = 0;
  // Draws the whole picture of an offscreen context, which goes on with a transparent one. Results as
  // above.
  virtual TFRESULT DrawContextAndSwap(const RCPtr<LRenderContextInfo>& context,
                                      const PointT<float>& point) = 0;

  // Each saves the state, for RestoreState; CAutoClip does both. PushOrigin moves the origin by offset,
  // to the whole pixel, with the clip staying in place. It does nothing without a saved state.
  virtual void PushOrigin(const PointT<double>& offset);
  // Moves the origin to the corner of frame and narrows the clip. relative: frame and clipRect are in
  // present coordinates and limited by each other and the present clip. Otherwise the corner is the
  // target's, and clipRect becomes the clip as it is.
  virtual void PushClip(const RectT<double>& frame, const RectT<double>& clipRect,
                        const RCPtr<LStencil>& stencil, bool relative);
  virtual void SaveState();
  // Nothing without a saved state.
  virtual void RestoreState();

  // In present coordinates; replaces the clip.
  virtual void SetClipRect(const RectT<double>& rect);
  virtual void Translate(const PointT<double>& offset);

  // Whether a state is saved in the top context: drawing in it has begun.
  bool HasSavedState();
  // The state of the top context, null outside of a frame.
  RenderState* GetState();

 protected:
  LRenderContextInfo* GetTopContext();

 private:
  RCPtrArray<LRenderContextInfo> mContexts;
};

}  // namespace TF
