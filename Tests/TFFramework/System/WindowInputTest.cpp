#include <stdexcept>

#include "Tests/TFFramework/System/WindowFixture.h"

namespace TF {
namespace {

class WindowInputTest : public WindowFixture {};

TEST_F(WindowInputTest, TheMouseGoesToTheControlUnderItOrToWhoHoldsIt) {
  Listener().OnMouseMove(At(10, 20));
  Listener().OnMousePress(At(10, 20));
  Listener().OnMouseMove(At(150, 30));  // Held by "a", which it leaves.
  Listener().OnMouseRelease(At(150, 30));
  EXPECT_EQ(TakeLog(), Texts({"a enter", "a down 10,20", "a leave", "a up 150,30", "b enter"}));
  Click(110, 5);
  EXPECT_EQ(TakeLog(), Texts({"b down 10,5", "b up 10,5", "b click"}));
}

TEST_F(WindowInputTest, APressWhereTheMouseWasNotMovesItThereFirst) {
  Listener().OnMousePress(At(10, 20));
  EXPECT_EQ(TakeLog(), Texts({"a enter", "a down 10,20"}));
}

TEST_F(WindowInputTest, ADoubleClickIsTheSecondPressAndItsRelease) {
  Event press = At(1, 1);
  press.mIsDoubleClick = true;
  Listener().OnMouseMove(At(1, 1));
  Listener().OnMousePress(press);
  Listener().OnMouseRelease(At(1, 1));
  EXPECT_EQ(TakeLog(), Texts({"a enter", "a double 1,1", "a up 1,1", "a click"}));
}

TEST_F(WindowInputTest, WithoutAPressNothingIsReleasedAndInactiveNothingIsPressed) {
  Listener().OnMouseRelease(At(10, 10));
  Window().mHasFocus = false;
  Click(10, 10);
  Listener().OnWheel(Platform::WheelAxis::kVertical, 240, At(10, 10));
  EXPECT_EQ(TakeLog(), Texts());
}

TEST_F(WindowInputTest, OutsideOfTheWindowTheMouseIsNowhere) {
  Listener().OnMouseMove(At(10, 10));
  Listener().OnMouseLeave();
  EXPECT_EQ(TakeLog(), Texts({"a enter", "a leave"}));
  Root()->RepeatHitTest();
  EXPECT_EQ(TakeLog(), Texts());
  // Not over what sticks out of the window either.
  MakeWindow(
      "XSizeAbs='400' YSizeAbs='300'",
      Box("f", "XPositionAbs='-20' YPositionAbs='-20' XSizeAbs='50' YSizeAbs='50' ClipToParent='False'"));
  Listener().OnMouseMove(At(10, 10));
  Listener().OnMouseLeave();
  EXPECT_EQ(TakeLog(), Texts({"f enter", "f leave"}));
}

TEST_F(WindowInputTest, LosingTheFocusTakesTheMouseAndTheFocusAwayAndItComesBack) {
  Child(u"b")->SetFocus(true);
  Listener().OnMousePress(At(10, 10));
  Child(u"b")->SetFocus(true);
  TakeLog();
  Listener().OnFocus(false);
  EXPECT_EQ(TakeLog(), Texts({"a leave"}));
  EXPECT_FALSE(Root()->GetFocusControl());
  EXPECT_EQ(Root()->GetMouseButtons(), 0U);
  Listener().OnMouseRelease(At(10, 10));
  EXPECT_EQ(TakeLog(), Texts());
  Listener().OnFocus(true);
  EXPECT_EQ(Root()->GetFocusControl(), Child(u"b"));
}

TEST_F(WindowInputTest, WhatHadTheFocusBeforeIsKnownAsLongAsItIsThere) {
  Child(u"a")->SetFocus(true);
  Child(u"b")->SetFocus(true);
  EXPECT_EQ(Root()->GetPreviousFocusControl(), Child(u"a"));
  Child(u"a")->Destroy();
  EXPECT_FALSE(Root()->GetPreviousFocusControl());
}

TEST_F(WindowInputTest, TheWheelSendsOneEventForWholeNotches) {
  using enum Platform::WheelAxis;
  struct Turn {
    Platform::WheelAxis mAxis;
    std::int32_t mDelta;
    const char* mEvent;
  };
  Listener().OnMouseMove(At(110, 20));
  TakeLog();
  for (const Turn& turn : {Turn{kVertical, 60, nullptr},
                           {kVertical, 60, "b wheel 1 110,20"},
                           {kVertical, 360, "b wheel 1 110,20"},
                           {kVertical, -119, nullptr},
                           {kVertical, -1, "b wheel 0 110,20"},
                           {kHorizontal, 119, nullptr},
                           {kVertical, 1, nullptr},
                           {kHorizontal, 1, "b wheel 3 110,20"},
                           {kHorizontal, -250, "b wheel 2 110,20"},
                           {kHorizontal, -110, "b wheel 2 110,20"}}) {
    Listener().OnWheel(turn.mAxis, turn.mDelta, At(110, 20));
    EXPECT_EQ(TakeLog(), turn.mEvent ? Texts({turn.mEvent}) : Texts()) << turn.mDelta;
  }
}

TEST_F(WindowInputTest, AWheelThatNobodyThereWantsGoesToTheFocus) {
  const auto turn = [this](std::int32_t x) {
    Listener().OnWheel(Platform::WheelAxis::kVertical, 120, At(x, 20));
  };
  Child(u"b")->SetFocus(true);
  Listener().OnMouseMove(At(10, 20));
  TakeLog();
  turn(10);
  EXPECT_EQ(TakeLog(), Texts({"a wheel 1 10,20"}));
  WindowProbe::gWheelResult = kNothingDone;
  turn(10);
  EXPECT_EQ(TakeLog(), Texts({"a wheel 1 10,20", "mainControl wheel 1 10,20", "b wheel 1 10,20",
                              "mainControl wheel 1 10,20"}));
  WindowProbe::gWheelResult = kSuccess;
  Listener().OnMousePress(At(10, 20));
  TakeLog();
  turn(150);  // Whoever holds the mouse has its wheel, too.
  EXPECT_EQ(TakeLog(), Texts({"a wheel 1 150,20"}));
}

TEST_F(WindowInputTest, KeysAndCharactersGoToTheFocus) {
  using namespace Platform::ModifierBit;
  Child(u"a")->SetFocus(true);
  TakeLog();
  const std::uint32_t leftCtrl = kCtrl | kLeftCtrl;
  const std::uint32_t leftAlt = kAlt | kLeftAlt;
  struct Stroke {
    Platform::KeyEvent mKey;
    const char* mEvent;
  };
  for (const Stroke& stroke : {Stroke{{'A', true, false, kShift}, "a press Shift+VKEY_A"},
                               {{'A', false, false, kShift}, "a key Shift+VKEY_A"},
                               {{0x70, true, true, leftAlt}, "a press Alt+VKEY_F1"},
                               {{0x70, true, false, leftCtrl | leftAlt}, "a press Ctrl+VKEY_F1"},
                               {{0x12, true, false, leftCtrl | leftAlt}, "a press Ctrl+Alt+VKEY_MENU"},
                               {{0, true, false, leftAlt}, "a key Alt+[0]"},
                               {{0, true, false, 0}, nullptr},
                               {{0, false, false, leftAlt}, nullptr}}) {
    Listener().OnKey(stroke.mKey);
    EXPECT_EQ(TakeLog(), stroke.mEvent ? Texts({stroke.mEvent}) : Texts());
  }
  Listener().OnCharacter(u'\u00e4', kShift | kLeftShift);
  Listener().OnCharacter(9, 0);
  Listener().OnCharacter(u'x', kCommand | kLeftCommand);
  EXPECT_EQ(TakeLog(), Texts({"a key Shift+[228]", "a key [9]"}));
  EXPECT_EQ(Root()->GetFocusControl(), Child(u"a"));
}

TEST_F(WindowInputTest, TabMovesTheFocusOnceAndGoesRound) {
  Child(u"a")->SetFocus(true);
  for (const char16_t* name : {u"b", u"a", u"b"}) {
    Listener().OnKey({9, true, false, 0});
    Listener().OnCharacter(9, 0);
    EXPECT_EQ(Root()->GetFocusControl(), Child(name));
  }
}

TEST_F(WindowInputTest, CtrlTabGoesToTheNextWindowAndRoundInTheOnlyOne) {
  using namespace Platform::ModifierBit;
  const auto press = [this](std::uint32_t modifiers) {
    Listener().OnKey({9, true, false, modifiers | kCtrl | kLeftCtrl});
  };
  Child(u"b")->SetFocus(true);
  press(0);
  EXPECT_EQ(Root()->GetFocusControl(), Child(u"a"));
  mApplication->OpenRootWindow(u"dialog");
  for (const std::uint32_t modifiers : {std::uint32_t{0}, kShift | kLeftShift}) {
    Window(1).mHasFocus = false;
    Window(1).mCalls.clear();
    press(modifiers);
    EXPECT_EQ(Window(1).mCalls, Texts({"take focus"}));
  }
  Window(1).mHasFocus = true;
  Window(1).mCalls.clear();
  press(0);
  EXPECT_EQ(Window(1).mCalls, Texts());
}

// A key from the keyboard carries sides that a bound one has not.
TEST_F(WindowInputTest, TheExitKeyAsksForTheEndWhereverTheFocusIs) {
  const auto press = [this] {
    using namespace Platform::ModifierBit;
    Listener().OnKey({0x73, true, false, kAlt | kRightAlt});
    Listener().OnKey({0x73, false, false, kAlt | kRightAlt});
    mApplication->ProcessNotifications(true);
  };
  Child(u"b")->SetFocus(true);
  mApplication->mExitAllowed = false;
  press();
  EXPECT_FALSE(mApplication->IsExitRequested());
  mApplication->mExitAllowed = true;
  // A new tree does not take the application's key away.
  Root()->SetTopControlByName(u"mainControl");
  press();
  EXPECT_TRUE(mApplication->IsExitRequested());
}

TEST_F(WindowInputTest, TheExitKeyMayBeGivenToSomethingElse) {
  const std::string window =
      "<SubControl Class='Probe' Name='mainControl'><Skin>" + Box("a", "") + "</Skin></SubControl>";
  MakeApplication(window);
  mApplication->GetHotKeys()->Bind(u"NID_OTHER", KeyCodeFromName(u"Alt+VKEY_F4"));
  ASSERT_EQ(mApplication->OpenScreen(), kSuccess);
  Listener().OnFocus(true);
  Listener().OnKey({0x73, true, false, Platform::ModifierBit::kAlt});
  mApplication->ProcessNotifications(true);
  EXPECT_FALSE(mApplication->IsExitRequested());
}

TEST_F(WindowInputTest, TipsShowOverTheirOwnerUntilAPressOrAKey) {
  Child(u"a")->SetToolTipText(u"tip of a");
  Listener().OnMouseMove(At(10, 10));
  Listener().OnMouseMove(At(11, 10));
  Listener().OnMousePress(At(11, 10));
  Listener().OnMouseRelease(At(11, 10));
  Listener().OnMouseMove(At(12, 10));
  Listener().OnMouseMove(At(110, 10));
  Texts tips;
  for (const std::string& event : TakeLog()) {
    if (event.ends_with("tip")) tips.push_back(event);
  }
  EXPECT_EQ(tips, Texts({"a tip", "a no tip", "a no tip", "a no tip"}));
}

TEST_F(WindowInputTest, AControlMayGoInsideWhateverItIsTold) {
  for (const char* event :
       {"a enter", "a down 10,10", "a up 10,10", "a click", "a leave", "a press VKEY_A"}) {
    TearDown();
    SetUp();
    WindowProbe::gAct = [event](WindowProbe& probe, const std::string& told) {
      if (told == event) probe.Destroy();
    };
    Child(u"a")->SetFocus(true);
    Click(10, 10);
    Listener().OnKey({'A', true, false, 0});
    Listener().OnMouseMove(At(110, 10));
    WindowProbe::gAct = nullptr;
    EXPECT_FALSE(Child(u"a")) << event;
    TakeLog();
    Click(110, 10);
    EXPECT_EQ(TakeLog(), Texts({"b down 10,10", "b up 10,10", "b click"})) << event;
  }
}

TEST_F(WindowInputTest, TheWholeTreeMayBeReplacedInsideAHandler) {
  WindowProbe::gAct = [this](WindowProbe&, const std::string& told) {
    if (told == "a click") Root()->SetTopControlByName(u"mainControl");
  };
  const RCPtr<LControl> before = Main();
  Click(10, 10);
  EXPECT_TRUE(before && !(before == Main()));
  TakeLog();
  Click(110, 10);
  EXPECT_EQ(TakeLog().back(), "b click");
}

TEST_F(WindowInputTest, OneTreeAtATimeHangsInTheWindow) {
  const RCPtr<LControl> first = Main();
  EXPECT_EQ(Root()->SetTopControl(first), kNothingDone);
  EXPECT_EQ(Main(), first);
  EXPECT_TRUE(Child(u"a"));
  // What goes may set another one.
  RCPtr<LControl> between = mApplication->CreateControl(u"mainControl");
  const RCPtr<LControl> last = mApplication->CreateControl(u"mainControl");
  WindowProbe::gWhenHidden = [&](LControl& hidden) {
    if (&hidden == first.Get()) Root()->SetTopControl(between);
  };
  Root()->SetTopControl(last);
  WindowProbe::gWhenHidden = nullptr;
  EXPECT_EQ(Main(), last);
  EXPECT_EQ(between->GetChildCount(), 0);
  EXPECT_FALSE(between->GetRootWindow());
  // One that takes itself out of use leaves nothing behind.
  last->Destroy();
  EXPECT_FALSE(Main());
}

TEST_F(WindowInputTest, TheKeysOfATreeGoWithIt) {
  const KeyCode key = KeyCodeFromName(u"Ctrl+VKEY_F1");
  const auto isBound = [&] { return mApplication->GetHotKeys()->HasKey(key); };
  for (const bool destroysItself : {false, true}) {
    WindowProbe::gStrings = {{u"GHK.NID_GO", u"Ctrl+VKEY_F1"}};
    Root()->SetTopControlByName(u"mainControl");
    WindowProbe::gStrings.clear();
    EXPECT_TRUE(isBound());
    if (destroysItself)
      Main()->Destroy();
    else
      EXPECT_EQ(Root()->SetTopControlByName(u""), kSuccess);
    EXPECT_FALSE(isBound());
    EXPECT_FALSE(Main());
    EXPECT_TRUE(mApplication->GetHotKeys()->HasKey(KeyCodeFromName(u"Alt+VKEY_F4")));
  }
}

TEST_F(WindowInputTest, AHandlerThatThrowsLeavesTheWindowUsable) {
  for (const char* event : {"a enter", "a down 10,10", "a up 10,10", "a click", "a leave"}) {
    TearDown();
    SetUp();
    WindowProbe::gAct = [event](WindowProbe&, const std::string& told) {
      if (told == event) throw std::runtime_error("handler");
    };
    const auto act = [this] {
      Click(10, 10);
      Listener().OnMouseMove(At(110, 10));
    };
    EXPECT_THROW(act(), std::runtime_error) << event;
    WindowProbe::gAct = nullptr;
    Listener().OnMouseRelease(At(10, 10));
    TakeLog();
    Click(110, 10);
    EXPECT_EQ(TakeLog().back(), "b click") << event;
  }
}

TEST_F(WindowInputTest, ANewTreeHearsNothingOfWhatTheOldOneHeld) {
  Listener().OnMousePress(At(10, 10));
  TakeLog();
  Root()->SetTopControl(nullptr);
  for (const std::string& event : TakeLog()) EXPECT_FALSE(event.ends_with("leave")) << event;
  EXPECT_FALSE(Root()->GetFocusControl());
  EXPECT_FALSE(Root()->GetHoverControl());
  Listener().OnMouseRelease(At(10, 10));
  Listener().OnKey({'A', true, false, 0});
  Window().mListener.OnPaint();
  EXPECT_EQ(TakeLog(), Texts());
}

TEST_F(WindowInputTest, KeysThatWereQueuedAreDeliveredWithTheNextPass) {
  Child(u"a")->SetFocus(true);
  TakeLog();
  Root()->QueueKey(MakeRC<LKeyParam>(KeyCodeFromVirtualKey('Q', true, false, 0)));
  EXPECT_EQ(TakeLog(), Texts());
  mApplication->ProcessNotifications(false);
  EXPECT_EQ(TakeLog(), Texts({"a press VKEY_Q"}));
}

}  // namespace
}  // namespace TF
