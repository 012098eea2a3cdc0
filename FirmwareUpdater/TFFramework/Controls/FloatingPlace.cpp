#include "TFFramework/Controls/FloatingPlace.h"

#include <algorithm>

#include "TFFramework/ControlBase/Control.h"

namespace TF {

void PlaceFromParent(LControl& control, LayoutAxis axis, double position) {
  LayoutPosition place = control.GetAxisPosition(axis);
  place.mReference = PositionReference::kParent;
  place.mAnchor = 0;
  place.mRel = 0;
  place.mAbs = position;
  place.mIsDocked = true;
  control.SetAxisPosition(axis, place);
}

void PlaceInWindow(LControl& control, const PointT<double>& point) {
  const RCPtr<LControl> parent = control.GetParent();
  const RCPtr<LRootWindow> window = control.GetRootWindow();
  if (!parent || !window) return;
  const RectT<std::int32_t> room = window->GetClientRect();
  const PointT<double> origin = parent->GetWindowPosition();
  const auto fit = [](double at, double size, double limit) {
    return std::max(at + size > limit ? limit - size : at, 0.0);
  };
  PlaceFromParent(control, LayoutAxis::kX,
                  fit(point.mX, control.GetBounds().mWidth, room.mWidth) - origin.mX);
  PlaceFromParent(control, LayoutAxis::kY,
                  fit(point.mY, control.GetBounds().mHeight, room.mHeight) - origin.mY);
}

}  // namespace TF
