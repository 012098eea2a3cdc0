#pragma once

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Controls/HandlingControl.h"

namespace TF {

// A face that opens a popup when it is pressed and closes it when it is pressed again or loses the focus.
//
// Threads: main thread.
class LDropDownControl : public HandlingControl<LDropDownControl, LControl> {
 public:
  using HandlingControl::HandlingControl;

  TFRESULT Initialize() override;
  TFRESULT SetFocus(bool forward) override;
  void LoseFocus() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;

  virtual bool IsPopupShown() { return false; }
  virtual void ShowPopup(bool show) = 0;

 protected:
  bool mClosedByFocus = false;
  bool mEatPress = false;  // The press that closed the popup does not open it again.

 private:
  TFRESULT HandleMouseDown(const RCPtr<LNotificationDistributor>& sender,
                           const RCPtr<LNotification>& notification);
};

}  // namespace TF
