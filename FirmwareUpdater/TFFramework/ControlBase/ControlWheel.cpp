#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/HitExclusion.h"

namespace TF {

namespace {

constexpr TFRESULT kNoParam = -1;

bool IsVertical(const LMouseWheelParam& param) {
  return param.mDirection == LMouseWheelParam::kDown || param.mDirection == LMouseWheelParam::kUp;
}

// A walk upward from a control. Beyond a floating one lies what that one covers, not its parent.
//
// What the walk has passed is kept out of its own hit tests alone; whoever is asked on the way may test
// for other reasons.
class WalkUp {
 public:
  explicit WalkUp(const PointT<std::int32_t>& point) : mPoint(point) {}

  // Null at the end.
  RCPtr<LControl> Next(const RCPtr<LControl>& control) {
    return control->GetClipToParent() ? control->GetParent() : FindBeneath(control);
  }

 private:
  RCPtr<LControl> FindBeneath(const RCPtr<LControl>& floating) {
    mPassed.push_back(floating);
    const RCPtr<LRootWindow> window = floating->GetRootWindow();
    RCPtr<LControl> beneath;
    if (!window) return beneath;
    HitExclusion excluded;
    for (const RCPtr<LControl>& passed : mPassed) {
      excluded.AddTree(passed);
      for (RCPtr<LControl> above = passed->GetParent(); above; above = RCPtr<LControl>(above->GetParent())) {
        excluded.Add(above);
      }
    }
    PointT<std::int32_t> local;
    window->HitTest(beneath, mPoint, local, false);
    return beneath;
  }

  const PointT<std::int32_t> mPoint;  // Of the window.
  std::vector<RCPtr<LControl>> mPassed;
};

}  // namespace

TFRESULT LControl::MouseWheel(const RCPtr<LMouseWheelParam>& param) {
  if (!param) return kNoParam;
  WalkUp walk({param->mX, param->mY});
  RCPtr<LControl> control(this);
  while (control) {
    const TFRESULT result =
        IsVertical(*param) ? control->OnVerticalWheel(param) : control->OnHorizontalWheel(param);
    if (result != kNothingDone) return result;
    control = walk.Next(control);
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
  WalkUp walk({RoundToInt32(point.mX), RoundToInt32(point.mY)});
  result = RCPtr<LControl>(this);
  while (result && !result->IsDropTarget(control)) result = walk.Next(result);
}

bool LControl::IsDropTarget(const RCPtr<LControl>&) {
  return false;
}

}  // namespace TF
