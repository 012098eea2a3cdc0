#pragma once

#include <cstdint>
#include <optional>

#include "TFFramework/Controls/Label.h"

namespace TF {

// Fills a part of itself by its value, from 0 to 1, and tells the percentage. It also tells the time left: as
// somebody else knows it, or as it estimates it by the course of its value so far.
//
// It needs these children: "activeOverlay", which is the filled part, "timeRemainingLabel" and
// "percentCompleteLabel".
//
// Threads: main thread.
class LProgressBar : public LControl {
 public:
  using LControl::LControl;

  // kFailure, with a record, without the children.
  TFRESULT Initialize() override;
  TFRESULT OnDescriptorApplied() override;
  void OnValueChange() override;
  void EndBoundsChange() override;

  // Less than 0 counts as 0.
  virtual void SetTimeRemaining(std::int32_t seconds);
  // Switched on, it begins anew; it ends by itself when the value reaches 1.
  virtual void SetEstimateTime(bool on);

 private:
  TFRESULT FindParts();
  void ReadTexts();
  void FillOverlay();
  void UpdateEstimate();

  RCPtr<LControl> mActiveOverlay;
  RCPtr<LLabel> mTimeRemainingLabel;
  RCPtr<LLabel> mPercentCompleteLabel;
  std::optional<std::int32_t> mSecondsShown;  // Nothing as long as the time is hidden.

  // Of the user's language.
  String mHourText;
  String mHoursText;
  String mMinuteText;
  String mMinutesText;
  String mSecondText;
  String mSecondsText;
  String mRemainingText;

  bool mEstimating = false;
  double mEstimateStartTime = 0;  // Seconds.
  double mEstimateStartValue = 0;
  double mEstimateLastTime = 0;
  double mEstimateLastValue = 0;
};

}  // namespace TF
