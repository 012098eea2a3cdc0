#include "TFFramework/Controls/ScrollView.h"

#include <algorithm>
#include <cmath>

#include "TFFramework/ControlBase/LayoutGuard.h"
#include "TFFramework/ControlBase/PointAxis.h"
#include "TFFramework/Notification/AutoNotificationDisabler.h"

namespace TF {

namespace {

constexpr double kSameExtent = 2.220446049250313e-15;  // Pixels.
// A whole number of steps may have lost its last bits on the way through a value from 0 to 1.
constexpr double kStepTolerance = 1e-6;
constexpr double kLinesPerPage = 10;
// What hears of a bar may change what the bars depend on, and once more; whoever goes on is not followed.
constexpr int kMostUpdates = 4;
constexpr LayoutAxis kBars[] = {LayoutAxis::kY, LayoutAxis::kX};

constexpr LayoutAxis Across(LayoutAxis axis) {
  return axis == LayoutAxis::kX ? LayoutAxis::kY : LayoutAxis::kX;
}

double& SideOf(LayoutAxis axis, SizeT<double>& size) {
  return axis == LayoutAxis::kX ? size.mWidth : size.mHeight;
}

// What the layout asks for, or what it came to; 0 without a control.
double AskedSize(const RCPtr<LControl>& control, LayoutAxis axis) {
  if (!control) return 0;
  const LayoutSize& size = control->GetLayout()->Axis(axis).mSize;
  return size.mReference == SizeReference::kSelf ? size.mAbs : SideOn(axis, control->GetBounds());
}

void SetThickness(LControl& control, LayoutAxis axis, double pixels) {
  LayoutSize size;
  size.mAbs = pixels;
  control.SetAxisLayout(axis, LayoutPosition(control.GetLayout()->Axis(axis).mPosition), size);
}

}  // namespace

LScrollView::LScrollView(const RCPtr<LControl>& parent, const String& name) : HandlingControl(parent, name) {}

LScrollView::~LScrollView() = default;

TFRESULT LScrollView::Initialize() {
  const TFRESULT result = LControl::Initialize();
  if (Failed(result)) return result;
  mHBar = RCPtr<LScrollbar>(FindChild(u"hBar"));
  mVBar = RCPtr<LScrollbar>(FindChild(u"vBar"));
  mCorner = FindChild(u"corner");
  MakeHandler();
  for (const LayoutAxis axis : kBars) {
    const RCPtr<LScrollbar>& bar = GetBar(axis);
    if (!bar) continue;
    bar->SetVertical(axis == LayoutAxis::kY);
    mHandler->AddHandler(&LScrollView::HandleBarValue, RCPtr<LNotificationDistributor>(bar),
                         u"NID_VALUE_CHANGE");
  }
  TakeThickness();
  return result;
}

void LScrollView::TakeThickness() {
  for (const LayoutAxis axis : kBars) {
    const double corner = AskedSize(mCorner, Across(axis));
    const double own = corner > 0 ? corner : AskedSize(RCPtr<LControl>(GetBar(axis)), Across(axis));
    if (own > 0) SideOf(Across(axis), mBarThickness) = own;
  }
}

void LScrollView::ApplyCreateParameters() {
  LControl::ApplyCreateParameters();
  const auto take = [this](const char16_t* key, std::uint32_t bit) {
    bool isOn = false;
    if (!GetCreateFlag(key, isOn)) return;
    mAutoClientExtent = isOn ? mAutoClientExtent | bit : mAutoClientExtent & ~bit;
  };
  take(u"AUTO_CLIENT_EXTENT_X", kAutoX);
  take(u"AUTO_CLIENT_EXTENT_Y", kAutoY);
}

TFRESULT LScrollView::ApplyDescriptor(const RCPtr<LControlDescriptor>& descriptor) {
  const RCPtr<LControl> held(this);
  const LayoutGuard applying(mInExtentChange);
  return LControl::ApplyDescriptor(descriptor);
}

TFRESULT LScrollView::OnDescriptorApplied() {
  const TFRESULT result = LControl::OnDescriptorApplied();
  // Until now nobody knew of the bars.
  LayOutContent();
  UpdateBars();
  return result;
}

void LScrollView::Destroy() {
  const RCPtr<LControl> held(this);
  LControl::Destroy();
  mHBar = nullptr;
  mVBar = nullptr;
  mCorner = nullptr;
}

void LScrollView::OnChildRemoved(const RCPtr<LControl>& child, std::int32_t index) {
  LControl::OnChildRemoved(child, index);
  if (RCPtr<LControl>(mHBar) == child) mHBar = nullptr;
  if (RCPtr<LControl>(mVBar) == child) mVBar = nullptr;
  if (mCorner == child) mCorner = nullptr;
  FollowChildren();
}

bool LScrollView::HasBarSize(LayoutAxis barAxis) const {
  const RCPtr<LControl> bar(GetBar(barAxis));
  if (!bar) return false;
  return SideOn(Across(barAxis), (mCorner ? mCorner : bar)->GetBounds()) > 0;
}

bool LScrollView::IsBarShown(LayoutAxis axis) const {
  return GetBar(axis) && GetBar(axis)->IsShown(false);
}

void LScrollView::GetScrollViewRect(RectT<double>& result) {
  const RectT<double> client = GetClientRect();
  result = {0, 0, client.mWidth, client.mHeight};
  if (HasBarSize(LayoutAxis::kY)) result.mWidth = std::max(client.mWidth - mBarThickness.mWidth, 0.0);
  if (HasBarSize(LayoutAxis::kX)) result.mHeight = std::max(client.mHeight - mBarThickness.mHeight, 0.0);
}

RectT<double> LScrollView::GetClientView() {
  RectT<double> view;
  GetScrollViewRect(view);
  const auto span = [](double side, double least, double extent, double offset, double& place) {
    const double wanted = std::max(side, least);
    place = std::max(offset - (wanted - side) * 0.5, 0.0);
    return std::max(std::min(wanted, extent), 1.0);
  };
  const SizeT<double> size{view.mWidth, view.mHeight};
  view.mWidth = span(size.mWidth, mMinViewSize.mWidth, mClientExtent.mWidth, mScrollOffset.mX, view.mX);
  view.mHeight = span(size.mHeight, mMinViewSize.mHeight, mClientExtent.mHeight, mScrollOffset.mY, view.mY);
  return view;
}

bool LScrollView::ReactsToSizes() const {
  return mHandler && !mDestroyed && !mInUpdate && !mInExtentChange && !mInScroll && !mInLayout;
}

void LScrollView::FollowChildren() {
  if (ReactsToSizes() && UpdateAutoExtent() == kSuccess) UpdateBars();
}

void LScrollView::OnChildBoundsChange(const RCPtr<LControl>& child) {
  const RCPtr<LControl> held(this);
  const bool isContent =
      child != RCPtr<LControl>(mHBar) && child != RCPtr<LControl>(mVBar) && child != mCorner;
  if (isContent) FollowChildren();
  LControl::OnChildBoundsChange(child);
}

void LScrollView::EndBoundsChange() {
  LControl::EndBoundsChange();
  const bool isSame = mBounds.mWidth == mSizeAtUpdate.mWidth && mBounds.mHeight == mSizeAtUpdate.mHeight;
  if (isSame) return;
  if (mInUpdate) mUpdateAgain = true;
  if (!mInUpdate && !mInExtentChange) UpdateBars();
}

TFRESULT LScrollView::SetClientExtent(const SizeT<double>& extent) {
  if (!std::isfinite(extent.mWidth) || !std::isfinite(extent.mHeight)) return kInvalidArgument;
  if (std::abs(extent.mWidth - mClientExtent.mWidth) < kSameExtent &&
      std::abs(extent.mHeight - mClientExtent.mHeight) < kSameExtent) {
    return kNothingDone;
  }
  const RCPtr<LControl> held(this);
  mClientExtent = extent;
  const LayoutGuard changing(mInExtentChange);
  OnClientExtentChange();
  if (!mDestroyed) Send(LNotification::Create(u"NID_CLIENT_EXTENT_CHANGE"));
  return kSuccess;
}

TFRESULT LScrollView::UpdateAutoExtent() {
  if (mAutoClientExtent == 0) return kNothingDone;
  PointT<double> far;
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const LControl& child = *GetChild(index);
    if (child.IsDoomed()) continue;
    const RectT<double>& bounds = child.GetBounds();
    if (!child.IsDocked(LayoutAxis::kX)) far.mX = std::max(far.mX, bounds.GetRight());
    if (!child.IsDocked(LayoutAxis::kY)) far.mY = std::max(far.mY, bounds.GetBottom());
  }
  SizeT<double> extent = mClientExtent;
  if (mAutoClientExtent & kAutoX) extent.mWidth = double(RoundToInt32(far.mX)) + mExtentExtra.mX;
  if (mAutoClientExtent & kAutoY) extent.mHeight = double(RoundToInt32(far.mY)) + mExtentExtra.mY;
  return SetClientExtent(extent);
}

