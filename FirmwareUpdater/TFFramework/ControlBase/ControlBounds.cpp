#include <cmath>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/LayoutGuard.h"

namespace TF {

namespace {

constexpr double kSameSize = 2.220446049250313e-15;

bool HasSameSize(const RectT<double>& left, const RectT<double>& right) {
  return std::abs(left.mWidth - right.mWidth) < kSameSize &&
         std::abs(left.mHeight - right.mHeight) < kSameSize;
}

bool HasArea(const RectT<double>& rect) {
  return rect.mWidth > 0 && rect.mHeight > 0;
}

// Puts a value back, whatever happens meanwhile.
template <class T>
class Restore {
 public:
  explicit Restore(T& value) : mValue(value), mBefore(value) {}
  Restore(const Restore&) = delete;
  Restore& operator=(const Restore&) = delete;
  ~Restore() { mValue = mBefore; }

 private:
  T& mValue;
  const T mBefore;
};

}  // namespace

TFRESULT LControl::SetBounds(const RectT<double>& frame) {
  if (frame == mBounds) return kNothingDone;
  const RCPtr<LControl> held(this);
  const Restore changing(mBoundsChanging);
  BeginBoundsChange();
  const bool resized = !HasSameSize(frame, mBounds);
  const bool hadArea = HasArea(mBounds);
  InvalidateFrame();
  InvalidateUnclipped();
  mBounds = frame;
  SizeLooks();
  if (resized && !mInLayout) LayOutChildren();
  if (mParent) RelayoutBehind();
  // The frame may have changed again since.
  if (!mParent) SizeWindow();
  if (!HasArea(mBounds) && (mHasFocus || mContainsFocus) && mParent) mParent->SetFocus(true);
  InvalidateFrame();
  InvalidateUnclipped();
  EndBoundsChange();
  if (mCreated && HasArea(mBounds) != hadArea) UpdateConditions();
  return kSuccess;
}

void LControl::SizeLooks() {
  const SizeT<std::int32_t> size{RoundToInt32(mBounds.mWidth), RoundToInt32(mBounds.mHeight)};
  for (const RCPtr<LLook>& look : mLooks) {
    if (look) look->SetSize(size);
  }
}

void LControl::LayOutChildren() {
  const LayoutGuard guard(mInLayout);
  const SizeT<double> size{std::round(mBounds.mWidth), std::round(mBounds.mHeight)};
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    child->ParentResized(size);
  }
  Relayout();
}

void LControl::RelayoutBehind() {
  const RCPtr<LControl> parent = mParent;
  // Who walks over this control and those behind it tells the parent, too. So a long row of siblings
  // that move one another needs no deep stack.
  if (parent->mWalkedChild == this) return;
  std::vector<RCPtr<LControl>> changed(1, RCPtr<LControl>(this));
  {
    const Restore walk(parent->mWalkedChild);
    for (std::int32_t index = mLayoutIndex + 1; index > 0 && index < parent->GetChildCount(); ++index) {
      const RCPtr<LControl> sibling = parent->GetChild(index);
      parent->mWalkedChild = sibling.Get();
      const TFRESULT result = sibling->Relayout();
      if (Failed(result)) break;
      if (result == kSuccess) changed.push_back(sibling);
    }
  }
  {
    // The parent follows once, when it is told of this control, which comes last.
    const Restore layout(parent->mInLayout);
    parent->mInLayout = true;
    for (; changed.size() > 1; changed.pop_back()) {
      if (changed.back()->mParent == parent) parent->OnChildBoundsChange(changed.back());
    }
  }
  if (mParent == parent) parent->OnChildBoundsChange(changed.front());
}

void LControl::ParentResized(const SizeT<double>&) {
  Relayout();
}

// Siblings count the place of a docked control from the view, in which it has not moved.
void LControl::OnParentScroll(const PointT<double>& from, const PointT<double>& to) {
  const bool isDockedX = IsDocked(LayoutAxis::kX), isDockedY = IsDocked(LayoutAxis::kY);
  const RCPtr<LControl> parent = mParent;
  if ((!isDockedX && !isDockedY) || !parent) return;
  const RCPtr<LControl> held(this);
  RectT<double> expected = mBounds;
  if (isDockedX) expected.mX += to.mX - from.mX;
  if (isDockedY) expected.mY += to.mY - from.mY;
  TFRESULT result = kNothingDone;
  {
    const Restore walk(parent->mWalkedChild);
    parent->mWalkedChild = this;
    result = Relayout();
  }
  if (result != kSuccess || mParent != parent) return;
  if (!(mBounds == expected)) return RelayoutBehind();
  parent->OnChildBoundsChange(held);
}

void LControl::OnChildBoundsChange(const RCPtr<LControl>& child) {
  if (!mInLayout) Relayout();
  OnChildMoved(child);
}

void LControl::BeginBoundsChange() {
  mClientBeforeChange = GetClientRect();
  ++mBoundsChanging;
}

void LControl::EndBoundsChange() {
  --mBoundsChanging;
  if (!mBackingStore || HasSameSize(GetClientRect(), mClientBeforeChange)) return;
  RebuildBackingStore();
}

PointT<double> LControl::GetPositionInParent() const {
  if (!mParent) return {mBounds.mX, mBounds.mY};
  const RectT<double> client = mParent->GetClientRect();
  return {mBounds.mX - mParent->mScrollOffset.mX + client.mX,
          mBounds.mY - mParent->mScrollOffset.mY + client.mY};
}

PointT<double> LControl::GetWindowPosition() const {
  PointT<double> position;
  for (const LControl* control = this; control; control = control->mParent.Get()) {
    const PointT<double> step = control->GetPositionInParent();
    position = {position.mX + step.mX, position.mY + step.mY};
  }
  return position;
}

}  // namespace TF
