#include "TFFramework/System/OSWindow.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

#include "TFFramework/ControlBase/CancelArgs.h"
#include "TFFramework/ControlBase/WaitCursor.h"
#include "TFFramework/Notification/Notification.h"
#include "TFFramework/System/WindowPlacement.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/TFFramework/ControlBase/LetterPaint.h"
#include "Tests/TFFramework/System/WindowFixture.h"

namespace TF {
namespace {

using Platform::PixelRect;

class WindowTest : public WindowFixture {
 protected:
  OSWindow& Service() { return *dynamic_cast<OSWindow*>(Root()->GetServices()); }
};

TEST_F(WindowTest, OpensInTheSizeOfTheSkinWhereTheLayoutPutsIt) {
  MakeWindow(
      "XSizeAbs='200' YSizeAbs='100' XPlacementAnchor='0.5' XPositionToControl='Screen' XPositionRel='0.5' "
      "YPlacementAnchor='1' YPositionToControl='Screen' YPositionRel='1'",
      "");
  EXPECT_EQ(Window().mDescription.mClient.mWidth, 200);
  EXPECT_EQ(Window().mDescription.mClient.mHeight, 100);
  EXPECT_EQ(Window().mClient, (PixelRect{400, 700, 200, 100}));
  EXPECT_EQ(Window().mDescription.mTitle, "Company");
  EXPECT_TRUE(Window().mIsVisible);
  EXPECT_EQ(Main()->GetBounds(), (RectT<double>{0, 0, 200, 100}));
  for (const char* word : {"Screen", "Active Window"}) {
    // Nothing is known of windows before.
    End();
    setenv("XDG_CONFIG_HOME", (mFolder.Path() / word).c_str(), 1);
    MakeWindow(std::string("XSizeAbs='200' YSizeAbs='100' XPositionAbs='100' YPositionAbs='70' ") +
                   "XPositionToControl='" + word + "' YPositionToControl='" + word + "'",
               "");
    EXPECT_EQ(Window().mClient, (PixelRect{100, 70, 200, 100})) << word;
  }
}

TEST_F(WindowTest, AFurtherWindowStandsAboveItsParentWhereTheSkinPutsIt) {
  MakeApplication(
      "<SubControl Class='Probe' Name='mainControl' XSizeAbs='400' YSizeAbs='300' XPositionAbs='200' "
      "XPositionToControl='Screen'/><SubControl Class='Dialog' Name='dialog' XSizeAbs='100' YSizeAbs='50' "
      "XPositionToControl='Active Window' XPositionRel='0.5' XPlacementAnchor='0.5' "
      "YPositionToControl='mouse' YPositionAbs='7'/>");
  ASSERT_EQ(mApplication->OpenScreen(), kSuccess);
  Listener().OnMouseMove(At(30, 20));
  EXPECT_EQ(mApplication->OpenChildRootWindow(u"dialog", Root()), kSuccess);
  EXPECT_EQ(Window(1).mDescription.mParent, &Window(0));
  EXPECT_EQ(Window(1).mClient, (PixelRect{350, 27, 100, 50}));
}

TEST_F(WindowTest, AnotherSkinLeavesTheWindowWhereItIs) {
  MakeWindow(
      "XSizeAbs='200' YSizeAbs='100' XPlacementAnchor='0.5' XPositionToControl='Screen' XPositionRel='0.5' "
      "YPositionToControl='Screen' YPositionAbs='50'",
      "");
  Window().mClient = {300, 200, 250, 150};
  Listener().OnResize({250, 150});
  for (const bool restores : {false, true}) {
    WindowProbe::gRestoresFrame = restores;
    mApplication->SetSkin(0);
    EXPECT_EQ(Window().mClient, (PixelRect{300, 200, 250, 150}));
  }
  WindowProbe::gRestoresFrame = false;
}

TEST_F(WindowTest, WithoutItsControlOrAWindowThereIsNoScreen) {
  MakeApplication("<SubControl Class='Probe' Name='other'/>");
  EXPECT_THROW(mApplication->OpenScreen(), std::runtime_error);
  MakeApplication("<SubControl Class='Probe' Name='mainControl'/>");
  mSystem.mRefusesWindows = true;
  EXPECT_TRUE(Failed(mApplication->OpenScreen()));
  EXPECT_EQ(mApplication->GetRootWindows().GetCount(), 0);
}

TEST_F(WindowTest, AControlOfAnUnknownClassEndsTheStartAndLeavesNoWindow) {
  MakeApplication("<SubControl Class='Probe' Name='mainControl'><Skin>" + Box("a", "") +
                  "<SubControl Class='Nobody' Name='n'/></Skin></SubControl>");
  EXPECT_THROW(mApplication->OpenScreen(), std::runtime_error);
  mApplication->Shutdown();
  EXPECT_TRUE(mSystem.mWindows.empty());
}

TEST_F(WindowTest, PaintsWhatChangedAndNothingElse) {
  Child(u"b")->Invalidate({10, 20, 5, 6}, true);
  Root()->InvalidateRect({-50, -50, 60, 60});
  Root()->InvalidateRect({900, 0, 10, 10});
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "mainControl paint", "a paint", "b paint"}));
  EXPECT_EQ(Window().mPresented.size(), 2U);
  std::int32_t area = 0;
  for (const PixelRect& rect : Window().mPresented) area += rect.mWidth * rect.mHeight;
  EXPECT_EQ(area, 5 * 6 + 10 * 10);
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts());
}

