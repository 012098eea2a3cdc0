#include <utility>

#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlClock.h"
#include "TFFramework/ControlBase/GlobalHotKeyManager.h"
#include "TFFramework/ControlBase/RootWindow.h"

namespace TF {

PointT<std::int32_t> LRootWindow::LocalPoint(const LControl& control,
                                             const PointT<std::int32_t>& point) const {
  const PointT<double> position = control.GetWindowPosition();
  return {point.mX - RoundToInt32(position.mX), point.mY - RoundToInt32(position.mY)};
}

void LRootWindow::ProcessMouseButton(std::uint32_t kind, std::uint32_t button, std::uint32_t modifiers,
                                     const PointT<std::int32_t>& point, std::uint32_t source) {
  if (!IsActive()) return;
  const RCPtr<LRootWindow> held(this);
  PointT<std::int32_t> mouse;
  if (!GetMousePosition(mouse) || mouse != point) ProcessMouseMove(point, modifiers, source);
  if (!IsActive()) return;
  HideToolTip();
  if (source < kKnownSources) {
    std::uint32_t& buttons = mButtonState[source];
    buttons = kind == kRelease ? buttons & ~button : buttons | button;
  }
  if (kind == kRelease)
    ReleaseButton(button, modifiers, point);
  else
    PressButton(kind, button, modifiers, point);
}

void LRootWindow::PressButton(std::uint32_t kind, std::uint32_t button, std::uint32_t modifiers,
                              const PointT<std::int32_t>& point) {
  RCPtr<LControl> target = mCaptureControl;
  PointT<std::int32_t> local;
  if (target)
    local = LocalPoint(*target, point);
  else
    HitTest(target, point, local, true);
  if (!target) return;
  const bool isDouble = kind == kDoubleClickPress;
  mDoubleClickButtons = isDouble ? mDoubleClickButtons | button : mDoubleClickButtons & ~button;
  target->MouseDown(MakeRC<LMouseButtonParam>(local.mX, local.mY, modifiers, GetControlTicks(), button,
                                              isDouble, GetMouseButtons()));
}

void LRootWindow::ReleaseButton(std::uint32_t button, std::uint32_t modifiers,
                                const PointT<std::int32_t>& point) {
  const RCPtr<LControl> target = mCaptureControl;
  if (!target) return;
  const PointT<std::int32_t> local = LocalPoint(*target, point);
  const bool isDouble = (mDoubleClickButtons & button) != 0;
  mDoubleClickButtons &= ~button;
  target->MouseUp(MakeRC<LMouseButtonParam>(local.mX, local.mY, modifiers, GetControlTicks(), button,
                                            isDouble, GetMouseButtons()));
}

void LRootWindow::ProcessMouseMove(const PointT<std::int32_t>& point, std::uint32_t modifiers,
                                   std::uint32_t) {
  if (!IsActive()) return;
  const RCPtr<LRootWindow> held(this);
  const bool isCaptured = mCaptureControl != nullptr;
  RCPtr<LControl> target;
  PointT<std::int32_t> local;
  HitTest(target, point, local, true);
  if (isCaptured) {
    target = mCaptureControl;
    if (target) local = LocalPoint(*target, point);
  }
  if (target)
    target->MouseMove(MakeRC<LPointWithModifiersParam>(local.mX, local.mY, modifiers, GetControlTicks()));
}

void LRootWindow::ProcessMouseWheel(const PointT<std::int32_t>& point, std::uint32_t modifiers,
                                    std::uint32_t direction) {
  if (!IsActive()) return;
  const RCPtr<LRootWindow> held(this);
  HideToolTip();
  RCPtr<LControl> target = mCaptureControl;
  PointT<std::int32_t> local;
  if (!target) HitTest(target, point, local, true);
  if (!target) return;
  const auto param = MakeRC<LMouseWheelParam>(point.mX, point.mY, modifiers, GetControlTicks(), direction);
  const RCPtr<LControl> focus = mFocusControl;
  if (target->MouseWheel(param) == kNothingDone && focus && focus == mFocusControl) focus->MouseWheel(param);
}

void LRootWindow::ProcessKey(const RCPtr<LKeyParam>& param) {
  const RCPtr<LRootWindow> held(this);
  HideToolTip();
  if (const RCPtr<LControl> focus = mFocusControl) focus->KeyDown(param);
}

void LRootWindow::ProcessUnhandledKey(const RCPtr<LKeyParam>& param) {
  if (mHotKeys) mHotKeys->ProcessKey(param->mKey);
}

void LRootWindow::ProcessActivate() {
  const RCPtr<LRootWindow> held(this);
  const RCPtr<LControl> saved = mSavedFocusControl;
  const RCPtr<LControl> top = mTopControl;
  if (!mFocusControl && saved && saved->GetRootWindow() == held)
    saved->SetFocus(true);
  else if (top)
    top->SetFocus(true);
}

void LRootWindow::ProcessFocusLost() {
  const RCPtr<LRootWindow> held(this);
  SetHoverControl(nullptr);
  const RCPtr<LControl> top = mTopControl;
  if (!top) return;
  top->SetFocus(true);
  top->LoseFocus();
}

void LRootWindow::ProcessCaptureLost() {
  const RCPtr<LRootWindow> held(this);
  if (const RCPtr<LControl> capture = mCaptureControl) capture->ReleaseMouse();
}

void LRootWindow::ProcessSize(const SizeT<std::int32_t>& size) {
  {
    const MutexLock lock(mRegionMutex);
    mBounds = {0, 0, size.mWidth, size.mHeight};
  }
  const RCPtr<LRootWindow> held(this);
  if (const RCPtr<LControl> top = mTopControl)
    top->ParentResized({double(size.mWidth), double(size.mHeight)});
}

void LRootWindow::HitTest(RCPtr<LControl>& control, const PointT<std::int32_t>& point,
                          PointT<std::int32_t>& localPoint, bool updateHover) {
  control = nullptr;
  const RCPtr<LControl> top = mTopControl;
  if (!top) return;
  const RCPtr<LRootWindow> held(this);
  const PointT<std::int32_t> local = LocalPoint(*top, point);
  PointT<double> found;
  std::int32_t bestZ = LControl::kNoZ;
  top->HitTest(control, {double(local.mX), double(local.mY)}, true, found, bestZ);
  localPoint = {RoundToInt32(found.mX), RoundToInt32(found.mY)};
  if (updateHover) SetHoverControl(control);
}

void LRootWindow::RepeatHitTest() {
  PointT<std::int32_t> mouse;
  if (!GetMousePosition(mouse)) return;
  RCPtr<LControl> control;
  PointT<std::int32_t> local;
  HitTest(control, mouse, local, true);
}

// What leaves and enters may set another control, or take the window's tree away.
void LRootWindow::SetHoverControl(const RCPtr<LControl>& control) {
  const RCPtr<LControl> hovered = mCaptureControl && control != mCaptureControl ? RCPtr<LControl>() : control;
  if (hovered == mHoverControl) return;
  const RCPtr<LRootWindow> held(this);
  RCPtr<LControl> owner;
  if (hovered != mCaptureControl) owner = hovered;
  while (owner && owner->GetToolTipText().IsEmpty()) owner = owner->GetToolTipParent();
  ShowToolTipOf(owner);
  const RCPtr<LControl> old = std::exchange(mHoverControl, hovered);
  const auto enter = [&] {
    if (hovered && mHoverControl == hovered) hovered->MouseEnter();
  };
  try {
    if (old && (old->GetParent() || old->GetRootWindow())) old->MouseLeave();
  } catch (...) {
    // The mouse is over the other control all the same.
    enter();
    throw;
  }
  enter();
}

void LRootWindow::ShowToolTipOf(const RCPtr<LControl>& owner) {
  if (owner == mToolTipControl) return;
  const RCPtr<LControl> old = std::exchange(mToolTipControl, owner);
  if (old) old->ShowToolTip(false);
  if (owner && mToolTipControl == owner) owner->ShowToolTip(true);
}

// The control stays in the field, so that its tip does not come back before the mouse has left it.
void LRootWindow::HideToolTip() {
  if (const RCPtr<LControl> owner = mToolTipControl) owner->ShowToolTip(false);
}

RCPtr<LControl> LRootWindow::GetHoverControl() {
  return mHoverControl;
}

bool LRootWindow::GetMousePosition(PointT<std::int32_t>& point) {
  return mOSServices && !Failed(mOSServices->GetMousePosition(point));
}

std::uint32_t LRootWindow::GetMouseButtons() {
  return mOSServices ? mOSServices->GetMouseButtons() : 0;
}

void LRootWindow::ProcessTab(const RCPtr<LKeyParam>& param) {
  if (!IsActive() || mOSServices->IsModal()) return;
  const RCPtr<LRootWindow> held(this);
  const bool forward = (param->mKey.code & KeyCode::kShift) == 0;
  const LFrameworkApp* const application = LFrameworkApp::GetInstance();
  if (application && application->GetRootWindows().GetCount() > 1) return FocusNextWindow(forward);
  const RCPtr<LControl> top = mTopControl;
  if (!top) return;
  top->LoseFocus();
  top->SetFocus(forward);
}

void LRootWindow::FocusNextWindow(bool forward) {
  const auto& windows = LFrameworkApp::GetInstance()->GetRootWindows();
  const std::int32_t count = windows.GetCount();
  for (std::int32_t index = 0; index < count; ++index) {
    if (windows[index] != this) continue;
    const RCPtr<LRootWindow> next = windows[(index + (forward ? 1 : count - 1)) % count];
    if (!next->IsActive() && next->mOSServices) next->mOSServices->TakeFocus();
    return;
  }
}

}  // namespace TF
