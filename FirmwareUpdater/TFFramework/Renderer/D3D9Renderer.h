#pragma once

#include "TFFramework/Renderer/Renderer.h"

namespace TF {

class LD3D9RenderContextInfo : public LRenderContextInfo {
 public:
  using LRenderContextInfo::LRenderContextInfo;
  SizeT<std::int32_t> GetMaxSurfaceSize() const override { return {0, 0}; }
  void ShowAgain() override {}
};

// A renderer type without an implementation: frames, states and contexts work, every drawing operation
// does nothing and text has no size.
class LD3D9Renderer : public LRenderer {
 public:
  FontMetrics GetFontMetrics(const RCPtr<LFont>&) override { return {}; }
  RectT<float> MeasureText(const String&, const RCPtr<LFont>&) override { return {}; }
  RendererType GetRendererType() const override { return RendererType::kD3D9; }
  TFRESULT CreateRenderContext(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                               bool offscreen, RCPtr<LRenderContextInfo>& context) override {
    context = MakeRC<LD3D9RenderContextInfo>(rect, window, offscreen);
    return kSuccess;
  }
  void DrawText(const String&, const RCPtr<LFont>&, const PointT<float>&, const LColor&) override {}
  void DrawRect(const RectT<float>&, const LColor&, float) override {}
  void FillRect(const RectT<float>&, const LColor&, bool) override {}
  void DrawFilledRect(const RectT<float>&, const LColor&, const LColor&, float) override {}
  void FillRects(const ColorRectListT<float>&, const PointT<float>&) override {}
  void DrawLine(const PointT<float>&, const PointT<float>&, const LColor&, float) override {}
  void DrawLineSegments(PolylineT<float>&, const LColor&, const PointT<float>&, const PointT<float>&,
                        float) override {}
  void DrawPolyline(PolylineT<float>&, const LColor&, const PointT<float>&, const PointT<float>&,
                    float) override {}
  void DrawPolygon(PolylineT<float>&, const LColor&, const PointT<float>&, const PointT<float>&,
                   float) override {}
  void FillPolygon(PolylineT<float>&, const LColor&, const PointT<float>&, const PointT<float>&) override {}
  void DrawBitmap(const RCPtr<LBitmap>&, const RectT<float>&, ResizeType) override {}
  TFRESULT DrawContext(const RCPtr<LRenderContextInfo>&, const PointT<float>&,
                       const RectT<std::int32_t>&) override {
    return kSuccess;
  }
  TFRESULT DrawContextAndSwap(const RCPtr<LRenderContextInfo>&, const PointT<float>&) override {
    return kSuccess;
  }
};

}  // namespace TF