TFRESULT LScrollView::SetScrollStep(LayoutAxis axis, std::int32_t pixels) {
  if ((axis != LayoutAxis::kX && axis != LayoutAxis::kY) || pixels < 0) return kInvalidArgument;
  (axis == LayoutAxis::kX ? mSnapX : mSnapY) = pixels > 0 ? 1 : 0;
  (axis == LayoutAxis::kX ? mStepX : mStepY) = pixels;
  return kSuccess;
}

std::int32_t LScrollView::StepOf(LayoutAxis axis) const {
  return axis == LayoutAxis::kX ? (mSnapX ? mStepX : 0) : (mSnapY ? mStepY : 0);
}

void LScrollView::UpdateBars() {
  if (!mHandler || mDestroyed) return;
  mUpdateAgain = true;
  if (mInUpdate) return;
  const RCPtr<LControl> held(this);
  const LayoutGuard updating(mInUpdate);
  for (int count = 0; mUpdateAgain && !mDestroyed && count < kMostUpdates; ++count) {
    mUpdateAgain = false;
    UpdateOnce();
  }
}

void LScrollView::UpdateOnce() {
  mSizeAtUpdate = {mBounds.mWidth, mBounds.mHeight};
  const bool hadV = IsBarShown(LayoutAxis::kY);
  const bool hadH = IsBarShown(LayoutAxis::kX);
  RectT<double> before, after;
  GetScrollViewRect(before);
  UpdateAutoExtent();
  ShowBars();
  GetScrollViewRect(after);
  if (!(after == before)) {
    LayOutContent();
    // What fills the view may need a bar no more that the old extent asked for.
    if (UpdateAutoExtent() == kSuccess) mUpdateAgain = true;
  }
  UpdateBarValues();
  TellBarChanges(hadV, hadH, !(after == before));
  if (!mDestroyed && UpdateAutoExtent() == kSuccess) mUpdateAgain = true;
}

