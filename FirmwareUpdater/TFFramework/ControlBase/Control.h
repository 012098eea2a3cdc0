#pragma once

#include "TFFramework/ControlBase/ControlDescriptor.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/Notification/NotificationClient.h"
#include "TFFramework/Notification/NotificationDistributor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

// Base of everything on the screen: a node of a tree of controls.
//
// Threads: main thread.
class LControl : public virtual LNotificationClient, public virtual LNotificationDistributor {
 public:
  // The parent may be null. A new control is empty until Create.
  LControl(const RCPtr<LControl>& parent, const String& name);

  // Builds the control and everything below it from its descriptor, once, by the operations below in
  // their order. The first one that fails ends it with its result.
  TFRESULT Create(const RCPtr<LControlDescriptor>& descriptor);

  // Keeps the descriptor and a copy of its layout. kInvalidArgument for null.
  virtual TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor);
  // Makes the controls below this one.
  virtual TFRESULT CreateChildren(const RCPtr<LControlDescriptor>& descriptor) = 0;
  // The children exist; the parent's further children do not.
  virtual TFRESULT Initialize();
  virtual TFRESULT OnDescriptorApplied();

  const String& GetName() const { return mName; }
  const RCPtr<LControl>& GetParent() const { return mParent; }
  const RCPtr<LControlDescriptor>& GetDescriptor() const { return mDescriptor; }
  bool IsCreated() const { return mCreated; }

  // For the top control of a window: kFailure for a control that has a parent.
  TFRESULT SetRootWindow(const RCPtr<LRootWindow>& window);
  // The window of the topmost control above this one; null when there is none.
  RCPtr<LRootWindow> GetRootWindow() const;

 protected:
  const RCPtr<LLayoutDescriptor>& GetLayout() const { return mLayout; }

 private:
  String mName;
  RCPtr<LControlDescriptor> mDescriptor;
  RCPtr<LLayoutDescriptor> mLayout;  // Of this control alone; never null.
  RCPtr<LControl> mParent;
  RCPtr<LRootWindow> mRootWindow;
  bool mCreated = false;
};

// The create function of the control class T. Null when the control could not be built.
template <class T>
RCPtr<LControl> MakeControl(const RCPtr<LControl>& parent, const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControl> control = MakeRC<T>(parent, descriptor->mName);
  return Failed(control->Create(descriptor)) ? nullptr : control;
}

}  // namespace TF
