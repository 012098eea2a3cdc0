#include "TFFramework/ControlBase/Control.h"

#include <algorithm>
#include <exception>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/ControlFactory.h"

namespace TF {

namespace {

// The section of texts that belongs to a control; null without one or without an application.
RCPtr<LStringTable> FindStringSection(const RCPtr<LControl>& parent, const String& name) {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  if (!factory) return nullptr;
  const String parentClass = parent && parent->GetDescriptor() ? parent->GetDescriptor()->mClass : String();
  return factory->GetControlStrings(parentClass, name);
}

}  // namespace

LControl::LControl(const RCPtr<LControl>& parent, const String& name)
    : mName(name),
      mLayout(MakeRC<LLayoutDescriptor>()),
      mConditions(MakeRC<LConditionsParam>()),
      mParent(parent),
      mStringSection(FindStringSection(parent, name)) {}

LControl::~LControl() {
  if (mMenuItemUpdater) mMenuItemUpdater->Forget();
}

TFRESULT LControl::Create(const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControl> held(this);
  TFRESULT result = kSuccess;
  try {
    result = Build(descriptor);
  } catch (...) {
    Destroy();
    throw;
  }
  if (Failed(result)) Destroy();
  return result;
}

TFRESULT LControl::Build(const RCPtr<LControlDescriptor>& descriptor) {
  TFRESULT result = mParent ? JoinParent(mParent) : kSuccess;
  if (!Failed(result)) result = ApplyDescriptor(descriptor);
  if (Failed(result)) return result;
  // Before there are children, so that a deep tree is not laid out anew from each of its levels.
  Relayout();
  result = CreateChildren(descriptor);
  if (!Failed(result)) result = Initialize();
  if (!Failed(result)) result = OnDescriptorApplied();
  if (Failed(result)) return result;
  mCreated = true;
  // The frames have come after the first conditions.
  UpdateConditions();
  // A tree that is being built is told as a whole, when its top is done.
  if (mParent && mParent->mCreated && GetRootWindow()) ProcessRootWindowAquired();
  return result;
}

TFRESULT LControl::JoinParent(const RCPtr<LControl>& parent) {
  const TFRESULT result = parent->mChildren.AddChild(RCPtr<LControl>(this));
  mParent = Failed(result) ? nullptr : parent;
  return result;
}

TFRESULT LControl::SetParent(const RCPtr<LControl>& parent) {
  if (parent == mParent) return kNothingDone;
  for (const LControl* above = parent.Get(); above; above = above->mParent.Get()) {
    if (above == this) return kInvalidArgument;
  }
  const RCPtr<LControl> held(this);
  if (mParent) {
    InvalidateFrame();
    InvalidateUnclipped();
    GiveUpInputOfTree();
    LeaveParent();
  }
  if (!parent) return kSuccess;
  const TFRESULT result = JoinParent(parent);
  if (Failed(result)) return result;
  if (mCreated && GetRootWindow()) ProcessRootWindowAquired();
  return result;
}

void LControl::LeaveParent() {
  const RCPtr<LControl> parent = mParent;
  if (parent && parent->mChildren.RemoveChild(RCPtr<LControl>(this)) < 0) mParent = nullptr;
}

TFRESULT LControl::SetRootWindow(const RCPtr<LRootWindow>& window) {
  if (mParent) return kFailure;
  mRootWindow = window;
  if (window) ProcessRootWindowAquired();
  return kSuccess;
}

RCPtr<LRootWindow> LControl::GetRootWindow() const {
  const LControl* top = this;
  while (top->mParent) top = top->mParent.Get();
  return top->mRootWindow;
}

void LControl::ProcessRootWindowAquired() {
  if (mIdleRefCount > 0) HookIdle();
  for (std::int32_t index = GetChildCount() - 1; index >= 0; --index) {
    if (index >= GetChildCount()) continue;
    const RCPtr<LControl> child = GetChild(index);
    child->ProcessRootWindowAquired();
  }
}

void LControl::Destroy() {
  if (mDestroyed) return;
  mDestroyed = true;
  const RCPtr<LControl> held(this);
  std::exception_ptr failure;
  const auto attempt = [&failure](auto step) {
    try {
      step();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  };
  attempt([this] { SetVisible(false); });
  attempt([this] { SetClipToParent(true); });
  attempt([this] { ReleaseMouse(); });
  attempt([this] { GiveUpInput(); });
  EndIdleUse();
  DestroyChildren(failure);
  ForgetOthers();
  if (failure) std::rethrow_exception(failure);
}

void LControl::DestroyChildren(std::exception_ptr& failure) {
  while (GetChildCount() > 0) {
    const RCPtr<LControl> child = GetChild(GetChildCount() - 1);
    try {
      child->Destroy();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
    mChildren.RemoveChild(child);
  }
}

void LControl::EndIdleUse() {
  StopScroll(LayoutAxis::kX);
  StopScroll(LayoutAxis::kY);
  for (std::int32_t users = mIdleRefCount; users > 0; --users) RemoveIdleUser();
}

void LControl::ForgetOthers() {
  if (mMenuItemUpdater) mMenuItemUpdater->Forget();
  mRoutedChild = nullptr;
  mLastLeftDown = nullptr;
  mDropTarget = nullptr;
  mScrollClient.fill(nullptr);
  mDoomedChildren.SetCount(0);
  UnregisterAll();
  LeaveWindow();
  LeaveParent();
  mRootWindow = nullptr;
}

void LControl::OnNotification(const RCPtr<LNotificationDistributor>& sender,
                              const RCPtr<LNotification>& notification) {
  const RCPtr<LNotificationHandler<LControl>> handler = mHandler;
  if (handler) handler->Dispatch(sender, notification);
}

TFRESULT LControl::OnDistributorClosing(const RCPtr<LNotificationDistributor>& sender, NotificationId id) {
  if (mHandler) mHandler->RemoveHandler(sender, id);
  return LNotificationClient::OnDistributorClosing(sender, id);
}

void LControl::OnChildRemoved(const RCPtr<LControl>&, std::int32_t) {}

TFRESULT LControl::DestroyChildLater(const RCPtr<LControl>& child) {
  if (!child || child->mParent != this) return kInvalidArgument;
  if (child->mIsDoomed) return kNothingDone;
  child->mIsDoomed = true;
  mChildren.ReleaseName(*child);
  if (child->mHasCapture) child->ReleaseMouse();
  child->SetVisible(false);
  if (mDoomedChildren.GetCount() == 0) AddIdleUser();
  mDoomedChildren.Add(child);
  return kSuccess;
}

void LControl::DestroyDoomedChildren() {
  while (mDoomedChildren.GetCount() > 0) {
    RCPtr<LControl> child;
    mDoomedChildren.RemoveItem(0, child);
    // Before the last one goes, which may doom others, or throw.
    if (mDoomedChildren.GetCount() == 0) RemoveIdleUser();
    child->Destroy();
  }
}

void LControl::CountUnclipped(std::int32_t change) {
  if (change == 0) return;
  for (LControl* control = this; control; control = control->mParent.Get())
    control->mUnclippedCount += change;
}

// What sticks out of the parent comes or goes.
TFRESULT LControl::SetClipToParent(bool clip) {
  if (mLayout->ClipToParent == clip) return kNothingDone;
  InvalidateFrame();
  mLayout->ClipToParent = clip;
  if (mParent && mLayoutIndex >= 0) {
    mParent->CountUnclipped(clip ? -1 : 1);
    mParent->mChildren.Touch();
  }
  InvalidateFrame();
  return kSuccess;
}

std::int32_t LControl::GetEffectiveZ() const {
  std::int32_t z = kNoZ;
  for (const LControl* control = this; control; control = control->mParent.Get()) {
    if (!control->mLayout->ClipToParent) z = std::max(z, control->mLayout->Z_Order);
  }
  return z;
}

}  // namespace TF