TEST_F(WindowTest, AnExposureShowsThePictureAgainAndPaintsNothing) {
  Listener().OnExpose();
  EXPECT_EQ(Window().mPresented, (std::vector<PixelRect>{{0, 0, 400, 300}}));
  EXPECT_EQ(TakeLog(), Texts());
}

TEST_F(WindowTest, OtherThreadsMayMarkWhatIsToBePainted) {
  const RCPtr<LRootWindow> root = Root();
  std::atomic<bool> isMarked = false;
  std::thread other([&] {
    for (std::int32_t x = 0; x < 400; ++x) root->InvalidateRect({x, 0, 1, 300});
    isMarked = true;
  });
  while (!isMarked) mSystem.DispatchPaints();
  other.join();
  mSystem.DispatchPaints();
  Region painted;
  for (const PixelRect& rect : Window().mPresented)
    painted.Add({rect.mX, rect.mY, rect.mWidth, rect.mHeight});
  EXPECT_TRUE(painted.IsRect({0, 0, 400, 300}));
}

TEST_F(WindowTest, APaintThatThrowsIsMadeUpForByTheNext) {
  WindowProbe::gAct = [](WindowProbe&, const std::string& told) {
    if (told == "a paint") throw std::runtime_error("paint");
  };
  Root()->InvalidateAll();
  EXPECT_THROW(mSystem.DispatchPaints(), std::runtime_error);
  WindowProbe::gAct = nullptr;
  TakeLog();
  Child(u"b")->InvalidateFrame();
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "a paint", "b paint"}));
}

TEST_F(WindowTest, APaintInsideAPaintComesAfterIt) {
  bool once = true;
  WindowProbe::gAct = [&](WindowProbe&, const std::string& told) {
    if (told == "a paint" && std::exchange(once, false)) {
      EXPECT_EQ(Service().RedrawNow(), kSuccess);
    }
  };
  Root()->InvalidateAll();
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "a paint", "b paint"}));
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "a paint", "b paint"}));
}

TEST_F(WindowTest, RedrawNowPaintsBeforeItReturnsAndHandsOutNoInput) {
  mSystem.mInput.push_back([] { FAIL(); });
  EXPECT_EQ(Service().RedrawNow(), kSuccess);
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "a paint", "b paint"}));
  mSystem.mInput.clear();
}

