#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlWindow.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

// A window without a screen. It writes down what its controls ask for, and hands events to them in the
// simplest way: the mouse to who has captured it or lies under it, keys to the focus.
class StubWindow : public LRootWindow {
 public:
  StubWindow() : LRootWindow(nullptr, nullptr) {}

  void SetTitle(const String& title) override { mAsked.push_back("title " + ToUtf8(title)); }
  void SetClientSize(const SizeT<std::int32_t>& size) override {
    mAsked.push_back("size " + std::to_string(size.mWidth) + " " + std::to_string(size.mHeight));
  }
  bool GetLayoutDesktop(LayoutDesktop& desktop) override {
    desktop = {{10, 20}, {320, 200}, {1000, 800}, {30, 40}};
    return true;
  }
  std::uintptr_t SetCursor(std::uintptr_t cursor) override { return std::exchange(mCursor, cursor); }
  void ShowNamedCursor(const String& name) override { mAsked.push_back("cursor " + ToUtf8(name)); }
  void ForgetControl(LControl& control) override {
    mAsked.push_back("forget " + ToUtf8(control.GetName()));
    for (RCPtr<LControl>* field : {&mFocus, &mPreviousFocus, &mCapture, &mHover}) {
      if (*field == &control) *field = nullptr;
    }
  }
  void InvalidateRect(const RectT<std::int32_t>& rect) override { mInvalid.push_back(rect); }
  void RepeatHitTest() override {
    mAsked.push_back("hit test");
    if (mMouse) Hover(*mMouse);
  }
  void HitTest(RCPtr<LControl>& control, const PointT<std::int32_t>& point, PointT<std::int32_t>& localPoint,
               bool updateHover) override {
    control = nullptr;
    if (!mTop) return;
    PointT<double> local;
    std::int32_t bestZ = LControl::kNoZ;
    mTop->HitTest(control, {double(point.mX), double(point.mY)}, true, local, bestZ);
    localPoint = {RoundToInt32(local.mX), RoundToInt32(local.mY)};
    if (updateHover) SetHover(control);
  }
  RCPtr<LControl> GetHoverControl() override { return mHover; }
  bool GetMousePosition(PointT<std::int32_t>& point) override {
    if (mMouse) point = *mMouse;
    return mMouse.has_value();
  }
  std::uint32_t GetMouseButtons() override { return mButtons; }
  RCPtr<LControl> GetFocusControl() override { return mFocus; }
  void SetFocusControl(const RCPtr<LControl>& control) override { mFocus = control; }
  void ClearFocusControl() override { mPreviousFocus = std::exchange(mFocus, nullptr); }
  RCPtr<LControl> GetPreviousFocusControl() override { return mPreviousFocus; }
  TFRESULT SetCaptureControl(const RCPtr<LControl>& control) override {
    if (const RCPtr<LControl> before = mCapture) before->ReleaseMouse();
    mCapture = control;
    return kSuccess;
  }
  void ClearCaptureControl() override { mCapture = nullptr; }
  void ProcessUnhandledKey(const RCPtr<LKeyParam>& param) override {
    mAsked.push_back("key " + ToUtf8(KeyCodeToName(param->mKey)));
  }
  void ProcessTab(const RCPtr<LKeyParam>&) override { mAsked.push_back("tab"); }

  // Events, in the window's pixels.
  void Move(std::int32_t x, std::int32_t y) {
    mMouse = {x, y};
    PointT<std::int32_t> local;
    const RCPtr<LControl> target = Hover(*mMouse, &local);
    if (target) target->MouseMove(MakeRC<LPointWithModifiersParam>(local.mX, local.mY, 0, 0));
  }
  void Press(std::uint32_t button = LMouseButtonParam::kLeft) {
    mButtons |= button;
    PointT<std::int32_t> local;
    const RCPtr<LControl> target = Hover(*mMouse, &local);
    if (target) target->MouseDown(ButtonAt(local, button));
  }
  void LetGo(std::uint32_t button = LMouseButtonParam::kLeft) {
    mButtons &= ~button;
    if (const RCPtr<LControl> target = mCapture) target->MouseUp(ButtonAt(LocalTo(*target), button));
  }
  void Click(std::int32_t x, std::int32_t y, std::uint32_t button = LMouseButtonParam::kLeft) {
    Move(x, y);
    Press(button);
    LetGo(button);
  }
  TFRESULT Wheel(std::uint32_t direction) {
    PointT<std::int32_t> local;
    const RCPtr<LControl> target = Hover(*mMouse, &local);
    if (!target) return kNothingDone;
    return target->MouseWheel(MakeRC<LMouseWheelParam>(mMouse->mX, mMouse->mY, 0, 0, direction));
  }
  void Key(std::uint32_t code, bool wrap = true) {
    KeyCode key;
    key.code = code;
    if (const RCPtr<LControl> target = mFocus) target->KeyDown(MakeRC<LKeyParam>(key, wrap));
  }
  void Idle() { Send(LNotification::Create(u"NID_IDLE")); }

  std::vector<std::string> TakeAsked() { return std::exchange(mAsked, {}); }
  std::vector<RectT<std::int32_t>> TakeInvalid() { return std::exchange(mInvalid, {}); }

  std::uintptr_t mCursor = 7;
  RCPtr<LControl> mTop;
  RCPtr<LControl> mFocus;
  RCPtr<LControl> mPreviousFocus;
  RCPtr<LControl> mCapture;
  RCPtr<LControl> mHover;
  std::optional<PointT<std::int32_t>> mMouse;
  std::uint32_t mButtons = 0;

 private:
  void SetHover(RCPtr<LControl> control) {
    if (mCapture && !(control == mCapture)) control = nullptr;
    if (control == mHover) return;
    const RCPtr<LControl> before = std::exchange(mHover, control);
    if (before) before->MouseLeave();
    if (control) control->MouseEnter();
  }
  PointT<std::int32_t> LocalTo(const LControl& control) const {
    const PointT<double> corner = control.GetWindowPosition();
    return {mMouse->mX - RoundToInt32(corner.mX), mMouse->mY - RoundToInt32(corner.mY)};
  }
  RCPtr<LControl> Hover(const PointT<std::int32_t>& point, PointT<std::int32_t>* local = nullptr) {
    RCPtr<LControl> hit;
    PointT<std::int32_t> ignored;
    HitTest(hit, point, local ? *local : ignored, true);
    if (!mCapture) return hit;
    if (local) *local = LocalTo(*mCapture);
    return mCapture;
  }
  RCPtr<LMouseButtonParam> ButtonAt(const PointT<std::int32_t>& local, std::uint32_t button) const {
    return MakeRC<LMouseButtonParam>(local.mX, local.mY, 0U, 0U, button, false, mButtons);
  }

  std::vector<std::string> mAsked;
  std::vector<RectT<std::int32_t>> mInvalid;
};

}  // namespace TF
