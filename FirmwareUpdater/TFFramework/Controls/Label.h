#pragma once

#include "TFFramework/ControlBase/Control.h"

namespace TF {

// Shows a text, and the whole of it as a tip when it does not fit. Never has the focus.
//
// Threads: main thread.
class LLabel : public LControl {
 public:
  using LControl::LControl;

  TFRESULT OnDescriptorApplied() override;
  String GetToolTipText() override;
};

}  // namespace TF