// One below the other, with the higher one painted later, and a floating one inside a floating one.
TEST_F(WindowTest, FloatingControlsArePaintedLastOnceAndInTheirOrder) {
  MakeWindow(
      "XSizeAbs='400' YSizeAbs='300'",
      Box("low", "ClipToParent='False' Z_Order='1' XSizeAbs='50' YSizeAbs='50'",
          Box("inner", "ClipToParent='False' Z_Order='2' XPositionAbs='60' XSizeAbs='9' YSizeAbs='9'")) +
          Box("high", "ClipToParent='False' Z_Order='5' XSizeAbs='50' YSizeAbs='50'") +
          Box("panel", "XSizeAbs='20' YSizeAbs='20'",
              Box("tip", "ClipToParent='False' Z_Order='3' XPositionAbs='30' XSizeAbs='9' YSizeAbs='9'")));
  Root()->InvalidateAll();
  mSystem.DispatchPaints();
  EXPECT_EQ(TakeLog(), Texts({"mainControl paint", "panel paint", "low paint", "inner paint", "tip paint",
                              "high paint"}));
}

class LetterControl : public WindowProbe {
 public:
  using WindowProbe::WindowProbe;
  TFRESULT OnRenderBackground(const RCPtr<LRenderer>& renderer) override {
    return PaintLetter(*this, *renderer);
  }
};

TEST_F(WindowTest, WhatFloatsInAScrolledPanelIsSeenWhereTheMouseFindsIt) {
  const auto letter = [](const std::string& name, const std::string& place, const std::string& inner) {
    return "<SubControl Class='Letter' Name='" + name + "' " + place + "><Skin>" + inner +
           "</Skin></SubControl>";
  };
  MakeApplication(letter(
      "mainControl", "XSizeAbs='400' YSizeAbs='300'",
      letter("panel", "XPositionAbs='20' YPositionAbs='10' XSizeAbs='50' YSizeAbs='50'",
             letter("floating",
                    "XPositionAbs='40' YPositionAbs='5' XSizeAbs='30' YSizeAbs='10' ClipToParent='False'",
                    ""))));
  mApplication->GetControlFactory()->RegisterControlCreateFunction(u"Letter", MakeControl<LetterControl>);
  ASSERT_EQ(mApplication->OpenScreen(), kSuccess);
  mSystem.DispatchPaints();
  const auto expectAt = [this](std::int32_t x, char letterThere) {
    const Platform::PixelView& shown = Window().mPixels;
    const auto* const row = shown.mPixels + 15 * shown.mStride / sizeof(std::uint32_t);
    EXPECT_EQ(static_cast<char>(row[x] & 0xFF), letterThere) << x;
    RCPtr<LControl> found;
    PointT<std::int32_t> local;
    Root()->HitTest(found, {x, 15}, local, false);
    EXPECT_EQ(static_cast<char>(found->GetName()[0]), letterThere) << x;
  };
  for (const auto& [x, there] : {std::pair{19, 'm'}, {20, 'p'}, {59, 'p'}, {60, 'f'}, {89, 'f'}, {90, 'm'}})
    expectAt(x, there);
  Child(u"panel")->SetScrollOffset({4, 0});
  mSystem.DispatchPaints();
  for (const auto& [x, there] : {std::pair{55, 'p'}, {56, 'f'}, {85, 'f'}, {86, 'm'}}) expectAt(x, there);
}

TEST_F(WindowTest, ANewSizeLaysOutTheTreeAndPaintsItAnew) {
  Window().mClient = {50, 60, 500, 200};
  Listener().OnResize({500, 200});
  EXPECT_EQ(Main()->GetBounds(), (RectT<double>{0, 0, 500, 200}));
  mSystem.DispatchPaints();
  EXPECT_EQ(Window().mPresented, (std::vector<PixelRect>{{0, 0, 500, 200}}));
  Window().mIsMinimized = true;
  Listener().OnResize({1, 1});
  EXPECT_EQ(Main()->GetBounds().mWidth, 500);
}

