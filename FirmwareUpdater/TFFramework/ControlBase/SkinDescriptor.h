#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/LookDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// What a skin says of a font. What it leaves out comes from the parent or the system.
struct FontAttributes {
  static constexpr std::int32_t kNoFontStyle = -1;

  bool mFontInherits = false;
  bool mFontSizeRelative = false;
  String mFontName;     // Empty: none is given.
  float mFontSize = 0;  // Points, or a factor when it is relative; 0: none is given.
  std::int32_t mFontStyle = kNoFontStyle;
};

// The looks and the font of a control, or the font of a whole skin. Not changed after it was read.
class LSkinDescriptor : public virtual LRefCountedObject, public FontAttributes {
 public:
  String mName;
  RCPtr<LLookList> mLookList;  // Null: no looks.
};

}  // namespace TF
