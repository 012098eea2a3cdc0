#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "TFFramework/ControlBase/Control.h"
#include "Tests/TFFramework/ControlBase/ControlFixture.h"
#include "Tests/TFFramework/ControlBase/StubWindow.h"

namespace TF {

// A box without holes that writes down what happens to it, and lets a test act in the middle of it.
class ProbeControl : public BoxControl {
 public:
  using Log = std::vector<std::string>;

  ProbeControl(const RCPtr<LControl>& parent, const String& name) : BoxControl(parent, name) {
    if (const auto found = gTexts.find(name); found != gTexts.end()) {
      mStringSection = MakeRC<LStringTable>(found->second);
    }
  }

  static inline Log gLog;
  // Runs at each event, which it is told with the control's name before it.
  static inline std::function<void(ProbeControl&, const std::string&)> gAct;
  // The texts of controls by their names.
  static inline std::map<String, LStringTable::Strings> gTexts;

  using LControl::mBackingDirty;
  using LControl::mBackingStore;
  using LControl::mChildHover;
  using LControl::mContextMenu;
  using LControl::mDragThreshold;
  using LControl::mFocusRoot;
  using LControl::mIdleRefCount;
  using LControl::mInertia;
  using LControl::mRouteChildHits;
  using LControl::mRoutedChild;
  using LControl::mRoutedPoint;
  using LControl::mScrollSpeed;
  using LControl::mVelocity;
  using LControl::mWantsTab;

  bool mSolid = true;
  bool mKeepsFocus = false;
  bool mTakesKeys = false;
  bool mTakesWheel = false;
  bool mTakesDrops = false;
  DragMode mWantedMode = DragMode::kNone;
  std::uint32_t mWantedEdges = DragEdges::kX | DragEdges::kY;
  std::uint32_t mAutoScroll = 0;
  SizeT<double> mScrollRange{kInfinite, kInfinite};

  void Tell(const std::string& event) {
    const std::string told = ToUtf8(GetName()) + " " + event;
    gLog.push_back(told);
    if (gAct) gAct(*this, told);
  }
  bool IsTransparentAt(const PointT<double>& point) override {
    return !mSolid && BoxControl::IsTransparentAt(point);
  }
  bool CanLoseFocus() override { return !mKeepsFocus; }
  void OnConditionChange(const RCPtr<LConditionsParam>& conditions) override {
    const std::uint32_t risen = conditions->mCurrent & ~conditions->mPrevious;
    if (risen & ControlCondition::kLeftDrag) SetDragMode(mWantedMode, mWantedEdges);
    Tell("conditions");
  }
  void OnLeftMouseDown(const RCPtr<LMouseButtonParam>& param) override { Tell("left down" + At(*param)); }
  void OnLeftMouseUp(const RCPtr<LMouseButtonParam>&) override { Tell("left up"); }
  void OnMiddleMouseDown(const RCPtr<LMouseButtonParam>&) override { Tell("middle down"); }
  void OnMiddleMouseUp(const RCPtr<LMouseButtonParam>&) override { Tell("middle up"); }
  void OnRightMouseDown(const RCPtr<LMouseButtonParam>&) override { Tell("right down"); }
  void OnRightMouseUp(const RCPtr<LMouseButtonParam>&) override { Tell("right up"); }
  void OnLeftClicked(const RCPtr<LMouseButtonParam>&) override { Tell("left click"); }
  void OnMiddleClicked(const RCPtr<LMouseButtonParam>&) override { Tell("middle click"); }
  void OnRightClicked(const RCPtr<LMouseButtonParam>&) override { Tell("right click"); }
  void OnMouseMove(const RCPtr<LPointWithModifiersParam>& param) override { Tell("move" + At(*param)); }
  TFRESULT OnVerticalWheel(const RCPtr<LMouseWheelParam>&) override {
    Tell("wheel");
    return mTakesWheel ? kSuccess : kNothingDone;
  }
  TFRESULT OnHorizontalWheel(const RCPtr<LMouseWheelParam>&) override {
    Tell("horizontal wheel");
    return mTakesWheel ? kSuccess : kNothingDone;
  }
  TFRESULT OnKeyDown(const RCPtr<LKeyParam>&) override {
    Tell("key");
    return mTakesKeys ? kSuccess : kNothingDone;
  }
  void OnContextMenuOpening(const RCPtr<LControl>&) override { Tell("menu"); }
  void OnDragBegin() override {
    BoxControl::OnDragBegin();
    Tell("drag begin");
  }
  void OnDragMoved(const RCPtr<LPointWithModifiersParam>&) override { Tell("dragged"); }
  void OnDragEnd() override {
    BoxControl::OnDragEnd();
    Tell("drag end");
  }
  bool IsDropTarget(const RCPtr<LControl>&) override { return mTakesDrops; }
  std::uint32_t GetAutoScrollEdges(const RCPtr<LControl>&) override { return mAutoScroll; }
  void GetDragLimits(RectT<double>& result, const RCPtr<LControl>&) override {
    result = {0, 0, mScrollRange.mWidth, mScrollRange.mHeight};
  }
  void OnDropEnter(const RCPtr<LControl>&) override { Tell("drop enter"); }
  void OnDropOver(const RCPtr<LControl>&, const PointT<double>& point) override {
    Tell("drop over " + std::to_string(int(point.mX)) + " " + std::to_string(int(point.mY)));
  }
  void OnDropLeave(const RCPtr<LControl>&) override { Tell("drop leave"); }
  TFRESULT PerformDrop(const RCPtr<LControl>&) override {
    Tell("drop");
    return kSuccess;
  }
  void OnIdle() override { Tell("idle"); }
  TFRESULT OnRenderBackground(const RCPtr<LRenderer>& renderer) override {
    Tell("background");
    return BoxControl::OnRenderBackground(renderer);
  }

