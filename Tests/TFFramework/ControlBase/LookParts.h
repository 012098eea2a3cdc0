#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/LookDescriptor.h"

namespace TF {

inline RCPtr<LColorizer> Solid(std::uint32_t argb) {
  auto colorizer = MakeRC<LColorizer>();
  colorizer->mColor = LColor::FromPacked(argb);
  return colorizer;
}

inline RCPtr<LVisualPartDescriptor> ColorPart(std::uint32_t argb, const SizeT<std::int32_t>& size = {1, 1}) {
  auto part = MakeRC<LVisualPartDescriptor>();
  part->mColorizer = Solid(argb);
  part->mSize = size;
  return part;
}

// Held on all four sides.
inline RCPtr<LDockedPart> Client(const RCPtr<LVisualPartDescriptor>& part, std::int32_t left,
                                 std::int32_t top, std::int32_t right, std::int32_t bottom) {
  auto docked = MakeRC<LDockedPart>();
  docked->mPart = part;
  docked->mHasLeft = docked->mHasTop = docked->mHasRight = docked->mHasBottom = true;
  docked->OffsetLeft = left;
  docked->OffsetTop = top;
  docked->OffsetRight = right;
  docked->OffsetBottom = bottom;
  return docked;
}

}  // namespace TF
