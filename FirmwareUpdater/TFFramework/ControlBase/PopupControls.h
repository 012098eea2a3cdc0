#pragma once

#include "TFFramework/ControlBase/MenuDescriptor.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/Result.h"

namespace TF {

// What a control asks of the tool tip that the skin gives it. A control that is none is shown and hidden
// at once.
//
// Threads: main thread.
class IToolTip {
 public:
  IToolTip() = default;
  IToolTip(const IToolTip&) = delete;
  IToolTip& operator=(const IToolTip&) = delete;
  virtual ~IToolTip() = default;

  virtual void Show() = 0;
  // The control may go with it.
  virtual void Hide() = 0;
};

// What a control asks of the popup that the skin gives it for its context menu.
//
// Threads: main thread.
class IContextMenuPopup {
 public:
  IContextMenuPopup() = default;
  IContextMenuPopup(const IContextMenuPopup&) = delete;
  IContextMenuPopup& operator=(const IContextMenuPopup&) = delete;
  virtual ~IContextMenuPopup() = default;

  virtual TFRESULT SetMenu(const RCPtr<LMenuDescriptor>& menu) = 0;
  // Opens it, with the menu that it was given.
  virtual void ShowAtPointer() = 0;
};

}  // namespace TF
