#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/DockedPart.h"
#include "TFFramework/ControlBase/VisualPartDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/RCPtrArray.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// What a skin says of one look: the parts that draw it and the place of its text. Not changed after
// it was read.
class LLookDescriptor : public virtual LRefCountedObject {
 public:
  String mName;
  // Its offsets are the client rectangle. Null: that is the whole frame, and nothing fills it.
  RCPtr<LDockedPart> mClientPart;
  RCPtrArray<LDockedPart, 1, 0> mNonClientParts;

  // The values below count when it is set: `TextProperties` were read.
  bool mHasText = false;
  // Each edge of the text's rectangle: a fraction of the width or height, plus pixels.
  float TextLeftRel = 0;
  std::int32_t TextLeftAbs = 0;
  float TextRightRel = 0;
  std::int32_t TextRightAbs = 0;
  float TextHAlign = 0;  // 0 left, 0.5 centre, 1 right.
  float TextTopRel = 0;
  std::int32_t TextTopAbs = 0;
  float TextBottomRel = 0;
  std::int32_t TextBottomAbs = 0;
  float TextVAlign = 0;                             // 0 top, 0.5 centre, 1 bottom.
  RCPtr<LVisualPartDescriptor> TextForegroundPart;  // Not null with a text.
};

// The looks of a control by their slot. A slot may be null, and one look may stand in many.
using LLookList = LRCPtrArray<LLookDescriptor, 1, 0>;

}  // namespace TF
