#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Controls/HandlingControl.h"

namespace TF {

class LButton;

// A scroll bar: the child "channel" with a button "thumb" in it, which stands where the value says, and
// two buttons "dec" and "inc" that step. Any of them may be missing. Never has the focus; takes keys that
// its parent, or a sibling with the focus, does not use.
//
// Threads: main thread.
class LScrollbar : public HandlingControl<LScrollbar, LControl> {
 public:
  LScrollbar(const RCPtr<LControl>& parent, const String& name);
  ~LScrollbar() override;

  // Keys that a bar takes, for SetKeyMask. Up, Down and the pages are for vertical bars alone, Left and
  // Right for horizontal ones.
  static constexpr std::uint32_t kUpKey = 0x01;
  static constexpr std::uint32_t kDownKey = 0x02;
  static constexpr std::uint32_t kLeftKey = 0x04;
  static constexpr std::uint32_t kRightKey = 0x08;
  static constexpr std::uint32_t kPageUpKey = 0x10;
  static constexpr std::uint32_t kPageDownKey = 0x20;
  static constexpr std::uint32_t kHomeKey = 0x40;
  static constexpr std::uint32_t kEndKey = 0x80;
  static constexpr std::uint32_t kAllKeys = 0xFF;

  // kFailure when the base fails.
  TFRESULT Initialize() override;
  TFRESULT OnDescriptorApplied() override;
  void Destroy() override;

  // While the user drags the thumb, the value waits until that has ended; then one outside of 0 to 1 is
  // dropped.
  double SetValue(double normalized) override;
  void OnValueChange() override;
  // Keeps the scaled value.
  TFRESULT SetValueRange(double min, double max, std::int32_t scale) override;
  void EndBoundsChange() override;
  void OnIdle() override;

  // All of them after Initialize.
  void SetKeyMask(std::uint32_t mask);
  std::uint32_t GetKeyMask() const { return mKeyMask; }
  // Steps as parts of the value's whole range; ratio: the thumb's length as a part of the track.
  void SetSteps(double lineStep, double pageStep, double thumbRatio);
  // The step of an arrow, and that of a press beside the thumb.
  double GetLineStep() const { return mLineStep; }
  double GetPageStep() const { return mPageStep; }
  double GetThumbRatio() const { return mThumbRatio; }
  double GetThumbSize() const { return mThumbSize; }
  // For a bar without two arrows to tell by.
  void SetVertical(bool vertical);
  bool IsVertical() const { return mVertical != 0; }
  bool IsDraggingThumb() const { return mDraggingThumb; }

 protected:
  static constexpr double kLeastThumbSize = 10;  // Of a thumb whose skin gives no length.

  std::int32_t mVertical = 1;
  RCPtr<LControl> mChannel;
  RCPtr<LButton> mThumb;
  double mLineStep = 0.02;
  double mPageStep = 0.2;
  double mThumbRatio = 0.1;
  double mMinThumbSize = kLeastThumbSize;  // Pixels, as the following three.
  double mThumbSize = 0;
  double mTrackStart = 0;
  double mTrackEnd = 0;
  bool mDraggingThumb = false;
  PointT<std::int32_t> mDragOrigin;  // Of the mouse, in the channel's client area.
  double mDragStart = 0;             // Where the thumb was then.
  std::int32_t mChannelPress = kNoSide;
  double mChannelRepeatPeriod = 0.2;  // Seconds, as the following three.
  double mChannelRepeatDelay = 0.4;
  double mLastChannelTime = 0;
  double mTimeToChannelRepeat = 0;
  double mPendingValue = kNoPending;
  bool mApplyPendingValue = true;
  std::uint32_t mKeyMask = 0;

 private:
  static constexpr double kNoPending = -1;
  // Which side of the thumb was pressed.
  static constexpr std::int32_t kNoSide = 0;
  static constexpr std::int32_t kBeforeThumb = 1;
  static constexpr std::int32_t kBehindThumb = 2;

  LayoutAxis GetAxis() const { return mVertical ? LayoutAxis::kY : LayoutAxis::kX; }
  RCPtr<LButton> FindButton(const char16_t* name) const;
  void HookParts();
  void HookArrow(const RCPtr<LButton>& arrow);
  AxisLayout GetThumbOfSkin(LayoutAxis axis) const;
  void UpdateTrack();
  void UpdateThumb();
  void PlaceThumb(double position);
  double GetThumbPosition() const;
  double GetThumbRange() const;
  void Step(double step) { SetValue(mValue + step); }

  // kNoSide when the mouse is not over the channel, or is on the thumb.
  std::int32_t FindPointerSide() const;
  void BeginChannelPress();
  void EndChannelPress();
  void StepChannel();
  void ShowPressedSide(std::int32_t side);
  // In its client area, from a point of the thumb.
  PointT<std::int32_t> PointerInChannel(const LPointParam& pointInThumb) const;
  void EndThumbDrag();

  TFRESULT HandleArrow(const RCPtr<LNotificationDistributor>& sender,
                       const RCPtr<LNotification>& notification);
  TFRESULT HandleChannelPress(const RCPtr<LNotificationDistributor>& sender,
                              const RCPtr<LNotification>& notification);
  TFRESULT HandlePointer(const RCPtr<LNotificationDistributor>& sender,
                         const RCPtr<LNotification>& notification);
  TFRESULT HandleThumbDown(const RCPtr<LNotificationDistributor>& sender,
                           const RCPtr<LNotification>& notification);
  TFRESULT HandleThumbMove(const RCPtr<LNotificationDistributor>& sender,
                           const RCPtr<LNotification>& notification);
  TFRESULT HandleThumbDrag(const RCPtr<LNotificationDistributor>& sender,
                           const RCPtr<LNotification>& notification);
  TFRESULT HandleKey(const RCPtr<LNotificationDistributor>& sender, const RCPtr<LNotification>& notification);
};

}  // namespace TF
