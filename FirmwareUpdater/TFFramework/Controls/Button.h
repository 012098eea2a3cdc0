#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Controls/HandlingControl.h"

namespace TF {

// A push button, toggle or radio button, drawn by fourteen looks. Return, or a "NID_SIMULATE_CLICK" from
// anybody, presses it for a moment and clicks it then. Held down, one that repeats sends
// "NID_BUTTON_AUTOREPEAT": at once, after a while and then steadily, as long as the mouse is over it.
//
// Threads: main thread.
class LButton : public HandlingControl<LButton, LControl> {
 public:
  using HandlingControl::HandlingControl;

  TFRESULT Initialize() override;
  void OnValueChange() override;
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override;
  void SetEnabled(bool enabled) override;
  void OnLeftClicked(const RCPtr<LMouseButtonParam>& param) override;
  TFRESULT OnKeyDown(const RCPtr<LKeyParam>& param) override;
  void OnIdle() override;
  // Its text when that does not fit.
  String GetToolTipText() override;

  // A left click changes the value.
  virtual TFRESULT SetAutoValueSet(bool autoValueSet);
  // One of a group of siblings, of which one at most is on.
  virtual TFRESULT SetIsRadio(bool isRadio);
  // Whether it is on afterwards.
  virtual bool SetChecked(bool checked);
  bool IsChecked() const { return mValue >= kOn; }
  // Shows the look of the present state.
  virtual void UpdateLook();
  virtual void SimulateClick();

  // A repeat run that is in progress is over.
  void EndRepeat();

  // Set by the controls that are made of buttons.
  bool mAutoRepeat = false;
  bool mRepeating = false;         // A repeat run is in progress.
  bool mPressedOffButton = false;  // Looks pressed also while the mouse has left it.

 protected:
  static constexpr double kOn = 0.5;

  bool mAutoValueSet = false;
  bool mIsRadio = false;
  double mRepeatPeriod = 0.1;  // Seconds, as all the following.
  double mRepeatDelay = 0.3;
  double mLastRepeatTime = 0;
  double mTimeToRepeat = 0;
  double mClickDuration = 0.15;
  double mClickStartTime = 0;
  bool mSimulating = false;

 private:
  std::int32_t FindLook() const;
  void BeginRepeat();
  void SendRepeat();
  void FinishClick();
  void ClickNow();
  TFRESULT HandleSimulateClick(const RCPtr<LNotificationDistributor>& sender,
                               const RCPtr<LNotification>& notification);
};

}  // namespace TF