// One bar takes room that may make the other one necessary.
void LScrollView::ShowBars() {
  const RectT<double> client = GetClientRect();
  const auto overflows = [](double room, double extent) { return room < extent; };
  bool needV = mVBar && overflows(client.mHeight, mClientExtent.mHeight);
  const double width = client.mWidth - (needV ? mBarThickness.mWidth : 0);
  const bool needH = mHBar && overflows(width, mClientExtent.mWidth);
  if (needH && !needV) {
    needV = mVBar && overflows(client.mHeight - mBarThickness.mHeight, mClientExtent.mHeight);
  }
  ShowBar(LayoutAxis::kY, needV);
  ShowBar(LayoutAxis::kX, needH);
}

void LScrollView::ShowBar(LayoutAxis barAxis, bool show) {
  const LayoutAxis across = Across(barAxis);
  const double pixels = show ? SideOf(across, mBarThickness) : 0;
  const RCPtr<LControl> bar(GetBar(barAxis));
  // One whose layout names the corner follows it.
  const bool isOwn =
      bar && (!mCorner || bar->GetLayout()->Axis(across).mSize.mReference == SizeReference::kSelf);
  if (mCorner && (SideOn(across, mCorner->GetBounds()) > 0) != show) SetThickness(*mCorner, across, pixels);
  if (isOwn && (SideOn(across, bar->GetBounds()) > 0) != show) SetThickness(*bar, across, pixels);
}

// As after a change of the size of this control itself.
void LScrollView::LayOutContent() {
  const LayoutGuard guard(mInLayout);
  RectT<double> view;
  GetScrollViewRect(view);
  const SizeT<double> size{std::round(view.mWidth), std::round(view.mHeight)};
  for (std::int32_t index = 0; index < GetChildCount(); ++index) {
    const RCPtr<LControl> child = GetChild(index);
    if (!child->IsDockedOnBothAxes()) child->ParentResized(size);
  }
  Relayout();
}

void LScrollView::TellBarChanges(bool hadV, bool hadH, bool viewChanged) {
  if (!mDestroyed && IsBarShown(LayoutAxis::kY) != hadV) OnBarVisibilityChange(LayoutAxis::kY);
  if (!mDestroyed && IsBarShown(LayoutAxis::kX) != hadH) OnBarVisibilityChange(LayoutAxis::kX);
  if (!mDestroyed && viewChanged) OnClientViewChange();
}

void LScrollView::UpdateBarValues() {
  for (const LayoutAxis axis : kBars) {
    const RCPtr<LScrollbar> bar = GetBar(axis);
    if (mDestroyed || !bar || !bar->GetParent()) continue;
    RectT<double> view;
    GetScrollViewRect(view);
    const double extent = SideOf(axis, mClientExtent);
    if (StepOf(axis) > 0) {
      UpdateBarInSteps(*bar, axis, SideOn(axis, view), extent);
    } else {
      UpdateBarInPixels(*bar, SideOn(axis, view), extent);
    }
    if (!mDestroyed) SetOffset(axis, OffsetOf(*bar, axis));
  }
}

// The thumb stays where it is, whatever the extent.
void LScrollView::UpdateBarInPixels(LScrollbar& bar, double view, double extent) {
  const double left = std::max(extent - view, 0.0);
  const double page = left > 0 ? std::clamp(view / left, 0.0, 1.0) : 1;
  bar.LControl::SetValueRange(0, left, kLinearScale);
  bar.SetSteps(page / kLinesPerPage, page, left > 0 ? view / extent : 1);
}

