#include <stdexcept>
#include <string>

#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {
namespace {

constexpr std::uint32_t kTab = 0x20090000;
constexpr std::uint32_t kShiftTab = 0x22090000;
constexpr std::uint32_t kCtrlTab = 0x21090000;

class ControlFocusTest : public ProbeFixture {
 protected:
  static std::string Stop(const std::string& name, int tabStop, const std::string& more = "",
                          const std::string& children = "") {
    return Box(name, Place(0, 0, 20, 20) + "TabStop='" + std::to_string(tabStop) + "' " + more, children);
  }
  std::string Focus() const { return mWindow->mFocus ? ToUtf8(mWindow->mFocus->GetName()) : "none"; }
  // All marks agree with the window.
  void ExpectConsistent(const RCPtr<LControl>& control) {
    const bool has = control == mWindow->mFocus;
    bool contains = false;
    for (RCPtr<LControl> at = mWindow->mFocus ? mWindow->mFocus->GetParent() : nullptr; at;
         at = RCPtr<LControl>(at->GetParent())) {
      contains = contains || at == control;
    }
    const std::uint32_t marks =
        (has ? ControlCondition::kHasFocus : 0) | (contains ? ControlCondition::kContainsFocus : 0);
    EXPECT_EQ(control->HasFocus(), has) << ToUtf8(control->GetName());
    EXPECT_EQ(control->ContainsFocus(), contains) << ToUtf8(control->GetName());
    EXPECT_EQ(control->GetConditions()->mCurrent & 3U, marks) << ToUtf8(control->GetName());
    for (std::int32_t i = 0; i < control->GetChildCount(); ++i) ExpectConsistent(control->GetChild(i));
  }
  void ExpectFocus(const char* name, int line) {
    EXPECT_EQ(Focus(), name) << "line " << line;
    ExpectConsistent(mMain);
  }
};

TEST_F(ControlFocusTest, TabWalksTheTabOrderAndLeavesItAtItsEnds) {
  struct Case {
    const char16_t* mStart;
    std::uint32_t mKey;
    bool mWrap;
    const char* mFocus;
    bool mLeaves;
  };
  const Case cases[] = {
      {u"a", kTab, false, "c1", false},         {u"c.c1", kTab, false, "c2", false},
      {u"c.c2", kTab, false, "d", false},       {u"d", kTab, false, "d", true},
      {u"d", kTab, true, "a", false},           {u"a", kShiftTab, false, "a", true},
      {u"a", kShiftTab, true, "d", false},      {u"d", kShiftTab, false, "c2", false},
      {u"c.c2", kShiftTab, false, "c1", false}, {u"c.c1", kShiftTab, false, "a", false},
      {u"c.c1", kCtrlTab, false, "d", false},   {u"c.c2", kTab, true, "c1", false},
  };
  // The order is a, c (c1, c2), d; the others can not have the focus.
  MakeWindow(Stop("d", 9) + Stop("hidden", 2, "IsVisible='False'") + Stop("disabled", 3) + Stop("a", 0) +
             Stop("negative", -4) + Box("flat", Place(0, 0, 20, 0) + "TabStop='4'") +
             Stop("c", 5, "", Stop("c2", 1) + Stop("c1", 0)) + Stop("shut", -1, "", Stop("s1", 0)));
  At(u"disabled")->SetEnabled(false);
  for (const Case& entry : cases) {
    ASSERT_EQ(At(entry.mStart)->SetFocus(true), kSuccess);
    mWindow->TakeAsked();
    mWindow->Key(entry.mKey, entry.mWrap);
    const std::string label = ToUtf8(entry.mStart) + " " + std::to_string(entry.mKey);
    EXPECT_EQ(Focus(), entry.mFocus) << label;
    EXPECT_EQ(mWindow->TakeAsked() == Log{"tab"}, entry.mLeaves) << label;
    ExpectConsistent(mMain);
  }
}

TEST_F(ControlFocusTest, WithOneUsableChildTabKeepsTheFocus) {
  MakeWindow(Stop("a", 0) + Stop("b", -1) + Stop("c", 1, "IsVisible='False'"));
  At(u"a")->SetFocus(true);
  mWindow->Key(kTab);
  mWindow->Key(kShiftTab);
  ExpectFocus("a", __LINE__);
  EXPECT_EQ(mMain->GetNextInTabOrder(At(u"a"), false), At(u"b"));
  EXPECT_FALSE(mMain->GetNextInTabOrder(mMain, false));
  EXPECT_FALSE(mMain->GetNextInTabOrder(nullptr, true));
  At(u"b")->SetVisible(false);
  EXPECT_EQ(mMain->GetNextInTabOrder(At(u"a"), true), At(u"a"));
  mMain->SetEnabled(false);
  EXPECT_FALSE(mMain->GetNextInTabOrder(At(u"a"), false));
}

TEST_F(ControlFocusTest, FocusGoesToTheControlThatCanHaveIt) {
  MakeWindow(Stop("panel", 0, "", Stop("p1", 2) + Stop("p2", 1)) + Stop("plain", 1) +
             Stop("shut", -1, "", Stop("s1", 0) + Stop("root", 0)) + Stop("bare", 2, "", Stop("b1", -1)));
  At(u"shut.root")->mFocusRoot = true;
  struct Case {
    const char16_t* mAsked;
    bool mForward;
    const char* mFocus;
  };
  const Case cases[] = {{u"", true, "p2"},       {u"plain", true, "plain"},
                        {u"", false, "plain"},   {u"panel", false, "p1"},
                        {u"panel", true, "p1"},  {u"panel.p2", true, "p2"},
                        {u"bare", true, "bare"}, {u"bare.b1", true, "bare"},
                        {u"shut", true, "bare"}, {u"shut.root", true, "root"},
                        {u"panel", true, "p2"},  {u"shut.s1", true, "p2"}};
  for (const Case& entry : cases) {
    EXPECT_EQ(At(entry.mAsked)->SetFocus(entry.mForward), kSuccess) << ToUtf8(entry.mAsked);
    ExpectFocus(entry.mFocus, static_cast<int>(&entry - cases));
  }
  EXPECT_FALSE(At(u"shut")->HasFocusableChild());
  EXPECT_TRUE(At(u"panel")->HasFocusableChild());
  EXPECT_FALSE(At(u"panel")->CanTakeFocus());
  EXPECT_TRUE(At(u"bare")->CanTakeFocus());
}

TEST_F(ControlFocusTest, FocusLeavesWhatCanNoLongerHaveIt) {
  MakeWindow(Stop("a", 0) + Stop("b", 1) + Stop("c", 2, "", Stop("c1", 0) + Stop("c2", 1)));
  At(u"b")->SetFocus(true);
  At(u"b")->SetVisible(false);
  ExpectFocus("a", __LINE__);
  At(u"a")->SetEnabled(false);
  ExpectFocus("c1", __LINE__);
  At(u"c.c1")->SetNotFocusable(true);
  ExpectFocus("c2", __LINE__);
  EXPECT_EQ(At(u"c.c1")->GetLayout()->TabStop, -1);
  At(u"c.c2")->Layout().Axis(LayoutAxis::kX).mSize.mAbs = 0;
  At(u"c.c2")->Relayout();
  ExpectFocus("c", __LINE__);
  At(u"c.c1")->SetNotFocusable(false);
  ExpectFocus("c1", __LINE__);
  EXPECT_EQ(At(u"c.c1")->GetLayout()->TabStop, 1);
  At(u"c")->Destroy();
  ExpectFocus("main", __LINE__);
  At(u"a")->SetEnabled(true);
  ExpectFocus("a", __LINE__);
  At(u"a")->Layout().TabStop = -5;
  At(u"a")->SetNotFocusable(false);
  EXPECT_EQ(At(u"a")->GetLayout()->TabStop, 5);
  At(u"a")->SetParent(nullptr);
  EXPECT_EQ(Focus(), "none");
}

TEST_F(ControlFocusTest, ADetachedControlTakesItsFocusMarksAlong) {
  MakeWindow(Stop("a", 0, "", Stop("a1", 0, "", Stop("deep", 0))));
  const auto a = At(u"a"), deep = At(u"a.a1.deep");
  deep->SetFocus(true);
  a->SetParent(nullptr);
  ExpectFocus("none", __LINE__);
  ExpectConsistent(a);
  a->Destroy();
}

TEST_F(ControlFocusTest, FocusIsRefusedByWhoKeepsIt) {
  MakeWindow(Stop("a", 0) + Stop("b", 1));
  At(u"a")->SetFocus(true);
  At(u"a")->mKeepsFocus = true;
  EXPECT_EQ(At(u"b")->SetFocus(true), kFailure);
  ExpectFocus("a", __LINE__);
  EXPECT_EQ(At(u"a")->SetFocus(true), kSuccess);
  mMain->SetEnabled(false);
  EXPECT_EQ(At(u"b")->SetFocus(true), kFailure);
}

TEST_F(ControlFocusTest, AControlAboveTheFocusTakesItOverWhenTheFocusCanNotStay) {
  MakeWindow(Stop("a", 0, "", Stop("a1", 0, "", Stop("deep", 0))));
  At(u"a.a1.deep")->SetFocus(true);
  Listen(At(u"a"), {u"NID_HAS_FOCUS_CONDITION_CHANGE", u"NID_CONTAINS_FOCUS_CONDITION_CHANGE"});
  Listen(mMain, {u"NID_CONTAINS_FOCUS_CONDITION_CHANGE"});
  Forget();
  At(u"a.a1")->SetEnabled(false);
  ExpectFocus("a", __LINE__);
  EXPECT_EQ(TakeEvents(), (Log{"a NID_HAS_FOCUS_CONDITION_CHANGE", "a NID_CONTAINS_FOCUS_CONDITION_CHANGE"}));
}

// At each change of the focus the control that is told of it goes, or throws.
TEST_F(ControlFocusTest, TheTreeStaysUsableWhateverIsDoneInAHandler) {
  for (const bool throws : {false, true}) {
    for (const char16_t* victim : {u"a", u"b", u"b.b1", u""}) {
      MakeWindow(Stop("a", 0) + Stop("b", 1, "", Stop("b1", 0) + Stop("b2", 1)) + Stop("c", 2));
      const auto control = At(victim);
      if (control != mMain) At(u"a")->SetFocus(true);
      Listen(control, {u"NID_CONDITION_CHANGE"});
      bool isDone = false;
      ProbeControl::gAct = [&](ProbeControl& told, const std::string& event) {
        if (!event.ends_with("NID_CONDITION_CHANGE") || std::exchange(isDone, true)) return;
        if (throws) throw std::runtime_error("heard");
        told.Destroy();
      };
      const auto next = At(u"b.b1");
      try {
        next->SetFocus(true);
      } catch (const std::runtime_error&) {
        EXPECT_TRUE(throws);
      }
      ProbeControl::gAct = nullptr;
      if (control != mMain || throws) {
        EXPECT_EQ(At(u"c")->SetFocus(true), kSuccess);
        ExpectFocus("c", __LINE__);
      } else {
        EXPECT_EQ(Focus(), "none");
      }
      mMain->Destroy();
      mEar->UnregisterAll();
    }
  }
}

}  // namespace
}  // namespace TF