 private:
  static std::string At(const LPointParam& point) {
    return " " + std::to_string(point.mX) + " " + std::to_string(point.mY);
  }
};

// Puts a tree of probes into a window of 400 by 300 pixels.
class ProbeFixture : public ControlFixture {
 protected:
  using Log = ProbeControl::Log;
  static constexpr std::uint32_t kLeft = LMouseButtonParam::kLeft;
  static constexpr std::uint32_t kMiddle = LMouseButtonParam::kMiddle;
  static constexpr std::uint32_t kRight = LMouseButtonParam::kRight;

  // Writes down the notifications of controls, and acts when one is no probe, which acts by itself.
  class Ear : public virtual LNotificationClient {
   public:
    std::function<void()> mAct;

    void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                        const RCPtr<LNotification>& notification) override {
      const RCPtr<LControl> control(sender);
      if (const RCPtr<ProbeControl> probe(control); probe) return probe->Tell(ToUtf8(notification->GetId()));
      ProbeControl::gLog.push_back(ToUtf8(control->GetName()) + " " + ToUtf8(notification->GetId()));
      if (mAct) mAct();
    }
  };

  void TearDown() override {
    ProbeControl::gAct = nullptr;
    mEar->mAct = nullptr;
    mEar->UnregisterAll();
    ControlFixture::TearDown();
    mWindow->mTop = nullptr;
    ProbeControl::gLog.clear();
    ProbeControl::gTexts.clear();
  }
  void MakeWindow(const std::string& children) {
    const std::string skin =
        std::string("<Skin><SubControl Class='Box' Name='main'") + kFill + "><Skin>" + children +
        "</Skin></SubControl><SubControl Class='Box' Name='toolTip' XSizeAbs='9' YSizeAbs='9'/>" +
        "<SubControl Class='Box' Name='contextMenu' XSizeAbs='9' YSizeAbs='9'/></Skin>";
    ASSERT_EQ(Load(SkinDocument(skin)), kSuccess) << mLog.Text();
    mApplication = nullptr;  // One at a time.
    mApplication = MakeRC<ClockApplication>(mFactory);
    mFactory->RegisterControlCreateFunction(u"Box", MakeControl<ProbeControl>);
    mMain = mFactory->CreateControl(u"main", RCPtr<LRootWindow>(mWindow));
    ASSERT_TRUE(mMain);
    mMain->Relayout();
    mWindow->mTop = mMain;
    Forget();
  }
  static std::string Place(int x, int y, int width, int height) {
    return "XPositionAbs='" + std::to_string(x) + "' YPositionAbs='" + std::to_string(y) + "' XSizeAbs='" +
           std::to_string(width) + "' YSizeAbs='" + std::to_string(height) + "' ";
  }
  // By the names on the way down, such as u"a.b"; the main control for an empty one.
  RCPtr<ProbeControl> At(const std::u16string& path) const {
    RCPtr<LControl> control = mMain;
    for (std::size_t from = 0; from < path.size() && control;) {
      const std::size_t to = std::min(path.find(u'.', from), path.size());
      control = control->FindChild(path.substr(from, to - from).c_str());
      from = to + 1;
    }
    return RCPtr<ProbeControl>(control);
  }
  void Listen(const RCPtr<LControl>& control, std::initializer_list<const char16_t*> names) {
    for (const char16_t* name : names) mEar->Register(RCPtr<LNotificationDistributor>(control), name);
  }
  static Log TakeLog() { return std::exchange(ProbeControl::gLog, {}); }
  // What was written down but for the changes of conditions.
  static Log TakeEvents() {
    Log events = TakeLog();
    std::erase_if(events, [](const std::string& event) { return event.ends_with(" conditions"); });
    return events;
  }
  void Forget() {
    TakeLog();
    mWindow->TakeAsked();
    mWindow->TakeInvalid();
  }
  void Wait(double seconds) {
    mApplication->mTime += seconds;
    mApplication->mTicks += static_cast<std::uint32_t>(seconds * 1000 + 0.5);
  }

  const RCPtr<StubWindow> mWindow = MakeRC<StubWindow>();
  const RCPtr<Ear> mEar = MakeRC<Ear>();
};

}  // namespace TF
