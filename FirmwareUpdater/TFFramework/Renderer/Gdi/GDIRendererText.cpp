#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "Platform/Desktop.h"
#include "TFFramework/Renderer/Gdi/GDIRenderer.h"

namespace TF {

namespace {

constexpr double kPixelsPerPoint = 96.0 / 72.0;
// Added before rounding, so that nothing of a line is cut.
constexpr double kAlmostHalf = 0.499;
constexpr double kAlmostOne = 0.9999;
// A text has room on both sides, and stands this much below the left end and above the top of it.
constexpr std::int32_t kSidePadding = 3;
constexpr double kTextIndent = 1;
constexpr double kTextRise = 1;

Platform::FontDescription Describe(const LFont& font) {
  return {std::u16string(font.GetName().View()), font.GetSize(), (font.GetStyle() & LFont::kBold) != 0,
          (font.GetStyle() & LFont::kItalic) != 0};
}

FontMetrics RoundedMetrics(const Platform::FontDesign& design, double pixels) {
  return {RoundToInt32(design.mLineSpacing * pixels + kAlmostHalf),
          RoundToInt32(-design.mAscent * pixels - kAlmostHalf),
          RoundToInt32(design.mDescent * pixels + kAlmostHalf)};
}

}  // namespace

const LGDIRenderer::FontEntry& LGDIRenderer::FindFont(const RCPtr<LFont>& font) {
  const auto found = mFonts.find(font.Get());
  if (found != mFonts.end()) return found->second;
  FontEntry entry;
  if (font) entry.mCanvasFont = Platform::GetDesktop().OpenFont(Describe(*font));
  if (entry.mCanvasFont) {
    const Platform::FontDesign design = entry.mCanvasFont->GetDesign();
    const double pixels = std::min<double>(font->GetSize(), Platform::kLargestFontSize) * kPixelsPerPoint;
    entry.mMetrics = RoundedMetrics(design, pixels);
    entry.mAscent = design.mAscent * pixels;
  }
  return mFonts.emplace(font.Get(), std::move(entry)).first->second;
}

FontMetrics LGDIRenderer::GetFontMetrics(const RCPtr<LFont>& font) {
  return FindFont(font).mMetrics;
}

RectT<float> LGDIRenderer::MeasureText(const String& text, const RCPtr<LFont>& font) {
  const FontEntry& entry = FindFont(font);
  if (text.IsEmpty() || !entry.mCanvasFont) return {};
  std::int32_t width = static_cast<std::int32_t>(entry.mCanvasFont->MeasureWidth(text.View()) + kAlmostOne);
  if (width > 0) width += kSidePadding;
  return {0, static_cast<float>(entry.mMetrics.mAscent), static_cast<float>(width),
          static_cast<float>(entry.mMetrics.mHeight)};
}

void LGDIRenderer::DrawText(const String& text, const RCPtr<LFont>& font, const PointT<float>& point,
                            const LColor& color) {
  if (!mContext) return;
  const FontEntry& entry = FindFont(font);
  if (!entry.mCanvasFont) return;
  const Platform::CanvasPoint place = ToTarget(point);
  GetCanvas()->DrawText(*entry.mCanvasFont, text.View(), place.mX + kTextIndent,
                        place.mY - kTextRise + entry.mAscent, color.ToPacked());
}

}  // namespace TF
