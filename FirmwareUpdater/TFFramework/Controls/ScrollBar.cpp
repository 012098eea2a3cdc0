#include "TFFramework/Controls/ScrollBar.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/PointAxis.h"
#include "TFFramework/Controls/Button.h"

namespace TF {

namespace {

using Bits = ControlCondition;

// The look of a channel that is drawn over the other as far as it is pressed.
constexpr std::int32_t kPressedLook = 1;

enum class Goal { kLineBack, kLineOn, kPageBack, kPageOn, kStart, kEnd };

struct BarKey {
  std::uint32_t mCode;
  std::uint32_t mMask;
  bool mFitsHorizontal;
  bool mFitsVertical;
  Goal mGoal;
};

constexpr BarKey kKeys[] = {
    {PressedKey::kUp, LScrollbar::kUpKey, false, true, Goal::kLineBack},
    {PressedKey::kDown, LScrollbar::kDownKey, false, true, Goal::kLineOn},
    {PressedKey::kLeft, LScrollbar::kLeftKey, true, false, Goal::kLineBack},
    {PressedKey::kRight, LScrollbar::kRightKey, true, false, Goal::kLineOn},
    {PressedKey::kPageUp, LScrollbar::kPageUpKey, false, true, Goal::kPageBack},
    {PressedKey::kPageDown, LScrollbar::kPageDownKey, false, true, Goal::kPageOn},
    {PressedKey::kHome, LScrollbar::kHomeKey, true, true, Goal::kStart},
    {PressedKey::kEnd, LScrollbar::kEndKey, true, true, Goal::kEnd},
};

double ValueAt(Goal goal, const LScrollbar& bar) {
  switch (goal) {
    case Goal::kLineBack:
      return bar.GetValue() - bar.GetLineStep();
    case Goal::kLineOn:
      return bar.GetValue() + bar.GetLineStep();
    case Goal::kPageBack:
      return bar.GetValue() - bar.GetPageStep();
    case Goal::kPageOn:
      return bar.GetValue() + bar.GetPageStep();
    case Goal::kStart:
      return 0;
    case Goal::kEnd:
      break;
  }
  return 1;
}

}  // namespace

LScrollbar::LScrollbar(const RCPtr<LControl>& parent, const String& name) : HandlingControl(parent, name) {}

LScrollbar::~LScrollbar() = default;

TFRESULT LScrollbar::Initialize() {
  if (Failed(LControl::Initialize())) return kFailure;
  MakeHandler();
  // The skin may have changed under a finger.
  EndChannelPress();
  EndThumbDrag();
  HookParts();
  UpdateTrack();
  SetKeyMask(kAllKeys);
  return kSuccess;
}

RCPtr<LButton> LScrollbar::FindButton(const char16_t* name) const {
  return RCPtr<LButton>(FindChild(name));
}

void LScrollbar::HookParts() {
  mChannel = FindChild(u"channel");
  mThumb = mChannel ? RCPtr<LButton>(mChannel->FindChild(u"thumb")) : RCPtr<LButton>();
  if (mChannel) {
    const RCPtr<LNotificationDistributor> channel(mChannel);
    mHandler->AddHandler(&LScrollbar::HandleChannelPress, channel, u"NID_LEFT_DRAG_CONDITION_CHANGE");
    mHandler->AddHandler(&LScrollbar::HandlePointer, channel, u"NID_MOUSE_MOVE");
  }
  if (mThumb) {
    const RCPtr<LNotificationDistributor> thumb(mThumb);
    mHandler->AddHandler(&LScrollbar::HandlePointer, thumb, u"NID_HOVER_CONDITION_CHANGE");
    mHandler->AddHandler(&LScrollbar::HandleThumbDown, thumb, u"NID_MOUSE_DOWN");
    mHandler->AddHandler(&LScrollbar::HandleThumbMove, thumb, u"NID_MOUSE_MOVE");
    mHandler->AddHandler(&LScrollbar::HandleThumbDrag, thumb, u"NID_LEFT_DRAG_CONDITION_CHANGE");
    mThumb->mPressedOffButton = true;
  }
  const RCPtr<LButton> dec = FindButton(u"dec"), inc = FindButton(u"inc");
  HookArrow(dec);
  HookArrow(inc);
  if (!dec || !inc) return;
  const RectT<double>& from = dec->GetBounds();
  const RectT<double>& to = inc->GetBounds();
  mVertical = std::abs(to.mX - from.mX) > std::abs(to.mY - from.mY) ? 0 : 1;
}

void LScrollbar::HookArrow(const RCPtr<LButton>& arrow) {
  if (!arrow) return;
  mHandler->AddHandler(&LScrollbar::HandleArrow, RCPtr<LNotificationDistributor>(arrow),
                       u"NID_BUTTON_AUTOREPEAT");
  arrow->mAutoRepeat = true;
  arrow->EndRepeat();
}

TFRESULT LScrollbar::OnDescriptorApplied() {
  const TFRESULT result = LControl::OnDescriptorApplied();
  SetNotFocusable(true);
  for (const RCPtr<LControl>& part :
       {FindChild(u"dec"), FindChild(u"inc"), mChannel, RCPtr<LControl>(mThumb)}) {
    if (part) part->SetNotFocusable(true);
  }
  const LayoutSize size = GetThumbOfSkin(GetAxis()).mSize;
  const bool isLength = size.mReference == SizeReference::kSelf && size.mAbs > 0;
  mMinThumbSize = isLength ? size.mAbs : kLeastThumbSize;
  UpdateTrack();
  return result;
}

AxisLayout LScrollbar::GetThumbOfSkin(LayoutAxis axis) const {
  const RCPtr<LControlDescriptor> thumb = mThumb ? mThumb->GetDescriptor() : RCPtr<LControlDescriptor>();
  return thumb && thumb->mLayout ? thumb->mLayout->Axis(axis) : AxisLayout();
}

void LScrollbar::Destroy() {
  const RCPtr<LControl> held(this);
  LControl::Destroy();
  mChannelPress = kNoSide;
  mDraggingThumb = false;
  mChannel = nullptr;
  mThumb = nullptr;
}

void LScrollbar::SetKeyMask(std::uint32_t mask) {
  mKeyMask = mask;
  if (!mHandler || !mParent) return;
  mHandler->AddHandler(&LScrollbar::HandleKey, RCPtr<LNotificationDistributor>(mParent), u"NID_SIBLING_KEY");
}

void LScrollbar::SetSteps(double lineStep, double pageStep, double thumbRatio) {
  mLineStep = lineStep;
  mPageStep = pageStep;
  mThumbRatio = thumbRatio;
  UpdateThumb();
}

void LScrollbar::SetVertical(bool vertical) {
  if ((FindButton(u"dec") && FindButton(u"inc")) || vertical == IsVertical()) return;
  // The thumb was placed along what is now across.
  if (mThumb) {
    const AxisLayout across = GetThumbOfSkin(GetAxis());
    mThumb->SetAxisLayout(GetAxis(), across.mPosition, across.mSize);
  }
  mVertical = vertical ? 1 : 0;
  OnDescriptorApplied();
}

double LScrollbar::SetValue(double normalized) {
  if (!mDraggingThumb) return LControl::SetValue(normalized);
  if (!std::isnan(normalized)) mPendingValue = normalized;
  return mValue;
}

void LScrollbar::OnValueChange() {
  LControl::OnValueChange();
  UpdateThumb();
}

TFRESULT LScrollbar::SetValueRange(double min, double max, std::int32_t scale) {
  if (min == mValueMin && max == mValueMax && scale == mValueScale) return kSuccess;
  const double scaled = GetScaledValue();
  const TFRESULT result = LControl::SetValueRange(min, max, scale);
  // The user's thumb stays where it is held.
  if (!Failed(result) && !mDraggingThumb) SetScaledValue(scaled);
  return result;
}

void LScrollbar::EndBoundsChange() {
  LControl::EndBoundsChange();
  UpdateTrack();
}

void LScrollbar::UpdateTrack() {
  mTrackStart = 0;
  mTrackEnd = mChannel ? SideOn(GetAxis(), mChannel->GetClientRect()) : 0;
  UpdateThumb();
}

double LScrollbar::GetThumbRange() const {
  return std::max(mTrackEnd - mTrackStart - mThumbSize, 0.0);
}

double LScrollbar::GetThumbPosition() const {
  return mThumb ? On(GetAxis(), mThumb->GetBounds()) : mTrackStart;
}

void LScrollbar::UpdateThumb() {
  mThumbSize = std::trunc(std::max((mTrackEnd - mTrackStart) * mThumbRatio, mMinThumbSize) + 0.5);
  PlaceThumb(mDraggingThumb ? GetThumbPosition() : std::round(GetThumbRange() * mValue + mTrackStart));
}

void LScrollbar::PlaceThumb(double pixels) {
  if (!mThumb) return;
  LayoutPosition position;
  LayoutSize size, sizeBefore;
  LayoutPosition positionBefore;
  mThumb->GetAxisLayout(GetAxis(), positionBefore, sizeBefore);
  position.mIsDocked = positionBefore.mIsDocked;
  position.mAbs = pixels;
  size.mAbs = mThumbSize;
  if (position == positionBefore && size == sizeBefore) return;
  mThumb->SetAxisLayout(GetAxis(), position, size);
}

TFRESULT LScrollbar::HandleArrow(const RCPtr<LNotificationDistributor>& sender, const RCPtr<LNotification>&) {
  const RCPtr<LControl> arrow(sender);
  if (!arrow) return kNothingDone;
  Step(arrow->GetName() == u"dec" ? -mLineStep : mLineStep);
  return kSuccess;
}

std::int32_t LScrollbar::FindPointerSide() const {
  const RCPtr<LRootWindow> window = GetRootWindow();
  PointT<std::int32_t> mouse;
  if (!mChannel || !window || !window->GetMousePosition(mouse)) return kNoSide;
  const PointT<double> corner = mChannel->GetWindowPosition();
  const RectT<double> client = mChannel->GetClientRect();
  const PointT<double> point{mouse.mX - corner.mX, mouse.mY - corner.mY};
  const RectT<double>& frame = mChannel->GetBounds();
  if (!Contains({0, 0, frame.mWidth, frame.mHeight}, point)) return kNoSide;
  const double place = On(GetAxis(), point) - On(GetAxis(), client);
  const double near = GetThumbPosition();
  if (place >= mTrackStart && place < near) return kBeforeThumb;
  return place >= near + mThumbSize && place < mTrackEnd ? kBehindThumb : kNoSide;
}

TFRESULT LScrollbar::HandleChannelPress(const RCPtr<LNotificationDistributor>&,
                                        const RCPtr<LNotification>& notification) {
  const RCPtr<LConditionsParam> conditions(notification->GetData());
  if (!conditions) return kNothingDone;
  if (conditions->Fell(Bits::kHasCapture)) {
    EndChannelPress();
  } else if (conditions->Rose(Bits::kLeftDown)) {
    BeginChannelPress();
  }
  return kSuccess;
}

void LScrollbar::BeginChannelPress() {
  const std::int32_t side = mThumb ? FindPointerSide() : kNoSide;
  if (side == kNoSide || mChannelPress != kNoSide) return;
  mChannelPress = side;
  mLastChannelTime = GetControlTime();
  mTimeToChannelRepeat = mChannelRepeatDelay;
  // Before anybody hears of the step, who may end the press in turn.
  AddIdleUser();
  StepChannel();
}

void LScrollbar::EndChannelPress() {
  if (std::exchange(mChannelPress, kNoSide) == kNoSide) return;
  ShowPressedSide(kNoSide);
  RemoveIdleUser();
}

void LScrollbar::StepChannel() {
  const std::int32_t side = mChannelPress;
  Step(side == kBeforeThumb ? -mPageStep : mPageStep);
  if (mChannelPress != kNoSide && !mDestroyed) ShowPressedSide(side);
}

void LScrollbar::OnIdle() {
  LControl::OnIdle();
  if (mChannelPress == kNoSide || mDestroyed) return;
  const RCPtr<LControl> held(this);
  const double now = GetControlTime();
  const double passed = now - std::exchange(mLastChannelTime, now);
  // Time beside the pressed side does not count.
  if (FindPointerSide() != mChannelPress) return ShowPressedSide(kNoSide);
  mTimeToChannelRepeat -= passed;
  if (mTimeToChannelRepeat > 0) return;
  mTimeToChannelRepeat = mChannelRepeatPeriod;
  StepChannel();
}

void LScrollbar::ShowPressedSide(std::int32_t side) {
  if (!mChannel || mChannel->GetLookCount() <= kPressedLook) return;
  const RCPtr<LLook> look = mChannel->GetLook(kPressedLook);
  if (!look) return;
  std::optional<Region> region;
  if (side != kNoSide) {
    const RectT<double>& frame = mChannel->GetBounds();
    const double corner = On(GetAxis(), mChannel->GetClientRect());
    const std::int32_t length = RoundToInt32(SideOn(GetAxis(), frame));
    const std::int32_t start =
        side == kBeforeThumb ? 0 : RoundToInt32(corner + GetThumbPosition() + mThumbSize);
    const std::int32_t end = side == kBeforeThumb ? RoundToInt32(corner + GetThumbPosition()) : length;
    const std::int32_t across = RoundToInt32(mVertical ? frame.mWidth : frame.mHeight);
    const std::int32_t pressed = std::max(end - start, 0);
    region = Region(mVertical ? RectT<std::int32_t>{0, start, across, pressed}
                              : RectT<std::int32_t>{start, 0, pressed, across});
  }
  look->SetClipRegion(region);
  mChannel->SetLookAlpha(kPressedLook, region ? 1.0F : 0.0F, false);
  if (region) mChannel->InvalidateFrame();
}

// The pointer may have left the side that was pressed.
TFRESULT LScrollbar::HandlePointer(const RCPtr<LNotificationDistributor>&, const RCPtr<LNotification>&) {
  if (mChannelPress != kNoSide && FindPointerSide() != mChannelPress) ShowPressedSide(kNoSide);
  return kSuccess;
}

TFRESULT LScrollbar::HandleThumbDown(const RCPtr<LNotificationDistributor>&,
                                     const RCPtr<LNotification>& notification) {
  const RCPtr<LMouseButtonParam> press(notification->GetData());
  if (!press || !mThumb || press->mButton != LMouseButtonParam::kLeft) return kNothingDone;
  mDragStart = GetThumbPosition();
  mDragOrigin = PointerInChannel(*press);
  return kSuccess;
}

PointT<std::int32_t> LScrollbar::PointerInChannel(const LPointParam& pointInThumb) const {
  const RectT<double>& thumb = mThumb->GetBounds();
  return {RoundToInt32(pointInThumb.mX + thumb.mX), RoundToInt32(pointInThumb.mY + thumb.mY)};
}

TFRESULT LScrollbar::HandleThumbDrag(const RCPtr<LNotificationDistributor>&,
                                     const RCPtr<LNotification>& notification) {
  const RCPtr<LConditionsParam> conditions(notification->GetData());
  if (!conditions) return kNothingDone;
  if (conditions->Rose(Bits::kLeftDrag)) {
    mDraggingThumb = true;
    mPendingValue = kNoPending;
  } else if (conditions->Fell(Bits::kLeftDrag)) {
    EndThumbDrag();
  }
  return kSuccess;
}

void LScrollbar::EndThumbDrag() {
  if (!std::exchange(mDraggingThumb, false)) return;
  const double pending = std::exchange(mPendingValue, kNoPending);
  if (mApplyPendingValue && pending >= 0 && pending <= 1) SetValue(pending);
  if (!mDestroyed) UpdateThumb();
}

TFRESULT LScrollbar::HandleThumbMove(const RCPtr<LNotificationDistributor>&,
                                     const RCPtr<LNotification>& notification) {
  const RCPtr<LPointParam> point(notification->GetData());
  if (!mDraggingThumb || !point || !mThumb) return kNothingDone;
  const PointT<std::int32_t> pointer = PointerInChannel(*point);
  const std::int32_t movement = mVertical ? pointer.mY - mDragOrigin.mY : pointer.mX - mDragOrigin.mX;
  const double range = GetThumbRange();
  const double place = std::clamp(mDragStart + movement, mTrackStart, mTrackStart + range);
  PlaceThumb(place);
  // Not as from outside, which waits.
  if (range > 0) LControl::SetValue((place - mTrackStart) / range);
  return kSuccess;
}

TFRESULT LScrollbar::HandleKey(const RCPtr<LNotificationDistributor>&,
                               const RCPtr<LNotification>& notification) {
  const RCPtr<LSiblingKeyParam> param(notification->GetData());
  // Another one may have taken it, such as the bar across.
  if (!param || param->mUnhandled == 0 || !IsShown(true) || !IsEnabled(true)) return kNothingDone;
  const auto key = std::find_if(std::begin(kKeys), std::end(kKeys), [&](const BarKey& each) {
    return each.mCode == param->mKey.code && (mKeyMask & each.mMask) != 0 &&
           (mVertical ? each.mFitsVertical : each.mFitsHorizontal);
  });
  if (key == std::end(kKeys)) return kNothingDone;
  param->mUnhandled = 0;
  SetValue(ValueAt(key->mGoal, *this));
  return kSuccess;
}

}  // namespace TF
