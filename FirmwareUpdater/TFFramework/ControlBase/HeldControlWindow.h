#pragma once

#include "TFFramework/ControlBase/ControlWindow.h"
#include "TFFramework/ControlBase/RootWindow.h"
#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

class LControl;

// A window, held while its controls ask it.
//
// Threads: main thread.
class HeldControlWindow {
 public:
  explicit HeldControlWindow(const RCPtr<LRootWindow>& window);
  // Of the topmost control above this one.
  explicit HeldControlWindow(const LControl& control);

  // False when there is none.
  explicit operator bool() const { return mServices != nullptr; }
  IControlWindow* operator->() const { return mServices; }

 private:
  const RCPtr<LRootWindow> mWindow;
  IControlWindow* const mServices;
};

}  // namespace TF
