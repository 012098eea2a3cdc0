#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Colorizer.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/ResizeType.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LVisualPart;

// What a skin says of one rectangular picture or colour: it names an image or a colorizer, or both.
// Not changed after it was read, but for the part that is made from it.
//
// Threads: main thread.
class LVisualPartDescriptor : public virtual LRefCountedObject {
 public:
  LVisualPartDescriptor();
  ~LVisualPartDescriptor() override;

  String mName;
  String mImageFile;               // Path of the picture; empty for a plain colour.
  RectT<std::int32_t> mImageRect;  // The part's place in the picture.
  SizeT<std::int32_t> mSize;       // With a picture the size of mImageRect.
  ResizeType mResizeType = ResizeType::kStretch;
  RCPtr<LColorizer> mColorizer;  // May be null.
  float mColorizerAlphaMod = 1;
  String mMaskFile;               // Path of the mask; empty without one.
  RectT<std::int32_t> mMaskRect;  // The mask's place in its picture.
  // Made when it is first needed, and shared by every look that names this descriptor.
  mutable RCPtr<LVisualPart> mVisualPart;
};

}  // namespace TF