TEST_F(WindowTest, TellsTheDisplayTheLimitsOfTheSkinAndCorrectsASizeOnce) {
  MakeWindow("XSizeAbs='400' XMinSizeAbs='200' XMaxSizeAbs='500' YSizeAbs='300' YMinSizeAbs='100'", "");
  EXPECT_EQ(Window().mMinimum, (Platform::PixelSize{200, 100}));
  EXPECT_EQ(Window().mMaximum, (Platform::PixelSize{500, 0}));
  EXPECT_EQ(Window().mCalls, Texts({"limits", "show", "raise"}));
  Window().mCalls.clear();
  for (int i = 0; i < 3; ++i) {
    Window().mClient = {0, 0, 100, 50};
    Listener().OnResize({100, 50});
  }
  EXPECT_EQ(Window().mCalls, Texts({"client rect"}));
  Listener().OnResize({300, 200});
  Listener().OnResize({1, 1});
  EXPECT_EQ(Window().mCalls, Texts({"client rect", "client rect"}));
}

TEST_F(WindowTest, AWindowOfOnePixelStillPaints) {
  Window().mClient = {0, 0, 1, 1};
  Listener().OnResize({1, 1});
  mSystem.DispatchPaints();
  EXPECT_EQ(Window().mPresented, (std::vector<PixelRect>{{0, 0, 1, 1}}));
}

TEST_F(WindowTest, TheFrameOfTheMainWindowAsksTheApplicationAndOthersCloseThemselves) {
  ASSERT_EQ(mApplication->OpenRootWindow(u"dialog"), kSuccess);
  ASSERT_EQ(mSystem.mWindows.size(), 2U);
  Listener(1).OnCloseRequest();
  EXPECT_EQ(mSystem.mWindows.size(), 2U);  // Not inside the event.
  mApplication->ProcessNotifications(true);
  EXPECT_EQ(mSystem.mWindows.size(), 1U);
  mApplication->mExitAllowed = false;
  Listener().OnCloseRequest();
  mApplication->ProcessNotifications(true);
  EXPECT_FALSE(mApplication->IsExitRequested());
  mApplication->mExitAllowed = true;
  Listener().OnCloseRequest();
  mApplication->ProcessNotifications(true);
  EXPECT_TRUE(mApplication->IsExitRequested());
  EXPECT_EQ(mSystem.mWindows.size(), 1U);  // The loop's end closes it.
  EXPECT_EQ(mApplication->Run(), kSuccess);
  EXPECT_TRUE(mSystem.mWindows.empty());
}

TEST_F(WindowTest, ADialogMayRefuseToClose) {
  class Refuser : public virtual LNotificationClient {
   public:
    void OnNotification(const RCPtr<LNotificationDistributor>&,
                        const RCPtr<LNotification>& notification) override {
      if (const RCPtr<LCancelArgs> args = notification->GetData()) args->mCancel = mRefuses;
      ++mHeard;
    }
    bool mRefuses = true;
    int mHeard = 0;
  };
  mApplication->OpenRootWindow(u"dialog");
  const RCPtr<LDialog> dialog = mApplication->GetRootWindows()[1]->GetTopControl();
  const auto refuser = MakeRC<Refuser>();
  refuser->Register(RCPtr<LNotificationDistributor>(dialog), u"NID_DIALOG_CLOSING");
  refuser->Register(RCPtr<LNotificationDistributor>(dialog), u"NID_DIALOG_CLOSED");
  Listener(1).OnCloseRequest();
  mApplication->ProcessNotifications(true);
  EXPECT_EQ(mSystem.mWindows.size(), 2U);
  EXPECT_EQ(refuser->mHeard, 1);
  refuser->mRefuses = false;
  Listener(1).OnCloseRequest();
  EXPECT_EQ(dialog->GetResult(), LDialog::kCancelled);
  mApplication->ProcessNotifications(true);
  EXPECT_EQ(mSystem.mWindows.size(), 1U);
  EXPECT_EQ(refuser->mHeard, 3);
}

