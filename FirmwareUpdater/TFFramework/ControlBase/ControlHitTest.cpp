#include "TFFramework/ControlBase/Control.h"

namespace TF {

void LControl::HitTest(RCPtr<LControl>& result, const PointT<double>&, bool, PointT<double>&, std::int32_t&) {
  result = nullptr;
}

bool LControl::IsTransparentAt(const PointT<double>&) {
  return true;
}

std::uint32_t LControl::GetColorAtPoint(const PointT<double>& point, std::int32_t slot) {
  const RCPtr<LLook> look = GetLook(slot);
  return look ? look->GetColorAtPoint(point) : LVisualPart::kNothing;
}

bool LControl::ContainsPoint(const PointT<double>& point) {
  return point.mX >= mBounds.mX && point.mX < mBounds.GetRight() && point.mY >= mBounds.mY &&
         point.mY < mBounds.GetBottom();
}

}  // namespace TF
