#include "TFFramework/ControlBase/HitExclusion.h"

#include "TFFramework/ControlBase/Control.h"

namespace TF {

HitExclusion::~HitExclusion() {
  for (const RCPtr<LControl>& control : mExcluded) control->SetHitExcluded(false);
}

void HitExclusion::Add(const RCPtr<LControl>& control) {
  if (control->IsHitExcluded()) return;
  mExcluded.push_back(control);
  control->SetHitExcluded(true);
}

void HitExclusion::AddTree(const RCPtr<LControl>& control) {
  std::vector<RCPtr<LControl>> waiting(1, control);
  while (!waiting.empty()) {
    const RCPtr<LControl> next = waiting.back();
    waiting.pop_back();
    Add(next);
    for (std::int32_t index = 0; index < next->GetChildCount(); ++index) {
      waiting.push_back(next->GetChild(index));
    }
  }
}

}  // namespace TF
