#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "TFFramework/Renderer/Gdi/CachedBitmap.h"
#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"
#include "TFFramework/Renderer/Gdi/GraphicsPath.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Storage/PurgableObjectCache.h"

namespace TF {

// The renderer that draws in memory and hands what has changed to the window. A picture is scaled once
// per size and then copied, which takes nothing from the heap; a path is built once per polyline. What
// was not used for five to ten minutes of painting is dropped.
class LGDIRenderer : public LRenderer {
 public:
  // Throws runtime_error when the desktop's libraries cannot be loaded.
  LGDIRenderer();

  FontMetrics GetFontMetrics(const RCPtr<LFont>& font) override;
  RectT<float> MeasureText(const String& text, const RCPtr<LFont>& font) override;

  RendererType GetRendererType() const override { return RendererType::kGdi; }
  TFRESULT CreateRenderContext(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                               bool offscreen, RCPtr<LRenderContextInfo>& context) override;
  // A context whose region is its whole rectangle starts with empty buffers, and so does one that was
  // resized.
  TFRESULT RenderStart(const RCPtr<LRenderContextInfo>& context) override;
  // Hands the rectangles of the context's region to its window.
  TFRESULT RenderFinish(const RCPtr<LRenderContextInfo>& context) override;

  void DrawText(const String& text, const RCPtr<LFont>& font, const PointT<float>& point,
                const LColor& color) override;
  void DrawRect(const RectT<float>& rect, const LColor& color, float lineWidth) override;
  void FillRect(const RectT<float>& rect, const LColor& color, bool blend) override;
  void DrawFilledRect(const RectT<float>& rect, const LColor& fillColor, const LColor& lineColor,
                      float lineWidth) override;
  void FillRects(const ColorRectListT<float>& rects, const PointT<float>& offset) override;
  void DrawLine(const PointT<float>& from, const PointT<float>& to, const LColor& color,
                float lineWidth) override;
  void DrawLineSegments(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                        const PointT<float>& scale, float lineWidth) override;
  void DrawPolyline(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                    const PointT<float>& scale, float lineWidth) override;
  void DrawPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                   const PointT<float>& scale, float lineWidth) override;
  void FillPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                   const PointT<float>& scale) override;
  void DrawBitmap(const RCPtr<LBitmap>& bitmap, const RectT<float>& rect, ResizeType resizeType) override;
  TFRESULT DrawContext(const RCPtr<LRenderContextInfo>& context, const PointT<float>& point,
                       const RectT<std::int32_t>& sourceRect) override;
  TFRESULT DrawContextAndSwap(const RCPtr<LRenderContextInfo>& context, const PointT<float>& point) override;
  void SetClipRect(const RectT<double>& rect) override;

 private:
  static constexpr std::int32_t kCacheCapacity = 256;
  static constexpr std::uint32_t kPurgePeriod = 300000;  // Milliseconds.

  struct FontEntry {
    std::unique_ptr<Platform::CanvasFont> mCanvasFont;
    FontMetrics mMetrics;
    double mAscent = 0;  // Pixels, not rounded.
  };

  // With the present clip; null outside of a frame.
  Platform::Canvas* GetCanvas();
  static void MakeBuffersFit(LGDIRenderContextInfo& context);
  void NoteClip();
  void Show(LGDIRenderContextInfo& context);
  void PurgeNowAndThen();
  // From drawing coordinates.
  Platform::PixelRect ToTarget(const RectT<double>& rect) const;
  Platform::CanvasPoint ToTarget(const PointT<float>& point) const;
  void FillMoved(const RectT<double>& rect, const LColor& color, const PointT<float>& offset);
  void DrawVisible(const LBitmap& bitmap, const PointT<std::int32_t>& corner, const SizeT<std::int32_t>& size,
                   ResizeType resizeType);
  RCPtr<LCachedBitmap> FindPicture(const RCPtr<LBitmap>& bitmap, const SizeT<std::int32_t>& size,
                                   ResizeType resizeType);
  RCPtr<LGraphicsPath> FindPath(PolylineT<float>& polyline, Platform::CanvasPathKind kind);
  Platform::PathPlacement Place(const PointT<float>& offset, const PointT<float>& scale) const;
  void Stroke(PolylineT<float>& polyline, Platform::CanvasPathKind kind, const LColor& color,
              const PointT<float>& offset, const PointT<float>& scale, float lineWidth);
  const FontEntry& FindFont(const RCPtr<LFont>& font);

  RCPtr<LGDIRenderContextInfo> mContext;  // The top one.
  RectT<double> mTargetClip;              // Of that one, in its pixels.
  PurgableObjectCache<LCachedBitmap, CashableBitmapDescriptor, CashableBitmapDescriptor,
                      CashableBitmapDescriptor::Key, 8, CashableBitmapDescriptor::Hash>
      mBitmapCache{kCacheCapacity};
  PurgableObjectCache<LGraphicsPath, PolylineT<float>, std::int32_t, LGraphicsPath::Key, 8,
                      GetBits<8, 0, std::int32_t>>
      mPathCache{kCacheCapacity};
  std::map<const LFont*, FontEntry> mFonts;  // Fonts never die.
  std::vector<Platform::PixelRect> mShownRects;
  std::uint32_t mLastPurgeTick;
};

}  // namespace TF
