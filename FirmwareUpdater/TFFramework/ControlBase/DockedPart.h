#pragma once

#include <cstdint>
#include <optional>

#include "TFFramework/ControlBase/VisualPartDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"

namespace TF {

// Places one part inside a look, whatever the size of the look. Not changed after it was read.
class LDockedPart : public virtual LRefCountedObject {
 public:
  ConstRCPtr<LVisualPartDescriptor> mPart;  // Never null in a look.
  // Which of the four offsets the skin gave.
  bool mHasLeft = false;
  bool mHasTop = false;
  bool mHasRight = false;
  bool mHasBottom = false;
  // Pixels from the edge of that name, to the right and down: inward from the right and the bottom
  // edge is negative.
  std::int32_t OffsetLeft = 0;
  std::int32_t OffsetTop = 0;
  std::int32_t OffsetRight = 0;
  std::int32_t OffsetBottom = 0;
  // Above 0, in place of the part's own size.
  std::optional<std::int32_t> Width;
  std::optional<std::int32_t> Height;
};

}  // namespace TF
