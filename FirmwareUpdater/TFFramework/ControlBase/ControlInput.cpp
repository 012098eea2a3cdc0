#include <algorithm>
#include <cmath>
#include <utility>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlClock.h"

namespace TF {

namespace {

bool IsButton(std::uint32_t button) {
  return button == LMouseButtonParam::kLeft || button == LMouseButtonParam::kMiddle ||
         button == LMouseButtonParam::kRight;
}

bool IsButtonEvent(const RCPtr<LMouseButtonParam>& param) {
  return param && IsButton(param->mButton);
}

}  // namespace

void LControl::MarkChildHover(bool hover) {
  for (RCPtr<LControl> above = mParent; above; above = RCPtr<LControl>(above->mParent)) {
    above->mChildHover = hover;
    above->UpdateConditions();
  }
}

void LControl::MouseEnter() {
  const RCPtr<LControl> held(this);
  mHover = true;
  UpdateConditions();
  if (mHover) MarkChildHover(true);
}

void LControl::MouseLeave() {
  const RCPtr<LControl> held(this);
  mHover = false;
  UpdateConditions();
  MarkChildHover(false);
}

void LControl::FocusByMouse() {
  const RCPtr<LControl> parent = mParent;
  if (!mNotFocusable && !IsFocusRefused()) {
    SetFocus(true);
  } else if (parent) {
    parent->OnChildMouseDown(RCPtr<LControl>(this));
  }
}

void LControl::OnChildMouseDown(const RCPtr<LControl>&) {
  FocusByMouse();
}

TFRESULT LControl::MouseDown(const RCPtr<LMouseButtonParam>& param) {
  if (!IsButtonEvent(param)) return kInvalidArgument;
  if (!mHasCapture && !IsUsable()) return kNothingDone;
  const RCPtr<LControl> held(this);
  if (!mHasCapture) FocusByMouse();
  if (!mDestroyed) PressButton(param);
  if (!mDestroyed) Send(LNotification::Create(u"NID_MOUSE_DOWN", param));
  if (!mDestroyed && !mHasCapture) CaptureMouse(param->mButton, param->mX, param->mY);
  return kSuccess;
}

void LControl::PressButton(const RCPtr<LMouseButtonParam>& param) {
  switch (param->mButton) {
    case LMouseButtonParam::kLeft:
      mLastLeftDown = param;
      return OnLeftMouseDown(param);
    case LMouseButtonParam::kMiddle:
      return OnMiddleMouseDown(param);
    default:
      return OnRightMouseDown(param);
  }
}

TFRESULT LControl::MouseUp(const RCPtr<LMouseButtonParam>& param) {
  if (!IsButtonEvent(param)) return kInvalidArgument;
  if (!mHasCapture && !IsUsable()) return kNothingDone;
  const RCPtr<LControl> held(this);
  bool isClick = false;
  try {
    ReleaseButton(param);
    isClick = !mDestroyed && IsClick(param->mButton);
    if (!mDestroyed && param->mButton == LMouseButtonParam::kLeft) StartFlick();
    if (!mDestroyed) Send(LNotification::Create(u"NID_MOUSE_UP", param));
  } catch (...) {
    // The button is up whatever a receiver does.
    if (param->mButtonsHeld == 0) ReleaseMouse();
    throw;
  }
  if (mHasCapture && param->mButtonsHeld == 0) ReleaseMouse();
  if (isClick && !mDestroyed && IsEnabled(true)) OnClick(param);
  return kSuccess;
}

void LControl::ReleaseButton(const RCPtr<LMouseButtonParam>& param) {
  switch (param->mButton) {
    case LMouseButtonParam::kLeft:
      return OnLeftMouseUp(param);
    case LMouseButtonParam::kMiddle:
      return OnMiddleMouseUp(param);
    default:
      return OnRightMouseUp(param);
  }
}

bool LControl::IsClick(std::uint32_t button) const {
  const auto counts = [this](bool isDown, bool isDragged) {
    return mHover && (isDown || (isDragged && mDragMode == DragMode::kNone));
  };
  if (button == LMouseButtonParam::kLeft) return counts(mLeftDown, mLeftDrag);
  if (button == LMouseButtonParam::kMiddle) return counts(mMiddleDown, mMiddleDrag);
  return counts(mRightDown, mRightDrag);
}

TFRESULT LControl::CaptureMouse(std::uint32_t button, std::int32_t x, std::int32_t y) {
  if (mHasCapture || !IsUsable()) return kNothingDone;
  const RCPtr<LControl> held(this);
  const RCPtr<LRootWindow> window = GetRootWindow();
  if (button != 0) {
    if (window && (window->GetMouseButtons() & button) == 0) return kNothingDone;
    mGrabPoint = {x + mBounds.mX, y + mBounds.mY};
    mDragDelta = {};
  }
  bool ranOn = false;
  for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
    if (!mInertia[static_cast<std::size_t>(axis)]) continue;
    ranOn = true;
    StopScroll(axis);
  }
  // Before the one that had the mouse is told, who may take this one out of use or release its mouse.
  mHasCapture = true;
  if (window) window->SetCaptureControl(held);
  if (!mHasCapture) {
    if (window) window->ClearCaptureControl();
    return kNothingDone;
  }
  mPressTick = mPrevMoveTick = GetControlTicks();
  mVelocity = {};
  MarkPress(button);
  UpdateConditions();
  if (IsButtonDown() && (mDragThreshold == 0 || (mLeftDown && ranOn))) {
    BeginDragging();
    if (IsDragging()) OnDragMove(MakeRC<LPointWithModifiersParam>(x, y, 0, mPressTick));
  }
  return kSuccess;
}

