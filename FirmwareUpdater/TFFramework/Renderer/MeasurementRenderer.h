#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Renderer/FontRenderer/Font.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Pixels; mAscent is negative.
struct FontMetrics {
  std::int32_t mHeight = 0;
  std::int32_t mAscent = 0;
  std::int32_t mDescent = 0;

  bool operator==(const FontMetrics&) const = default;
};

// What can be asked about text without a target to draw on.
class LMeasurementRenderer : public virtual LRefCountedObject {
 public:
  virtual FontMetrics GetFontMetrics(const RCPtr<LFont>& font) = 0;
  // One line of text: from 0 to its width, blanks at its end included, and from the font's ascent
  // over its height. All 0 for an empty text.
  virtual RectT<float> MeasureText(const String& text, const RCPtr<LFont>& font) = 0;
};

}  // namespace TF
