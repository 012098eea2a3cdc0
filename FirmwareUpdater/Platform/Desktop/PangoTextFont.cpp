#include "Platform/Desktop/PangoTextFont.h"

#include <cairo-ft.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "Platform/Desktop/CleanUtf8.h"

namespace Platform {

namespace {

constexpr std::size_t kMaxLayouts = 128;
constexpr std::size_t kMaxKeptUnits = 65536;  // Code units of all kept texts.
// Code units. What is longer reaches beyond every screen.
constexpr std::size_t kMaxTextLength = 16384;
// Points that all characters of a text may take, each as wide as it is high twice over: Pango's numbers end
// at two million pixels.
constexpr double kMaxTextExtent = 1500000 / 2.0;

double SizeOf(const FontDescription& description) {
  return std::min(description.mSize, kLargestFontSize);
}

}  // namespace

FontDescriptionHandle DescribeFont(const FontDescription& description) {
  FontDescriptionHandle result(pango_font_description_new());
  const std::string family = CleanUtf8(description.mFamily);
  pango_font_description_set_family(result.get(), family.empty() ? "Sans" : family.c_str());
  pango_font_description_set_size(result.get(), static_cast<int>(SizeOf(description) * PANGO_SCALE + 0.5));
  pango_font_description_set_weight(result.get(),
                                    description.mBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_font_description_set_style(result.get(),
                                   description.mItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  return result;
}

PangoTextFont::PangoTextFont(PangoContext* context, const FontDescription& description)
    : mContext(context),
      mDescription(DescribeFont(description)),
      mMaxLength(std::clamp(static_cast<std::size_t>(kMaxTextExtent / SizeOf(description)), std::size_t{1},
                            kMaxTextLength)),
      mDesign(ReadDesign()) {}

FontDesign PangoTextFont::ReadDesign() const {
  const GObjectHandle<PangoFont> font(pango_context_load_font(mContext, mDescription.get()));
  cairo_scaled_font_t* const scaled =
      font ? pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font.get())) : nullptr;
  const FT_Face face = scaled ? cairo_ft_scaled_font_lock_face(scaled) : nullptr;
  if (!face) return {};
  FontDesign design;
  if (face->units_per_EM > 0) {
    const double unit = face->units_per_EM;
    design = {face->ascender / unit, -face->descender / unit, face->height / unit};
  }
  cairo_ft_scaled_font_unlock_face(scaled);
  return design;
}

double PangoTextFont::MeasureWidth(std::u16string_view text) {
  return text.empty() ? 0 : FindLayout(text).mWidth;
}

PixelRect PangoTextFont::TextLayout::InkAt(double x, double baseline) const {
  // The glyphs' places are rounded, and smoothing reaches a pixel farther.
  constexpr int kReach = 2;
  return {static_cast<std::int32_t>(std::floor(x)) + mInk.x - kReach,
          static_cast<std::int32_t>(std::floor(baseline - mBaseline)) + mInk.y - kReach,
          mInk.width + 2 * kReach + 1, mInk.height + 2 * kReach + 1};
}

void PangoTextFont::TextLayout::Show(cairo_t* cairo, double x, double baseline) const {
  cairo_move_to(cairo, x, baseline - mBaseline);
  pango_cairo_show_layout(cairo, mLayout.get());
}

const PangoTextFont::TextLayout& PangoTextFont::FindLayout(std::u16string_view text) {
  text = text.substr(0, mMaxLength);
  const auto found = mIndex.find(text);
  if (found != mIndex.end()) {
    mLayouts.splice(mLayouts.begin(), mLayouts, found->second);
    return mLayouts.front();
  }
  mLayouts.push_front(MakeLayout(text));
  mIndex.emplace(mLayouts.front().mText, mLayouts.begin());
  mKeptUnits += text.size();
  while (mLayouts.size() > kMaxLayouts || (mKeptUnits > kMaxKeptUnits && mLayouts.size() > 1)) {
    mKeptUnits -= mLayouts.back().mText.size();
    mIndex.erase(mLayouts.back().mText);
    mLayouts.pop_back();
  }
  return mLayouts.front();
}

PangoTextFont::TextLayout PangoTextFont::MakeLayout(std::u16string_view text) const {
  TextLayout result;
  result.mText = text;
  result.mLayout.reset(pango_layout_new(mContext));
  PangoLayout* const layout = result.mLayout.get();
  pango_layout_set_font_description(layout, mDescription.get());
  const std::string utf8 = CleanUtf8(text);
  pango_layout_set_text(layout, utf8.data(), static_cast<int>(utf8.size()));
  PangoRectangle logical;
  pango_layout_get_extents(layout, &result.mInk, &logical);
  pango_extents_to_pixels(&result.mInk, nullptr);
  result.mWidth = static_cast<double>(logical.x + logical.width) / PANGO_SCALE;
  result.mBaseline = static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE;
  return result;
}

}  // namespace Platform