TEST_F(WindowTest, AModalWindowKeepsItsParentFromTheUserUntilItEnds) {
  mApplication->OpenChildRootWindow(u"dialog", Root());
  const RCPtr<LRootWindow> dialog = mApplication->GetRootWindows()[1];
  bool wasEnabled = true;
  mSystem.mWaits = {[&] {
                      wasEnabled = Window().mIsEnabled;
                      EXPECT_TRUE(mApplication->TakeCommandLine("late"));
                      Window(0).mCalls.clear();
                      Window(1).mCalls.clear();
                      mSystem.Wake();
                    },
                    [&] {
                      // A later start finds the window, and its text goes nowhere.
                      EXPECT_EQ(Window(0).mCalls, Texts({"raise"}));
                      EXPECT_EQ(Window(1).mCalls, Texts({"raise"}));
                      dialog->RequestEnd(17);
                      mSystem.Wake();
                    }};
  EXPECT_EQ(dialog->GetServices()->RunModal(), 17);
  EXPECT_EQ(mApplication->mSecondInstances, Texts());
  EXPECT_FALSE(wasEnabled);
  EXPECT_TRUE(Window().mIsEnabled);
  EXPECT_EQ(Window().mCalls.back(), "raise");
  EXPECT_EQ(mSystem.mWindows.size(), 1U);
}

TEST_F(WindowTest, AFaultInAModalLoopEndsItAndGivesTheParentBack) {
  mApplication->OpenChildRootWindow(u"dialog", Root());
  const RCPtr<LRootWindow> dialog = mApplication->GetRootWindows()[1];
  mSystem.mInput = {[] { throw std::runtime_error("a fault"); }};
  EXPECT_THROW(dialog->GetServices()->RunModal(), std::runtime_error);
  EXPECT_TRUE(Window().mIsEnabled);
  EXPECT_EQ(mSystem.mWindows.size(), 1U);
}

TEST_F(WindowTest, AWindowWhoseControlsThrowAtTheirEndIsGoneAllTheSame) {
  mApplication->OpenRootWindow(u"dialog");
  const RCPtr<LRootWindow> root = mApplication->GetRootWindows()[1];
  root->SetTopControl(mApplication->GetControlFactory()->CreateControl(u"mainControl", root));
  WindowProbe::gWhenHidden = [&](LControl& control) {
    if (control.GetRootWindow() == root) throw std::runtime_error("a fault");
  };
  root->RequestEnd(0);
  EXPECT_THROW(mApplication->ProcessNotifications(true), std::runtime_error);
  WindowProbe::gWhenHidden = nullptr;
  EXPECT_EQ(mSystem.mWindows.size(), 1U);
  EXPECT_EQ(mApplication->GetRootWindows().GetCount(), 1);
  EXPECT_EQ(root->GetServices(), nullptr);
}

TEST_F(WindowTest, AWaitCursorThatCannotBeginLeavesTheOldOne) {
  WindowProbe::gAct = [](WindowProbe&, const std::string& event) {
    if (event == "a idle") throw std::runtime_error("a fault");
  };
  Child(u"a")->AddIdleUser();
  EXPECT_THROW(LWaitCursor wait(u""), std::runtime_error);
  WindowProbe::gAct = nullptr;
  Child(u"a")->RemoveIdleUser();
  EXPECT_NE(mSystem.mCursors.back(), mSystem.GetSystemCursor(Platform::SystemCursor::kWait));
}

