#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Color.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

enum class ColorizerType : std::uint32_t { kSolidFill = 0, kLinearGradient = 1, kRadialGradient = 2 };

// Tints a picture, or stands for a plain colour. Filled by who reads it from a document and not
// changed after that.
class LColorizer : public virtual LRefCountedObject {
 public:
  // Also true for a gradient from one colour to the very same.
  bool IsSolid() const { return mType == ColorizerType::kSolidFill || mColor == mEndColor; }

  String mName;
  ColorizerType mType = ColorizerType::kSolidFill;
  LColor mColor;
  LColor mEndColor;
  // The gradient's line.
  float mStartX = 0;
  float mStartY = 0;
  float mEndX = 0;
  float mEndY = 0;
};

}  // namespace TF
