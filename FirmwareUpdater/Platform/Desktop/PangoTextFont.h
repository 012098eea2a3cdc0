#pragma once

#include <pango/pangocairo.h>

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Platform/Canvas.h"
#include "Platform/Desktop/Handles.h"
#include "Platform/Desktop/LiveObjects.h"

namespace Platform {

// What to ask Pango for.
FontDescriptionHandle DescribeFont(const FontDescription& description);

// A font as Pango finds it, with the layouts of the texts that were used last: a label's text is
// shaped once and then only shown.
class PangoTextFont : public CanvasFont {
 public:
  struct TextLayout {
    // The pixels that the text may touch when it is drawn there.
    PixelRect InkAt(double x, double baseline) const;
    void Show(cairo_t* cairo, double x, double baseline) const;

    std::u16string mText;
    GObjectHandle<PangoLayout> mLayout;
    double mWidth = 0;
    double mBaseline = 0;   // Below the layout's top.
    PangoRectangle mInk{};  // Pixels, from the layout's top left.
  };

  PangoTextFont(PangoContext* context, const FontDescription& description);

  FontDesign GetDesign() const override { return mDesign; }
  double MeasureWidth(std::u16string_view text) override;
  // Good until the next call.
  const TextLayout& FindLayout(std::u16string_view text);

 private:
  TextLayout MakeLayout(std::u16string_view text) const;
  FontDesign ReadDesign() const;

  LiveObject mLive;
  PangoContext* const mContext;
  FontDescriptionHandle mDescription;
  std::size_t mMaxLength;  // Code units of a text that count.
  FontDesign mDesign;
  std::list<TextLayout> mLayouts;  // The one used last first.
  std::size_t mKeptUnits = 0;
  // The keys are the texts in mLayouts.
  std::unordered_map<std::u16string_view, std::list<TextLayout>::iterator> mIndex;
};

}  // namespace Platform