void LControl::MarkPress(std::uint32_t button) {
  if (button == LMouseButtonParam::kLeft) {
    mLeftDown = true;
    mDragMode = DragMode::kNone;
    if (!mRouteChildHits) return;
    mRepeatsPress = true;
    AddIdleUser();
  } else if (button == LMouseButtonParam::kMiddle) {
    mMiddleDown = true;
  } else if (button == LMouseButtonParam::kRight) {
    mRightDown = true;
  }
}

void LControl::BeginDragging() {
  if (std::exchange(mLeftDown, false)) {
    mLeftDrag = true;
  } else if (std::exchange(mMiddleDown, false)) {
    mMiddleDrag = true;
  } else if (std::exchange(mRightDown, false)) {
    mRightDrag = true;
  }
  UpdateConditions();
}

TFRESULT LControl::ReleaseMouse() {
  if (!mHasCapture) return kNothingDone;
  const RCPtr<LControl> held(this);
  mHasCapture = false;
  for (bool* mark : {&mLeftDown, &mMiddleDown, &mRightDown, &mLeftDrag, &mMiddleDrag, &mRightDrag}) {
    *mark = false;
  }
  mLastLeftDown = nullptr;
  if (std::exchange(mRepeatsPress, false)) RemoveIdleUser();
  if (const RCPtr<LRootWindow> window = GetRootWindow(); window) window->ClearCaptureControl();
  UpdateConditions();
  return kSuccess;
}

bool LControl::PassesDragThreshold(const LPointWithModifiersParam& param) const {
  const double x = std::abs(param.mX + mBounds.mX - mGrabPoint.mX);
  const double y = std::abs(param.mY + mBounds.mY - mGrabPoint.mY);
  return std::max(x, y) >= std::max(mDragThreshold, 1);
}

TFRESULT LControl::MouseMove(const RCPtr<LPointWithModifiersParam>& param) {
  if (!param) return kInvalidArgument;
  const RCPtr<LControl> held(this);
  mLastMoveTick = GetControlTicks();
  if (IsButtonDown() && PassesDragThreshold(*param)) {
    const auto press = MakeRC<LPointWithModifiersParam>(RoundToInt32(mGrabPoint.mX - mBounds.mX),
                                                        RoundToInt32(mGrabPoint.mY - mBounds.mY),
                                                        param->mModifiers, param->mTime);
    MouseMove(press);
    if (IsButtonDown()) BeginDragging();
  }
  if (!mDestroyed) OnMouseMove(param);
  if (!mDestroyed) Send(LNotification::Create(u"NID_MOUSE_MOVE", param));
  if (!mDestroyed && IsDragging()) OnDragMove(param);
  mPrevMoveTick = mLastMoveTick;
  return kSuccess;
}

void LControl::OnLeftMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnLeftMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMiddleMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightMouseDown(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnRightMouseUp(const RCPtr<LMouseButtonParam>&) {}
void LControl::OnMouseMove(const RCPtr<LPointWithModifiersParam>&) {}

}  // namespace TF
