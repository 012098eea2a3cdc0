#include <algorithm>
#include <cmath>
#include <vector>

#include "Platform/Desktop.h"
#include "TFFramework/Renderer/Gdi/GDIRenderer.h"
#include "TFFramework/Renderer/Gdi/TargetPixels.h"

namespace TF {

namespace {

using Platform::CanvasPathKind;
using Platform::PixelRect;

// Scales this close to 1 leave the points as they are.
constexpr double kScaleTolerance = 1.1920929e-6;

RectT<double> Widened(const RectT<float>& rect) {
  return {rect.mX, rect.mY, rect.mWidth, rect.mHeight};
}

double OneIfNear(double scale) {
  return std::abs(scale - 1) < kScaleTolerance ? 1 : scale;
}

// The edges of a line of this width that runs through the pixel of the coordinate.
struct LineEdges {
  LineEdges(std::int64_t coordinate, double width)
      : mNear(coordinate + static_cast<std::int64_t>(std::ceil(-width / 2))),
        mFar(coordinate + static_cast<std::int64_t>(std::ceil(width / 2))) {}

  std::int64_t mNear;
  std::int64_t mFar;
};

PixelRect FromEdges(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
  return ToPixels({static_cast<double>(left), static_cast<double>(top), static_cast<double>(right - left),
                   static_cast<double>(bottom - top)});
}

// Four strips that do not overlap, since the colour may be translucent.
void DrawOutline(Platform::Canvas& canvas, const PixelRect& rect, double width, std::uint32_t color) {
  const LineEdges left(rect.mX, width);
  const LineEdges top(rect.mY, width);
  const LineEdges right(std::int64_t{rect.mX} + rect.mWidth, width);
  const LineEdges bottom(std::int64_t{rect.mY} + rect.mHeight, width);
  if (left.mFar >= right.mNear || top.mFar >= bottom.mNear) {
    return canvas.FillRect(FromEdges(left.mNear, top.mNear, right.mFar, bottom.mFar), color);
  }
  canvas.FillRect(FromEdges(left.mNear, top.mNear, right.mFar, top.mFar), color);
  canvas.FillRect(FromEdges(left.mNear, top.mFar, left.mFar, bottom.mNear), color);
  canvas.FillRect(FromEdges(right.mNear, top.mFar, right.mFar, bottom.mNear), color);
  canvas.FillRect(FromEdges(left.mNear, bottom.mNear, right.mFar, bottom.mFar), color);
}

// Wider than every surface.
constexpr double kMaxLineWidth = 1 << 20;

double LineWidth(float width) {
  return width > 1 ? std::min<double>(width, kMaxLineWidth) : 1;
}

}  // namespace

void LGDIRenderer::DrawRect(const RectT<float>& rect, const LColor& color, float lineWidth) {
  if (!mContext || rect.mWidth < 0 || rect.mHeight < 0) return;
  DrawOutline(*GetCanvas(), ToTarget(Widened(rect)), LineWidth(lineWidth), color.ToPacked());
}

void LGDIRenderer::FillRect(const RectT<float>& rect, const LColor& color, bool blend) {
  if (!mContext) return;
  if (blend) return FillMoved(Widened(rect), color, {});
  GetCanvas()->SetPixels(ToPixels(Widened(rect)), color.ToPacked());
}

void LGDIRenderer::FillMoved(const RectT<double>& rect, const LColor& color, const PointT<float>& offset) {
  const RectT<double> moved{rect.mX + offset.mX, rect.mY + offset.mY, rect.mWidth, rect.mHeight};
  GetCanvas()->FillRect(ToTarget(moved), color.ToPacked());
}

void LGDIRenderer::DrawFilledRect(const RectT<float>& rect, const LColor& fillColor, const LColor& lineColor,
                                  float lineWidth) {
  if (fillColor.mAlpha > 0) FillRect(rect, fillColor, true);
  if (lineColor.mAlpha > 0) DrawRect(rect, lineColor, lineWidth);
}

void LGDIRenderer::FillRects(const ColorRectListT<float>& rects, const PointT<float>& offset) {
  if (!mContext) return;
  for (std::int32_t index = rects.mRects.GetCount(); index-- > 0;) {
    const ColorRectT<float>& entry = rects.mRects[index];
    const double scaleX = rects.mScaleX;
    const double scaleY = rects.mScaleY;
    FillMoved({entry.mRect.mX * scaleX, entry.mRect.mY * scaleY, entry.mRect.mWidth * scaleX,
               entry.mRect.mHeight * scaleY},
              entry.mColor, offset);
  }
}

void LGDIRenderer::DrawLine(const PointT<float>& from, const PointT<float>& to, const LColor& color,
                            float lineWidth) {
  if (!mContext) return;
  GetCanvas()->DrawLine(ToTarget(from), ToTarget(to), lineWidth, color.ToPacked());
}

void LGDIRenderer::DrawLineSegments(PolylineT<float>& polyline, const LColor& color,
                                    const PointT<float>& offset, const PointT<float>& scale,
                                    float lineWidth) {
  Stroke(polyline, CanvasPathKind::kSegments, color, offset, scale, lineWidth);
}

void LGDIRenderer::DrawPolyline(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                                const PointT<float>& scale, float lineWidth) {
  Stroke(polyline, CanvasPathKind::kPolyline, color, offset, scale, lineWidth);
}

void LGDIRenderer::DrawPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                               const PointT<float>& scale, float lineWidth) {
  Stroke(polyline, CanvasPathKind::kPolygon, color, offset, scale, lineWidth);
}

void LGDIRenderer::Stroke(PolylineT<float>& polyline, Platform::CanvasPathKind kind, const LColor& color,
                          const PointT<float>& offset, const PointT<float>& scale, float lineWidth) {
  if (!mContext) return;
  const RCPtr<LGraphicsPath> path = FindPath(polyline, kind);
  GetCanvas()->StrokePath(path->GetPath(), Place(offset, scale), lineWidth, color.ToPacked());
}

void LGDIRenderer::FillPolygon(PolylineT<float>& polyline, const LColor& color, const PointT<float>& offset,
                               const PointT<float>& scale) {
  if (!mContext) return;
  const RCPtr<LGraphicsPath> path = FindPath(polyline, CanvasPathKind::kPolygon);
  GetCanvas()->FillPath(path->GetPath(), Place(offset, scale), color.ToPacked());
}

Platform::PathPlacement LGDIRenderer::Place(const PointT<float>& offset, const PointT<float>& scale) const {
  const Platform::CanvasPoint place = ToTarget(offset);
  return {OneIfNear(scale.mX), OneIfNear(scale.mY), place.mX, place.mY};
}

RCPtr<LGraphicsPath> LGDIRenderer::FindPath(PolylineT<float>& polyline, Platform::CanvasPathKind kind) {
  RCPtr<LGraphicsPath>* const slot = mPathCache.Find(polyline);
  if (*slot && !polyline.mChanged && (*slot)->GetKind() == kind) return *slot;
  polyline.mChanged = false;
  std::vector<Platform::CanvasPoint> points;
  points.reserve(static_cast<std::size_t>(polyline.mPoints.GetCount()));
  for (std::int32_t index = 0; index < polyline.mPoints.GetCount(); ++index) {
    const PointT<float>& point = polyline.mPoints[index];
    points.push_back({point.mX, point.mY});
  }
  *slot = MakeRC<LGraphicsPath>(kind, Platform::GetDesktop().CreatePath(kind, points));
  return *slot;
}

}  // namespace TF
