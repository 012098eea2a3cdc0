#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/HitExclusion.h"

namespace TF {

namespace {

constexpr TFRESULT kNoParam = -1;

bool IsVertical(const LMouseWheelParam& param) {
  return param.mDirection == LMouseWheelParam::kDown || param.mDirection == LMouseWheelParam::kUp;
}

// What a floating control lies over, for a walk from it that does not go to its parent.
RCPtr<LControl> FindBeneath(const RCPtr<LControl>& floating, const PointT<std::int32_t>& point,
                            HitExclusion& excluded) {
  excluded.AddTree(floating);
  for (RCPtr<LControl> above = floating->GetParent(); above; above = RCPtr<LControl>(above->GetParent())) {
    excluded.Add(above);
  }
  const RCPtr<LRootWindow> window = floating->GetRootWindow();
  RCPtr<LControl> beneath;
  PointT<std::int32_t> local;
  if (window) window->HitTest(beneath, point, local, false);
  return beneath;
}

// The next control on a walk upward.
RCPtr<LControl> StepUp(const RCPtr<LControl>& control, const PointT<std::int32_t>& point,
                       HitExclusion& excluded) {
  return control->GetClipToParent() ? control->GetParent() : FindBeneath(control, point, excluded);
}

}  // namespace

TFRESULT LControl::MouseWheel(const RCPtr<LMouseWheelParam>& param) {
  if (!param) return kNoParam;
  HitExclusion excluded;
  RCPtr<LControl> control(this);
  while (control) {
    const TFRESULT result =
        IsVertical(*param) ? control->OnVerticalWheel(param) : control->OnHorizontalWheel(param);
    if (result != kNothingDone) return result;
    control = StepUp(control, {param->mX, param->mY}, excluded);
  }
  return kNothingDone;
}

TFRESULT LControl::OnVerticalWheel(const RCPtr<LMouseWheelParam>&) {
  return kNothingDone;
}

TFRESULT LControl::OnHorizontalWheel(const RCPtr<LMouseWheelParam>&) {
  return kNothingDone;
}

void LControl::FindDropTarget(RCPtr<LControl>& result, const RCPtr<LControl>& control,
                              const PointT<double>& point) {
  const PointT<std::int32_t> whole{RoundToInt32(point.mX), RoundToInt32(point.mY)};
  HitExclusion excluded;
  result = RCPtr<LControl>(this);
  while (result && !result->IsDropTarget(control)) result = StepUp(result, whole, excluded);
}

bool LControl::IsDropTarget(const RCPtr<LControl>&) {
  return false;
}

}  // namespace TF