// What is at the top stays there.
void LScrollView::UpdateBarInSteps(LScrollbar& bar, LayoutAxis axis, double view, double extent) {
  const double total = std::trunc(extent / StepOf(axis));
  const double shown = std::trunc(view / StepOf(axis));
  const double left = std::max(total - shown, 0.0);
  const double line = left > 0 ? 1 / left : 1;
  bar.SetSteps(line, std::min(std::max(shown, 1.0) * line, 1.0), left > 0 ? shown / total : 1);
  bar.SetValueRange(0, left, kLinearScale);
}

double LScrollView::OffsetOf(const LScrollbar& bar, LayoutAxis axis) const {
  const double scaled = bar.GetScaledValue();
  const std::int32_t step = StepOf(axis);
  return step > 0 ? std::trunc(scaled + kStepTolerance) * step : std::round(scaled);
}

void LScrollView::SetOffset(LayoutAxis axis, double offset) {
  PointT<double> wanted = mScrollOffset;
  On(axis, wanted) = std::max(offset, 0.0);
  if (!(wanted == mScrollOffset)) SetScrollOffset(wanted);
}

TFRESULT LScrollView::SetScrollOffset(const PointT<double>& offset) {
  const RCPtr<LControl> held(this);
  const LayoutGuard scrolling(mInScroll);
  return LControl::SetScrollOffset(offset);
}

void LScrollView::OnScrollOffsetChange(const PointT<double>& from, const PointT<double>& to) {
  const RCPtr<LControl> held(this);
  LControl::OnScrollOffsetChange(from, to);
  for (const LayoutAxis axis : kBars) MoveBarToOffset(axis);
}

// Somebody else than the bar has scrolled, who need not hear of it from the bar.
void LScrollView::MoveBarToOffset(LayoutAxis axis) {
  const RCPtr<LScrollbar> bar = GetBar(axis);
  const double offset = On(axis, mScrollOffset);
  if (mDestroyed || !mHandler || !bar || !bar->GetParent() || OffsetOf(*bar, axis) == offset) return;
  const double scaled = StepOf(axis) > 0 ? offset / StepOf(axis) : offset;
  const RCPtr<LNotificationDistributor> distributor(bar);
  LNotificationHandler<LScrollView>::Function function = nullptr;
  std::uint32_t flags = 0;
  if (Failed(mHandler->GetHandler(distributor, u"NID_VALUE_CHANGE", function, flags))) {
    // Disabled already, further up.
    bar->SetScaledValue(scaled);
    return;
  }
  const CAutoNotificationDisabler<LScrollView> quiet(mHandler, distributor, u"NID_VALUE_CHANGE");
  bar->SetScaledValue(scaled);
}

TFRESULT LScrollView::HandleBarValue(const RCPtr<LNotificationDistributor>& sender,
                                     const RCPtr<LNotification>&) {
  for (const LayoutAxis axis : kBars) {
    const RCPtr<LScrollbar> bar = GetBar(axis);
    if (bar && RCPtr<LNotificationDistributor>(bar) == sender) SetOffset(axis, OffsetOf(*bar, axis));
  }
  return kSuccess;
}

TFRESULT LScrollView::TurnWheel(const RCPtr<LScrollbar>& bar, const LMouseWheelParam& param, bool isForward) {
  const RCPtr<LControl> held(this);
  const double step = (param.mModifiers & Modifier::kShift) != 0 ? bar->GetPageStep() : bar->GetLineStep();
  bar->SetValue(bar->GetValue() + (isForward ? step : -step));
  return kSuccess;
}

TFRESULT LScrollView::OnVerticalWheel(const RCPtr<LMouseWheelParam>& param) {
  const bool hasV = IsBarShown(LayoutAxis::kY), hasH = IsBarShown(LayoutAxis::kX);
  if (!param || (!hasV && !hasH)) return kNothingDone;
  const bool isAcross = !hasV || (hasH && (param->mModifiers & Modifier::kAlt) != 0);
  return TurnWheel(RCPtr<LScrollbar>(isAcross ? mHBar : mVBar), *param,
                   param->mDirection == LMouseWheelParam::kDown);
}

TFRESULT LScrollView::OnHorizontalWheel(const RCPtr<LMouseWheelParam>& param) {
  const bool hasV = IsBarShown(LayoutAxis::kY), hasH = IsBarShown(LayoutAxis::kX);
  if (!param || (!hasV && !hasH)) return kNothingDone;
  return TurnWheel(RCPtr<LScrollbar>(hasH ? mHBar : mVBar), *param,
                   param->mDirection == LMouseWheelParam::kHorizontalDown);
}

}  // namespace TF