TEST_F(WindowTest, AQuitEndsAModalLoopAndTheMainLoopBehindIt) {
  mApplication->OpenChildRootWindow(u"dialog", Root());
  const RCPtr<LRootWindow> dialog = mApplication->GetRootWindows()[1];
  mSystem.mWaits = {[&] {
    mSystem.mQuitRequest = true;
    mSystem.Wake();
  }};
  EXPECT_EQ(dialog->GetServices()->RunModal(), kModalQuit);
  EXPECT_EQ(mApplication->RunMessageLoop(), 0);
  EXPECT_TRUE(mSystem.mWindows.empty());
}

TEST_F(WindowTest, TheLoopIdlesTheControlsThatWantIt) {
  Child(u"a")->AddIdleUser();
  mSystem.mWaits = {[this] {
    Child(u"a")->RemoveIdleUser();
    mApplication->GetApplicationCenter()->Post(LNotification::Create(kAppExitRequest, nullptr));
    mSystem.Wake();
  }};
  mApplication->Run();
  const Texts log = TakeLog();
  EXPECT_EQ(std::count(log.begin(), log.end(), "a idle"), 2);  // Before the loop and in it.
}

TEST_F(WindowTest, ASkinThatMakesNoSenseStillMakesAWindowThatPaintsAndIsResized) {
  std::string many;
  std::string deep = Box("leaf", "XSizeAbs='5' YSizeAbs='5'");
  for (int i = 0; i < 10000; ++i)
    many += Box("box" + std::to_string(i), "XSizeToControl='Client' XSizeRel='0.5' YSizeAbs='20'");
  for (int i = 0; i < 120; ++i)
    deep = Box("level" + std::to_string(i), "XSizeToControl='Client' XSizeRel='1.0' XSizeAbs='0'", deep);
  struct Case {
    const char* mName;
    std::string mChildren;
    int mLeast;  // Controls that paint, the top one included.
    int mMost;
  };
  const Case cases[] = {
      {"a name twice", Box("a", "XSizeAbs='10'") + Box("a", "XSizeAbs='20'"), 2, 2},
      {"in a circle",
       Box("a", "XPositionToControl='b' XPositionRel='1.0'") +
           Box("b", "XPositionToControl='a' XPositionRel='1.0'"),
       1, 3},
      {"of itself", Box("a", "XSizeToControl='a' XSizeRel='2.0' YPositionToControl='a'"), 1, 3},
      {"no such neighbour", Box("a", "XSizeToControl='nobody' XSizeRel='1.0'"), 1, 3},
      {"sizes of nothing", Box("a", "XSizeAbs='0' YSizeAbs='0'") + Box("b", "XSizeAbs='-50' YSizeAbs='-1'"),
       1, 3},
      {"no numbers",
       Box("a", "XSizeAbs='nan' YSizeAbs='inf' XPositionAbs='-inf' YPositionRel='1e999' XMinSizeAbs='x'"), 1,
       3},
      {"far away", Box("a", "XPositionAbs='1e30' YPositionAbs='-2147483649' XSizeAbs='1e18'"), 1, 3},
      {"many", many, 16, 10001},
      {"deep", deep, 100, 122},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.mName);
    MakeWindow("XSizeAbs='400' YSizeAbs='300'", test.mChildren);
    Listener().OnDisplayChange();
    mSystem.DispatchPaints();
    const Texts log = TakeLog();
    const auto painted = std::count_if(log.begin(), log.end(),
                                       [](const std::string& line) { return line.ends_with(" paint"); });
    EXPECT_GE(painted, test.mLeast);
    EXPECT_LE(painted, test.mMost);
    for (const Platform::PixelSize size : {Platform::PixelSize{1, 1}, {900, 700}}) {
      Window().mClient = {0, 0, size.mWidth, size.mHeight};
      Listener().OnResize(size);
      mSystem.DispatchPaints();
    }
    Click(3, 3);
    EXPECT_EQ(Main()->GetBounds(), (RectT<double>{0, 0, 900, 700}));
  }
}

