#include <stdexcept>
#include <string>

#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {
namespace {

class ControlInputTest : public ProbeFixture {
 protected:
  // Two boxes beside each other in the main control; the first has one inside.
  void MakeBoxes() {
    MakeWindow(Box("a", Place(0, 0, 100, 100), Box("a1", Place(50, 0, 50, 100))) +
               Box("b", Place(100, 0, 100, 100)));
  }
  static RCPtr<LMouseButtonParam> Button(std::uint32_t button, std::uint32_t held = 0,
                                         bool isDouble = false) {
    return MakeRC<LMouseButtonParam>(1, 1, 0U, 0U, button, isDouble, held);
  }
};

TEST_F(ControlInputTest, AClickIsAPressAndAReleaseOnTheSameControl) {
  MakeBoxes();
  const auto a = At(u"a");
  Listen(a, {u"NID_MOUSE_DOWN", u"NID_MOUSE_UP", u"NID_LEFT_CLICK", u"NID_MIDDLE_CLICK", u"NID_RIGHT_CLICK",
             u"NID_CAPTURE_CONDITION_CHANGE", u"NID_LEFT_DRAG_CONDITION_CHANGE",
             u"NID_MIDDLE_DRAG_CONDITION_CHANGE", u"NID_RIGHT_DRAG_CONDITION_CHANGE"});
  for (const auto& [button, name, upper] :
       {std::tuple(kLeft, "left", "LEFT"), std::tuple(kMiddle, "middle", "MIDDLE"),
        std::tuple(kRight, "right", "RIGHT")}) {
    mWindow->Move(10, 20);
    Forget();
    mWindow->Press(button);
    mWindow->LetGo(button);
    const std::string n = name, u = upper, drag = "a NID_" + u + "_DRAG_CONDITION_CHANGE";
    const Log expected = {"a " + n + " down" + (button == kLeft ? " 10 20" : ""),
                          "a NID_MOUSE_DOWN",
                          "a NID_CAPTURE_CONDITION_CHANGE",
                          drag,
                          "a " + n + " up",
                          "a NID_MOUSE_UP",
                          "a NID_CAPTURE_CONDITION_CHANGE",
                          drag,
                          "a " + n + " click",
                          "a NID_" + u + "_CLICK"};
    EXPECT_EQ(TakeEvents(), expected);
    EXPECT_FALSE(a->HasCapture());
    EXPECT_FALSE(mWindow->mCapture);
  }
}

TEST_F(ControlInputTest, WhatCountsAsAClick) {
  struct Case {
    const char* mWhat;
    int mMoveX;  // Where the mouse lets go; the press is at 10.
    DragMode mMode;
    bool mIsDisabled;
    bool mIsClick;
  };
  const Case cases[] = {
      {"in place", 10, DragMode::kNone, false, true},
      {"moved inside", 30, DragMode::kNone, false, true},
      {"moved outside", 150, DragMode::kNone, false, false},
      {"over a child", 60, DragMode::kNone, false, false},
      {"dragged", 30, DragMode::kMove, false, false},
      {"with a mode but not moved", 10, DragMode::kMove, false, true},
      {"disabled meanwhile", 10, DragMode::kNone, true, false},
  };
  for (const Case& entry : cases) {
    MakeBoxes();
    At(u"a")->mWantedMode = entry.mMode;
    mWindow->Move(10, 20);
    mWindow->Press();
    if (entry.mMoveX != 10) mWindow->Move(entry.mMoveX, 20);
    if (entry.mIsDisabled) mMain->SetEnabled(false);
    TakeLog();
    mWindow->LetGo();
    const Log events = TakeEvents();
    EXPECT_EQ(std::count(events.begin(), events.end(), "a left click"), entry.mIsClick) << entry.mWhat;
    EXPECT_FALSE(At(u"a")->HasCapture()) << entry.mWhat;
    mMain->Destroy();
  }
}

TEST_F(ControlInputTest, EventsThatAreNoneAreRefused) {
  MakeBoxes();
  const auto a = At(u"a");
  EXPECT_EQ(a->MouseDown(nullptr), kInvalidArgument);
  EXPECT_EQ(a->MouseUp(nullptr), kInvalidArgument);
  EXPECT_EQ(a->MouseWheel(nullptr), -1);
  for (const std::uint32_t button : {0U, 3U, 8U}) {
    EXPECT_EQ(a->MouseDown(Button(button)), kInvalidArgument);
    EXPECT_EQ(a->MouseUp(Button(button)), kInvalidArgument);
  }
  mMain->SetEnabled(false);
  TakeLog();
  EXPECT_EQ(a->MouseDown(Button(kLeft, kLeft)), kNothingDone);
  EXPECT_EQ(a->MouseUp(Button(kLeft)), kNothingDone);
  EXPECT_EQ(a->CaptureMouse(0, 0, 0), kNothingDone);
  EXPECT_EQ(a->ReleaseMouse(), kNothingDone);
  EXPECT_TRUE(TakeLog().empty());
}

TEST_F(ControlInputTest, CaptureLastsUntilTheLastButtonIsUp) {
  MakeBoxes();
  const auto a = At(u"a");
  mWindow->Move(10, 10);
  mWindow->Press(kLeft);
  mWindow->Press(kRight);
  TakeLog();
  mWindow->LetGo(kLeft);
  EXPECT_TRUE(a->HasCapture());
  mWindow->LetGo(kRight);
  EXPECT_FALSE(a->HasCapture());
  EXPECT_EQ(TakeEvents(), (Log{"a left up", "a left click", "a right up"}));
  EXPECT_EQ(a->GetConditions()->mCurrent & 0x3F8U, 0U);
}

TEST_F(ControlInputTest, APressWhoseButtonIsUpAlreadyTakesNoCapture) {
  MakeBoxes();
  mWindow->mMouse = {{10, 10}};
  EXPECT_EQ(At(u"a")->MouseDown(Button(kLeft, kLeft)), kSuccess);
  EXPECT_FALSE(At(u"a")->HasCapture());
  EXPECT_EQ(At(u"a")->CaptureMouse(0, 0, 0), kSuccess);
  EXPECT_EQ(At(u"a")->CaptureMouse(0, 0, 0), kNothingDone);
  EXPECT_EQ(mWindow->mCapture, At(u"a"));
  mWindow->mButtons = kLeft;
  EXPECT_EQ(At(u"b")->CaptureMouse(kLeft, 0, 0), kSuccess);
  EXPECT_FALSE(At(u"a")->HasCapture());
  EXPECT_EQ(mWindow->mCapture, At(u"b"));
}

TEST_F(ControlInputTest, APressGivesTheFocusToWhoCanHaveIt) {
  MakeWindow(Box("a", Place(0, 0, 100, 100), Box("label", Place(0, 0, 50, 50) + "TabStop='-1'")) +
             Box("shut", Place(100, 0, 100, 100) + "TabStop='-1'", Box("in", Place(0, 0, 50, 50))) +
             Box("c", Place(200, 0, 100, 100)));
  struct Case {
    int mX;
    const char16_t* mFocus;
  };
  for (const Case& entry :
       {Case{10, u"a"}, Case{210, u"c"}, Case{110, u"c"}, Case{60, u"a"}, Case{160, u"a"}}) {
    mWindow->Click(entry.mX, 10);
    EXPECT_EQ(mWindow->mFocus, At(entry.mFocus)) << entry.mX;
  }
}

TEST_F(ControlInputTest, HoverIsTheControlsAndAllAboveIt) {
  MakeBoxes();
  const auto hovers = [this](const char16_t* path) {
    const std::uint32_t bits = At(path)->GetConditions()->mCurrent;
    return std::string((bits & ControlCondition::kHover) != 0 ? "h" : "-") +
           ((bits & ControlCondition::kHoverBelow) != 0 ? "b" : "-");
  };
  struct Case {
    int mX;
    const char* mMain;
    const char* mA;
    const char* mA1;
  };
  const Case cases[] = {{10, "-b", "hb", "--"}, {60, "-b", "-b", "hb"},  {110, "-b", "--", "--"},
                        {60, "-b", "-b", "hb"}, {300, "hb", "--", "--"}, {900, "--", "--", "--"}};
  for (const Case& entry : cases) {
    mWindow->Move(entry.mX, 10);
    EXPECT_EQ(hovers(u"") + hovers(u"a") + hovers(u"a.a1"), std::string(entry.mMain) + entry.mA + entry.mA1)
        << entry.mX;
  }
  mWindow->Move(60, 10);
  At(u"a")->SetVisible(false);
  EXPECT_EQ(mWindow->mHover, mMain);
  EXPECT_EQ(hovers(u"a"), "--");
  At(u"a")->SetVisible(true);
  mWindow->Move(60, 10);
  At(u"a.a1")->Destroy();
  EXPECT_EQ(hovers(u"a"), "hb");
}

TEST_F(ControlInputTest, AWheelClimbsUntilSomebodyTakesIt) {
  MakeWindow(Box("under", Place(0, 0, 300, 300), Box("inner", Place(0, 0, 300, 300))) +
             Box("a", Place(0, 0, 50, 50) + "Z_Order='1'",
                 Box("f", Place(100, 100, 50, 50) + "ClipToParent='False' Z_Order='2'",
                     Box("f1", Place(0, 0, 50, 50)))));
  mWindow->Move(110, 110);
  TakeLog();
  EXPECT_EQ(mWindow->Wheel(LMouseWheelParam::kDown), kNothingDone);
  EXPECT_EQ(TakeEvents(), (Log{"f1 wheel", "f wheel", "inner wheel", "under wheel", "main wheel"}));
  At(u"under")->mTakesWheel = true;
  EXPECT_EQ(mWindow->Wheel(LMouseWheelParam::kHorizontalUp), kSuccess);
  EXPECT_EQ(TakeEvents(), (Log{"f1 horizontal wheel", "f horizontal wheel", "inner horizontal wheel",
                               "under horizontal wheel"}));
  for (const char16_t* path : {u"", u"a", u"a.f", u"a.f.f1"}) EXPECT_FALSE(At(path)->IsHitExcluded());
  // Who scrolls by it finds the mouse where it is.
  ProbeControl::gAct = [this](ProbeControl& control, const std::string& event) {
    if (event == "under wheel") control.SetScrollOffset({0, 1});
  };
  mWindow->Wheel(LMouseWheelParam::kDown);
  EXPECT_EQ(mWindow->mHover, At(u"a.f.f1"));
  ProbeControl::gAct = [](ProbeControl&, const std::string& event) {
    if (event == "inner wheel") throw std::runtime_error(event);
  };
  EXPECT_THROW(mWindow->Wheel(LMouseWheelParam::kUp), std::runtime_error);
  EXPECT_FALSE(At(u"a.f")->IsHitExcluded());
}

TEST_F(ControlInputTest, WhoTakesTheMouseHasItWhenTheOneBeforeIsTold) {
  MakeBoxes();
  const auto a = At(u"a"), b = At(u"b");
  for (const bool goes : {false, true}) {
    a->CaptureMouse(0, 0, 0);
    bool had = false;
    ProbeControl::gAct = [&](ProbeControl& control, const std::string& event) {
      if (event != "a conditions" || control.HasCapture()) return;
      had = b->HasCapture();
      if (goes) b->Destroy();
    };
    b->CaptureMouse(0, 0, 0);
    ProbeControl::gAct = nullptr;
    EXPECT_TRUE(had);
    EXPECT_EQ(mWindow->mCapture == b, !goes);
  }
}

TEST_F(ControlInputTest, WhatLeavesTheWindowIsForgottenByItWithEverythingBelow) {
  for (const bool bySkin : {false, true}) {
    MakeBoxes();
    const auto a = At(u"a"), inner = At(u"a.a1");
    mWindow->Move(60, 10);
    inner->SetFocus(true);
    mWindow->Press();
    EXPECT_EQ(mWindow->mHover, inner);
    EXPECT_EQ(mWindow->mCapture, inner);
    if (bySkin) {
      const auto descriptor =
          mFactory->CopyDescriptor(mMain->GetDescriptor(), mMain->GetDescriptor()->mLayout, u"main");
      descriptor->mSubControls.RemoveItems(0, 1);
      EXPECT_EQ(mMain->ApplyDescriptor(descriptor), kSuccess);
    } else {
      a->SetParent(nullptr);
    }
    EXPECT_FALSE(a->GetParent());
    EXPECT_FALSE(mWindow->mCapture);
    EXPECT_TRUE(!mWindow->mHover || mWindow->mHover == mMain);
    EXPECT_FALSE(mWindow->mFocus == inner);
    EXPECT_TRUE(bySkin || (inner->GetConditions()->mCurrent & 0x3FFU) == 0);
    mWindow->mButtons = 0;
    a->Destroy();
    mMain->Destroy();
  }
}

TEST_F(ControlInputTest, AToolTipIsMadeFromTheSkinWhenThereIsAText) {
  MakeBoxes();
  const auto a = At(u"a");
  a->ShowToolTip(true);
  EXPECT_FALSE(a->FindChild(u"toolTip"));
  a->SetToolTipText(u"help");
  a->ShowToolTip(true);
  const auto tip = a->FindChild(u"toolTip");
  ASSERT_TRUE(tip);
  EXPECT_EQ(tip->GetText(), u"help");
  EXPECT_TRUE(tip->IsShown(true));
  a->ShowToolTip(false);
  EXPECT_FALSE(tip->IsShown(true));
  a->ShowToolTip(true);
  EXPECT_TRUE(tip->IsShown(true));
  EXPECT_EQ(a->FindChild(u"toolTip"), tip);
}

TEST_F(ControlInputTest, ARightClickOpensTheContextMenuHidden) {
  MakeBoxes();
  mWindow->Click(10, 10, kRight);
  EXPECT_FALSE(At(u"a")->FindChild(u"contextMenu"));
  At(u"a")->mContextMenu = MakeRC<LMenuDescriptor>();
  ProbeControl::gAct = [this](ProbeControl&, const std::string& event) {
    if (event == "a menu") {
      EXPECT_FALSE(At(u"a.contextMenu")->IsShown(false));
    }
  };
  TakeLog();
  mWindow->Click(10, 10, kRight);
  const Log events = TakeEvents();
  EXPECT_EQ(std::count(events.begin(), events.end(), "a menu"), 1);
  EXPECT_TRUE(At(u"a")->FindChild(u"contextMenu"));
}

// Runs a long sequence once for each event in it; the control that is told of that event goes, or throws.
TEST_F(ControlInputTest, AControlThatGoesOrThrowsInItsOwnHandlerHarmsNothing) {
  const auto sequence = [this](const auto& step) {
    for (const std::uint32_t button : {kLeft, kRight}) {
      step([&] { mWindow->Move(60, 10); });
      step([&] { mWindow->Press(button); });
      step([&] { mWindow->Move(70, 40); });
      step([&] { mWindow->Idle(); });
      step([&] { mWindow->LetGo(button); });
      step([&] { mWindow->Wheel(LMouseWheelParam::kDown); });
    }
    step([&] { mWindow->Key(0x20410000); });
    step([&] { mWindow->Move(120, 10); });
  };
  std::size_t count = 1;
  for (const bool throws : {false, true}) {
    for (std::size_t at = 0; at < count; ++at) {
      MakeBoxes();
      for (const char16_t* path : {u"a", u"a.a1"}) {
        Listen(At(path), {u"NID_CONDITION_CHANGE", u"NID_MOUSE_DOWN", u"NID_MOUSE_UP", u"NID_MOUSE_MOVE",
                          u"NID_LEFT_CLICK", u"NID_RIGHT_CLICK", u"NID_LEFT_DRAG_CONDITION_CHANGE"});
        At(path)->mContextMenu = MakeRC<LMenuDescriptor>();
        At(path)->mWantedMode = DragMode::kCarry;
        At(path)->AddIdleUser();
      }
      At(u"b")->mTakesDrops = true;
      TakeLog();
      std::size_t seen = 0;
      std::string told;
      ProbeControl::gAct = [&](ProbeControl& control, const std::string& event) {
        if (seen++ != at || control.GetName() == u"main" || control.GetName() == u"b") return;
        told = event;
        if (throws) throw std::runtime_error(event);
        control.Destroy();
        EXPECT_FALSE(control.GetParent());
      };
      sequence([&](const auto& event) {
        try {
          event();
        } catch (const std::runtime_error&) {
          EXPECT_TRUE(throws);
        }
      });
      count = std::max(count, seen);
      ProbeControl::gAct = nullptr;
      SCOPED_TRACE((throws ? "throws at " : "goes at ") + told);
      EXPECT_FALSE(mWindow->mCapture);
      // The rest of the tree goes on.
      mWindow->Move(300, 200);
      TakeLog();
      mWindow->Click(150, 50);
      const Log events = TakeEvents();
      EXPECT_EQ(std::count(events.begin(), events.end(), "b left click"), 1);
      EXPECT_EQ(mWindow->mFocus, At(u"b"));
      for (const char16_t* path : {u"a", u"a.a1"}) {
        if (!At(path)) continue;
        EXPECT_EQ(At(path)->GetConditions()->mCurrent & 0x3FFU, 0U) << ToUtf8(path);
        EXPECT_TRUE(At(path)->GetClipToParent()) << ToUtf8(path);
      }
      mEar->UnregisterAll();
      mMain->Destroy();
    }
  }
  EXPECT_GT(count, 30U);
}

TEST_F(ControlInputTest, AHandlerThatThrowsWhileChildrenGoLeavesNoUserOfTheIdleTime) {
  MakeBoxes();
  const auto a = At(u"a");
  mMain->DestroyChildLater(At(u"b"));
  mMain->DestroyChildLater(a);
  EXPECT_EQ(At(u"")->mIdleRefCount, 1);
  a->SetVisible(true);
  ProbeControl::gAct = [](ProbeControl&, const std::string& event) {
    if (event == "a conditions") throw std::runtime_error(event);
  };
  EXPECT_THROW(mWindow->Idle(), std::runtime_error);
  ProbeControl::gAct = nullptr;
  mWindow->Idle();
  EXPECT_EQ(mMain->GetChildCount(), 0);
  EXPECT_EQ(At(u"")->mIdleRefCount, 0);
}

}  // namespace
}  // namespace TF
