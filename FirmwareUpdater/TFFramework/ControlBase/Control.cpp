#include "TFFramework/ControlBase/Control.h"

namespace TF {

LControl::LControl(const RCPtr<LControl>& parent, const String& name)
    : mName(name), mLayout(MakeRC<LLayoutDescriptor>()), mParent(parent) {}

TFRESULT LControl::Create(const RCPtr<LControlDescriptor>& descriptor) {
  TFRESULT result = ApplyDescriptor(descriptor);
  if (!Failed(result)) result = CreateChildren(descriptor);
  if (!Failed(result)) result = Initialize();
  if (!Failed(result)) result = OnDescriptorApplied();
  if (!Failed(result)) mCreated = true;
  return result;
}

TFRESULT LControl::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  if (!descriptor) return kInvalidArgument;
  mDescriptor = descriptor;
  mLayout =
      descriptor->mLayout ? MakeRC<LLayoutDescriptor>(*descriptor->mLayout) : MakeRC<LLayoutDescriptor>();
  return kSuccess;
}

TFRESULT LControl::Initialize() {
  return kSuccess;
}

TFRESULT LControl::OnDescriptorApplied() {
  return kSuccess;
}

TFRESULT LControl::SetRootWindow(const RCPtr<LRootWindow>& window) {
  if (mParent) return kFailure;
  mRootWindow = window;
  return kSuccess;
}

RCPtr<LRootWindow> LControl::GetRootWindow() const {
  const LControl* top = this;
  while (top->mParent) top = top->mParent.Get();
  return top->mRootWindow;
}

}  // namespace TF