TEST_F(WindowTest, AtRestTheLoopTakesNothingFromTheHeap) {
  constexpr int kTicksBefore = 5;
  constexpr int kTicks = 15;
  std::optional<AllocationCounter> counter;
  std::int64_t allocations = -1;
  int ticks = 0;
  const auto rest = [&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(34));  // The timer is due behind it.
    if (++ticks == kTicksBefore) counter.emplace();
    if (ticks < kTicks) return;
    allocations = counter->Count();
    mApplication->GetApplicationCenter()->Post(LNotification::Create(kAppExitRequest, nullptr));
    mSystem.Wake();
  };
  mSystem.mWaits.assign(kTicks, rest);
  mApplication->Run();
  EXPECT_EQ(allocations, 0);
}

TEST_F(WindowTest, ALaterStartBringsTheWindowToTheFront) {
  Window().mIsMinimized = true;
  EXPECT_TRUE(mApplication->TakeCommandLine("program -X"));
  EXPECT_TRUE(mApplication->TakeCommandLine(""));
  mSystem.mWaits = {[this] {
    EXPECT_FALSE(Window().mIsMinimized);
    mApplication->GetApplicationCenter()->Post(LNotification::Create(kAppExitRequest, nullptr));
    mSystem.Wake();
  }};
  mApplication->Run();
  EXPECT_EQ(mApplication->mSecondInstances, Texts({"program -X"}));
  EXPECT_FALSE(mApplication->TakeCommandLine("too late"));
}

TEST_F(WindowTest, ComesBackToWhereItWasAsFarAsTheScreenReaches) {
  struct Case {
    PixelRect mLeft;
    PixelRect mWorkArea;
    PixelRect mFound;
  };
  for (const Case& each : {Case{{300, 200, 500, 400}, {0, 0, 1000, 800}, {300, 200, 500, 400}},
                           {{900, 700, 400, 300}, {0, 0, 1000, 800}, {600, 500, 400, 300}},
                           {{-50, -60, 400, 300}, {0, 0, 1000, 800}, {0, 0, 400, 300}},
                           {{10, 10, 900, 700}, {20, 30, 640, 480}, {20, 30, 640, 480}}}) {
    Window().mClient = each.mLeft;
    Listener().OnResize({each.mLeft.mWidth, each.mLeft.mHeight});
    mSystem.mWorkArea = each.mWorkArea;
    MakeWindow("XSizeAbs='400' YSizeAbs='300'", "");
    EXPECT_EQ(Window().mClient, each.mFound);
  }
  Window().mIsMaximized = true;
  Listener().OnResize({2000, 1000});
  MakeWindow("XSizeAbs='400' YSizeAbs='300'", "");
  EXPECT_TRUE(Window().mIsMaximized);
  EXPECT_EQ(Window().mClient, (PixelRect{20, 30, 640, 480}));
}

TEST(WindowPlacementTest, RefusesRecordsThatAreNone) {
  WindowPlacement placement{WindowPlacement::State::kMaximized, {-5, 7, 300, 200}};
  const auto record = placement.Encode();
  const auto read = WindowPlacement::Decode(record);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->mState, WindowPlacement::State::kMaximized);
  EXPECT_EQ(read->mNormal, placement.mNormal);
  EXPECT_FALSE(WindowPlacement::Decode({record.data(), 43}));
  for (const std::size_t byte : {0U, 31U, 35U, 39U, 43U}) {
    auto damaged = record;
    damaged[byte] = 0x7F;
    EXPECT_FALSE(WindowPlacement::Decode(damaged)) << byte;
  }
  placement.mNormal.mWidth = 0;
  EXPECT_FALSE(WindowPlacement::Decode(placement.Encode()));
}

