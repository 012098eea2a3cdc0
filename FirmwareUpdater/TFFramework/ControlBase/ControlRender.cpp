#include "TFFramework/ControlBase/Control.h"

namespace TF {

TFRESULT LControl::Render(const RCPtr<LRenderer>&, const Region&, RCPtrArray<LControl>&, bool pass) {
  return mLayout->ClipToParent == pass ? kInvalidArgument : kSuccess;
}

TFRESULT LControl::OnRenderBackground(const RCPtr<LRenderer>&) {
  return kSuccess;
}

TFRESULT LControl::OnRenderForeground(const RCPtr<LRenderer>&) {
  return kSuccess;
}

void LControl::Invalidate(const RectT<double>& rect, bool clip) {
  const PointT<double> position = GetPositionInParent();
  InvalidateUp({rect.mX + position.mX, rect.mY + position.mY, rect.mWidth, rect.mHeight}, clip, rect);
}

void LControl::InvalidateUp(const RectT<double>&, bool, const RectT<double>&) {}

void LControl::InvalidateFrame() {
  Invalidate({0, 0, mBounds.mWidth, mBounds.mHeight}, mLayout->ClipToParent);
}

void LControl::InvalidateUnclipped() {
  if (mUnclippedCount == 0) return;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    if (!child->mLayout->ClipToParent) child->InvalidateFrame();
    child->InvalidateUnclipped();
  }
}

void LControl::OnChildMoved(const RCPtr<LControl>&) {}

void LControl::OnScrollOffsetChange(const PointT<double>&, const PointT<double>&) {}

void LControl::RebuildBackingStore() {}

}  // namespace TF
