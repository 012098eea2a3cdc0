#include "TFFramework/ControlBase/LayoutDescriptor.h"

namespace TF {

bool LayoutPosition::operator==(const LayoutPosition& other) const {
  return mAnchor == other.mAnchor && mReference == other.mReference && mRel == other.mRel &&
         mAbs == other.mAbs && mIsDocked == other.mIsDocked &&
         (mReference != PositionReference::kNamed || mName == other.mName);
}

bool LayoutSize::operator==(const LayoutSize& other) const {
  return mReference == other.mReference && mRel == other.mRel && mAbs == other.mAbs &&
         (mReference != SizeReference::kNamed || mName == other.mName);
}

bool LayoutLimit::operator==(const LayoutLimit& other) const {
  return mIsNamed == other.mIsNamed && mRel == other.mRel && mAbs == other.mAbs &&
         (!mIsNamed || mName == other.mName);
}

LayoutValues::LayoutValues() {
  Axis(LayoutAxis::kX).mSize.mAbs = kDefaultWidth;
  Axis(LayoutAxis::kY).mSize.mAbs = kDefaultHeight;
}

RCPtr<LRefCountedObject> LLayoutDescriptor::CreateCopy() const {
  return MakeRC<LLayoutDescriptor>(*this);
}

}  // namespace TF