TEST(ResizableTest, FollowsTheLimitsOfTheTopControl) {
  const LayoutLimit none;
  const LayoutLimit fixed{false, u"", 0, 100};
  const LayoutLimit more{false, u"", 0, 200};
  const LayoutLimit named{true, u"Children", 0, 0};
  struct Case {
    LayoutLimit mMinimum;
    LayoutLimit mMaximum;
    bool mIsResizable;
  };
  for (const Case& each : {Case{none, none, true},
                           {fixed, none, true},
                           {fixed, more, true},
                           {fixed, fixed, false},
                           {named, named, false},
                           {fixed, named, true}}) {
    LayoutValues layout;
    for (const LayoutAxis axis : {LayoutAxis::kX, LayoutAxis::kY}) {
      layout.Axis(axis).mMinimum = each.mMinimum;
      layout.Axis(axis).mMaximum = each.mMaximum;
    }
    EXPECT_EQ(IsResizable(layout), each.mIsResizable);
  }
}

TEST_F(WindowTest, CursorsOfSkinsAreShownAndThoseWithoutOneAreTheArrow) {
  EXPECT_EQ(mApplication->GetCursorHandle(u"UI_CURSOR_ARROW"), 100U);
  EXPECT_EQ(mApplication->GetCursorHandle(u"UI_CURSOR_HELP"), 113U);
  for (const char16_t* name : {u"UI_CURSOR_ROTATE", u"UI_CURSOR_DROP_MOVE", u"", u"ui_cursor_arrow"})
    EXPECT_EQ(mApplication->GetCursorHandle(name), 0U);
  mSystem.mCursors.clear();
  {
    const LWaitCursor wait(u"Busy");
    EXPECT_EQ(mSystem.mCursors, (std::vector<Platform::CursorId>{102}));
  }
  Root()->SetCursor(113);
  Root()->SetCursor(113);
  EXPECT_EQ(mSystem.mCursors.back(), 113U);
  EXPECT_EQ(mSystem.mCursors.size(), 3U);
  Root()->SetCursor(0);
  EXPECT_EQ(mSystem.mCursors.back(), 100U);
}

TEST_F(WindowTest, TextsGoToTheStatusBarOfTheFirstWindow) {
  EXPECT_EQ(mApplication->SetStatusText(u"nowhere", true), kFailure);
  EXPECT_EQ(mApplication->RestoreStatusText(false), kFailure);
  MakeWindow("XSizeAbs='400' YSizeAbs='300'",
             "<SubControl Class='Framework.StatusBar' Name='statusBar' XSizeAbs='400' YSizeAbs='20'><Skin>"
             "<SubControl Class='Framework.Label' Name='label1' XSizeAbs='400' /></Skin></SubControl>");
  const RCPtr<LControl> label = Child(u"statusBar")->FindChild(u"label1");
  EXPECT_EQ(mApplication->SetStatusText(u"later", false), kSuccess);
  EXPECT_EQ(label->GetText(), u"");
  mApplication->ProcessNotifications(true);
  EXPECT_EQ(label->GetText(), u"later");
  EXPECT_TRUE(Window().mPresented.empty());
  {
    const LWaitCursor wait(u"Busy");
    EXPECT_EQ(label->GetText(), u"Busy");
    EXPECT_FALSE(Window().mPresented.empty());
  }
  mApplication->ProcessNotifications(true);
  EXPECT_EQ(label->GetText(), u"");
}

TEST_F(WindowTest, FaultsInTheLoopAreShownAndTheLoopGoesOnUntilTheProgramMayEnd) {
  mApplication->mExitAllowed = false;
  mSystem.mInput.push_back([] { throw std::runtime_error("in a handler"); });
  mSystem.mWaits = {[this] { mApplication->mExitAllowed = true; },
                    [this] { mSystem.mInput.push_back([] { throw 5; }); }};
  mApplication->Run();
  ASSERT_EQ(mSystem.mMessages.size(), 2U);
  EXPECT_EQ(mSystem.mMessages[0].mCaption, "Error");
  EXPECT_EQ(mSystem.mMessages[0].mIcon, Platform::MessageIcon::kError);
  EXPECT_TRUE(mSystem.mWindows.empty());
}

}  // namespace
}  // namespace TF
