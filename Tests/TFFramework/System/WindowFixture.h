#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/Dialog.h"
#include "TFFramework/Controls/FrameworkControls.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/TFFramework/System/WindowApp.h"

namespace TF {

using Texts = std::vector<std::string>;

// Writes down what the window hands to it.
class WindowProbe : public LControl {
 public:
  WindowProbe(const RCPtr<LControl>& parent, const String& name) : LControl(parent, name) {
    if (!parent && !gStrings.empty()) mStringSection = MakeRC<LStringTable>(gStrings);
  }

  static inline Texts gLog;
  // The texts of a top control.
  static inline LStringTable::Strings gStrings;
  static inline std::function<void(LControl&)> gWhenHidden;
  static inline TFRESULT gWheelResult = kSuccess;
  static inline bool gRestoresFrame = false;
  // Runs at each event.
  static inline std::function<void(WindowProbe&, const std::string&)> gAct;

  void Tell(const std::string& event) {
    const std::string told = ToUtf8(GetName()) + " " + event;
    gLog.push_back(told);
    if (gAct) gAct(*this, told);
  }
  bool IsTransparentAt(const PointT<double>&) override { return false; }
  void SetVisible(bool visible) override {
    LControl::SetVisible(visible);
    if (!visible && gWhenHidden) gWhenHidden(*this);
  }
  void MouseEnter() override {
    LControl::MouseEnter();
    Tell("enter");
  }
  void MouseLeave() override {
    LControl::MouseLeave();
    Tell("leave");
  }
  void OnLeftMouseDown(const RCPtr<LMouseButtonParam>& param) override {
    Tell((param->mIsDoubleClick ? "double " : "down ") + At(*param));
  }
  void OnLeftMouseUp(const RCPtr<LMouseButtonParam>& param) override { Tell("up " + At(*param)); }
  void OnLeftClicked(const RCPtr<LMouseButtonParam>&) override { Tell("click"); }
  TFRESULT OnVerticalWheel(const RCPtr<LMouseWheelParam>& param) override { return Wheel(*param); }
  TFRESULT OnHorizontalWheel(const RCPtr<LMouseWheelParam>& param) override { return Wheel(*param); }
  TFRESULT OnKeyDown(const RCPtr<LKeyParam>& param) override {
    Tell(std::string(param->mKey.code & KeyCode::kPressed ? "press " : "key ") +
         ToUtf8(KeyCodeToName(param->mKey)));
    return kNothingDone;
  }
  std::int32_t RestoresWindowFrame() override { return gRestoresFrame ? 1 : 0; }
  void ShowToolTip(bool show) override { Tell(show ? "tip" : "no tip"); }
  TFRESULT OnRenderBackground(const RCPtr<LRenderer>& renderer) override {
    Tell("paint");
    return LControl::OnRenderBackground(renderer);
  }
  void OnIdle() override { Tell("idle"); }

 private:
  static std::string At(const LPointParam& point) {
    return std::to_string(point.mX) + "," + std::to_string(point.mY);
  }
  TFRESULT Wheel(const LMouseWheelParam& param) {
    Tell("wheel " + std::to_string(param.mDirection) + " " + At(param));
    return gWheelResult;
  }
};

// A window of 400 by 300 with the control "main" in it, and in that the boxes "a" and "b" beside each other.
class WindowFixture : public testing::Test {
 protected:
  using Event = Platform::MouseEvent;

  void SetUp() override {
    setenv("XDG_CONFIG_HOME", mFolder.Path().c_str(), 1);
    MakeWindow("XSizeAbs='400' YSizeAbs='300'",
               Box("a", "XSizeAbs='100' YSizeAbs='100'") +
                   Box("b", "XPositionAbs='100' XSizeAbs='100' YSizeAbs='100'"));
  }
  void TearDown() override {
    End();
    LNotificationCenterManager::ReleaseInstance();
    WindowProbe::gAct = nullptr;
    WindowProbe::gWheelResult = kSuccess;
    WindowProbe::gLog.clear();
    SetResources({});
  }

  static std::string Box(const std::string& name, const std::string& attributes,
                         const std::string& inner = "") {
    return "<SubControl Class='Probe' Name='" + name + "' " + attributes + "><Skin>" + inner +
           "</Skin></SubControl>";
  }
  // Ends the application that there is.
  void End() {
    if (!mApplication) return;
    CloseWindows(*mApplication);
    mApplication->Shutdown();
    mApplication = nullptr;
  }
  void MakeApplication(const std::string& controls) {
    End();
    const auto factory = LoadSkins("<Skins><Skin Name='S'>" + controls + "</Skin></Skins>");
    ASSERT_TRUE(factory);
    factory->RegisterControlCreateFunction(u"Probe", MakeControl<WindowProbe>);
    ASSERT_EQ(RegisterFrameworkControls(*factory), kSuccess);
    factory->RegisterControlCreateFunction(u"Dialog", MakeControl<LDialog>);
    mApplication = MakeRC<WindowApp>(factory, mSystem);
    ASSERT_EQ(mApplication->Initialize(), kSuccess);
    mApplication->StartDisplay();
  }
  void MakeWindow(const std::string& attributes, const std::string& children) {
    MakeApplication(
        "<SubControl Class='Probe' Name='mainControl' " + attributes + "><Skin>" + children +
        "</Skin></SubControl><SubControl Class='Dialog' Name='dialog' XSizeAbs='100' YSizeAbs='50'/>");
    ASSERT_EQ(mApplication->OpenScreen(), kSuccess);
    Listener().OnFocus(true);
    mSystem.DispatchPaints();
    Window().mPresented.clear();
    WindowProbe::gLog.clear();
  }

  TestSupport::FakePlatformWindow& Window(std::size_t index = 0) { return *mSystem.mWindows.at(index); }
  Platform::WindowListener& Listener(std::size_t index = 0) { return Window(index).mListener; }
  RCPtr<LRootWindow> Root() { return mApplication->GetRootWindows()[0]; }
  RCPtr<LControl> Main() { return Root()->GetTopControl(); }
  RCPtr<LControl> Child(const char16_t* name) { return Main()->FindChild(name); }
  static Event At(std::int32_t x, std::int32_t y) { return {{x, y}, 0, Platform::MouseButton::kLeft, false}; }
  void Click(std::int32_t x, std::int32_t y) {
    Listener().OnMouseMove(At(x, y));
    Listener().OnMousePress(At(x, y));
    Listener().OnMouseRelease(At(x, y));
  }
  static Texts TakeLog() { return std::exchange(WindowProbe::gLog, {}); }

  const TestSupport::TemporaryFolder mFolder;
  TestSupport::FakeWindowSystem mSystem;
  RCPtr<WindowApp> mApplication;
};

}  // namespace TF
