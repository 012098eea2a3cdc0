#include "TFFramework/Controls/ProgressBar.h"

#include <algorithm>

#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

namespace TF {

namespace {

constexpr double kSamplePeriod = 1;  // Seconds between samples of the estimate, at least.
constexpr double kLongestTime = INT32_MAX;

constexpr std::int32_t kMinute = 60;  // Seconds.
constexpr std::int32_t kHour = 3600;

String Counted(std::int32_t count, const String& one, const String& many) {
  return String::Format(u"%d ", count) + (count == 1 ? one : many) + u" ";
}

}  // namespace

TFRESULT LProgressBar::Initialize() {
  TFRESULT result = LControl::Initialize();
  if (!Failed(result)) result = FindParts();
  if (Failed(result)) return result;
  ReadTexts();
  // What a new skin finds in progress goes on.
  if (mCreated) return result;
  mTimeRemainingLabel->SetVisible(false);
  SetValue(0);
  return result;
}

void LProgressBar::ReadTexts() {
  const RCPtr<LControlFactory> factory = LControlFactory::GetCurrent();
  const RCPtr<LStringTable> texts = factory ? factory->GetFrameworkStrings() : nullptr;
  if (!texts) return;
  texts->GetString(u"HOURS_SINGULAR", mHourText);
  texts->GetString(u"HOURS_PLURAL", mHoursText);
  texts->GetString(u"MINUTES_SINGULAR", mMinuteText);
  texts->GetString(u"MINUTES_PLURAL", mMinutesText);
  texts->GetString(u"SECONDS_SINGULAR", mSecondText);
  texts->GetString(u"SECONDS_PLURAL", mSecondsText);
  texts->GetString(u"REMAINING", mRemainingText);
}

TFRESULT LProgressBar::FindParts() {
  mActiveOverlay = FindChild(u"activeOverlay");
  mTimeRemainingLabel = FindChild(u"timeRemainingLabel");
  mPercentCompleteLabel = FindChild(u"percentCompleteLabel");
  if (mActiveOverlay && mTimeRemainingLabel && mPercentCompleteLabel) return kSuccess;
  LogRecord("A progress bar of the skin lacks activeOverlay, timeRemainingLabel or percentCompleteLabel");
  return kFailure;
}

TFRESULT LProgressBar::OnDescriptorApplied() {
  SetNotFocusable(true);
  OnValueChange();
  if (mSecondsShown)
    SetTimeRemaining(*mSecondsShown);
  else if (mTimeRemainingLabel)
    mTimeRemainingLabel->SetVisible(false);
  return LControl::OnDescriptorApplied();
}

void LProgressBar::OnValueChange() {
  const RCPtr<LControl> held(this);
  LControl::OnValueChange();
  if (!mPercentCompleteLabel || mDestroyed) return;
  FillOverlay();
  mPercentCompleteLabel->SetText(String::Format(u"%.0lf", mValue * 100));
  if (mEstimating) UpdateEstimate();
  if (mValue >= 1) mEstimating = false;
}

void LProgressBar::EndBoundsChange() {
  LControl::EndBoundsChange();
  if (mActiveOverlay && !mDestroyed) FillOverlay();
}

void LProgressBar::FillOverlay() {
  const double percent = mValue * 100;
  const double fill = RoundCoordinate(mBounds.mWidth * percent / 100);
  if (fill < 1) return mActiveOverlay->SetVisible(false);
  LayoutSize size;
  size.mAbs = fill;
  mActiveOverlay->SetAxisLayout(LayoutAxis::kX, mActiveOverlay->GetAxisPosition(LayoutAxis::kX), size);
  mActiveOverlay->SetVisible(true);
}

void LProgressBar::UpdateEstimate() {
  const double now = GetControlTime();
  const double sampleTime = now - mEstimateLastTime, sampleValue = mValue - mEstimateLastValue;
  if (sampleTime <= 0 || sampleValue <= 0) return;
  if (sampleTime > kSamplePeriod) {
    mEstimateLastTime = now;
    mEstimateLastValue = mValue;
  }
  const double rate = (mValue - mEstimateStartValue) / (now - mEstimateStartTime);
  // A value that went back behind its start and grows again tells nothing.
  if (rate <= 0) return;
  SetTimeRemaining(static_cast<std::int32_t>(std::min(RoundCoordinate((1.0 - mValue) / rate), kLongestTime)));
}

void LProgressBar::SetEstimateTime(bool on) {
  if (on && !mEstimating) {
    mEstimateStartTime = mEstimateLastTime = GetControlTime();
    mEstimateStartValue = mEstimateLastValue = mValue;
  }
  mEstimating = on;
}

void LProgressBar::SetTimeRemaining(std::int32_t seconds) {
  if (!mTimeRemainingLabel || mDestroyed) return;
  const RCPtr<LControl> held(this);
  const std::int32_t time = std::max(seconds, 0);
  mSecondsShown = time;
  mTimeRemainingLabel->SetVisible(true);
  if (!mTimeRemainingLabel) return;
  String text;
  if (time >= kHour) text += Counted(time / kHour, mHourText, mHoursText);
  if (time >= kMinute) text += Counted(time % kHour / kMinute, mMinuteText, mMinutesText);
  mTimeRemainingLabel->SetText(text + Counted(time % kMinute, mSecondText, mSecondsText) + mRemainingText);
}

}  // namespace TF
