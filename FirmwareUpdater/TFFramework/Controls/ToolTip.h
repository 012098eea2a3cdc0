#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/PopupControls.h"

namespace TF {

// The hint beside the mouse, a child of the control that it is about. It shows once the mouse has rested for
// a while, at once when it came from another hint, stays for some seconds and goes from its parent then.
//
// Threads: main thread.
class LToolTip : public LControl, public IToolTip {
 public:
  using LControl::LControl;

  TFRESULT OnDescriptorApplied() override;
  void ApplyCreateParameters() override;
  void OnIdle() override;

  void Show() override;
  void Hide() override;

 private:
  enum class State : std::uint8_t { kOff, kWaiting, kShown };

  void ShowNow();
  void Place();

  State mState = State::kOff;
  std::uint32_t mStateTick = 0;  // Milliseconds: when the state began.
};

}  // namespace TF
