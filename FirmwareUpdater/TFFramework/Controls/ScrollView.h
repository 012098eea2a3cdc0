#pragma once

#include <cstdint>

#include "TFFramework/Controls/HandlingControl.h"
#include "TFFramework/Controls/ScrollBar.h"

namespace TF {

// A control whose content may be larger than its client area. It shows up to two scroll bars, the children
// "hBar" and "vBar", and between their ends "corner", as long as they are needed, and keeps them and its
// scroll offset in step. A bar that is not needed keeps its place and is 0 pixels thick. Content is laid out
// in what the bars leave of the client area; the three themselves, docked on both axes, in all of it.
//
// Notifications: "NID_CLIENT_EXTENT_CHANGE".
//
// Threads: main thread.
class LScrollView : public HandlingControl<LScrollView, LControl> {
 public:
  LScrollView(const RCPtr<LControl>& parent, const String& name);
  ~LScrollView() override;

  // Axes whose extent follows the children.
  static constexpr std::uint32_t kAutoX = 1;
  static constexpr std::uint32_t kAutoY = 2;

  TFRESULT Initialize() override;
  void ApplyCreateParameters() override;
  TFRESULT ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) override;
  TFRESULT OnDescriptorApplied() override;
  void Destroy() override;
  void OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) override;

  // At least 1 by 1 pixel of the content, from the scroll offset on.
  RectT<double> GetClientView() override;
  // What the bars that are shown leave of the client area.
  void GetScrollViewRect(RectT<double>& result) override;
  TFRESULT SetScrollOffset(const PointT<double>& offset) override;
  void OnScrollOffsetChange(const PointT<double>& from, const PointT<double>& to) override;
  void EndBoundsChange() override;
  void OnChildBoundsChange(const RCPtr<LControl>& child) override;
  TFRESULT OnVerticalWheel(const RCPtr<LMouseWheelParam>& param) override;
  TFRESULT OnHorizontalWheel(const RCPtr<LMouseWheelParam>& param) override;

  virtual void OnClientExtentChange() {}
  // What the bars leave of the client area has changed.
  virtual void OnClientViewChange() {}
  // kY for the vertical bar.
  virtual void OnBarVisibilityChange(LayoutAxis) {}

  // Pixels of the content; UpdateBars makes it count. kNothingDone for the present one, kInvalidArgument for
  // what is no number.
  TFRESULT SetClientExtent(const SizeT<double>& extent);
  const SizeT<double>& GetClientExtent() const { return mClientExtent; }
  // From the next UpdateBars on the bar scrolls by whole steps of so many pixels; 0: by pixels.
  // kInvalidArgument for another axis, or fewer.
  TFRESULT SetScrollStep(LayoutAxis axis, std::int32_t pixels);
  // Shows, hides and sets the bars by the present client area and extent.
  void UpdateBars();

 protected:
  bool IsBarShown(LayoutAxis axis) const;
  const RCPtr<LScrollbar>& GetBar(LayoutAxis axis) const { return axis == LayoutAxis::kX ? mHBar : mVBar; }

  bool mInUpdate = false;        // UpdateBars runs.
  bool mInExtentChange = false;  // The view is changing what it would react to, as mInScroll.
  bool mInScroll = false;
  RCPtr<LScrollbar> mHBar;
  RCPtr<LScrollbar> mVBar;
  RCPtr<LControl> mCorner;
  SizeT<double> mBarThickness;  // Height of the horizontal bar, width of the vertical one.
  SizeT<double> mClientExtent;
  std::uint32_t mAutoClientExtent = 0;  // A mask of the values above.
  PointT<std::int32_t> mExtentExtra;    // Pixels, added to an extent that follows the children.
  std::int32_t mSnapX = 0;              // 1: the axis scrolls by whole steps.
  std::int32_t mSnapY = 0;
  std::int32_t mStepX = 0;  // Pixels.
  std::int32_t mStepY = 0;
  SizeT<double> mMinViewSize;  // The least that GetClientView reports.

 private:
  bool HasBarSize(LayoutAxis barAxis) const;
  void TakeThickness();
  bool ReactsToSizes() const;
  void FollowChildren();
  TFRESULT UpdateAutoExtent();
  void ShowBar(LayoutAxis barAxis, bool show);
  void ShowBars();
  void LayOutContent();
  void UpdateOnce();
  void TellBarChanges(bool hadV, bool hadH, bool viewChanged);
  void UpdateBarValues();
  void UpdateBarInPixels(LScrollbar& bar, double view, double extent);
  void UpdateBarInSteps(LScrollbar& bar, LayoutAxis axis, double view, double extent);
  void SetOffset(LayoutAxis axis, double offset);
  double OffsetOf(const LScrollbar& bar, LayoutAxis axis) const;
  std::int32_t StepOf(LayoutAxis axis) const;
  void MoveBarToOffset(LayoutAxis axis);
  TFRESULT TurnWheel(const RCPtr<LScrollbar>& bar, const LMouseWheelParam& param, bool isForward);
  TFRESULT HandleBarValue(const RCPtr<LNotificationDistributor>& sender,
                          const RCPtr<LNotification>& notification);

  bool mUpdateAgain = false;    // Something has changed while UpdateBars ran.
  SizeT<double> mSizeAtUpdate;  // Of the frame.
};

}  // namespace TF
