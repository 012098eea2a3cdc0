#include <stdexcept>
#include <string>

#include "Tests/TFFramework/ControlBase/ProbeControl.h"

namespace TF {
namespace {

constexpr std::uint32_t kF1 = 0x20700000;
constexpr std::uint32_t kTabKey = 0x20090000;

class ControlKeysTest : public ProbeFixture {
 protected:
  static void Bind(const char16_t* control, const char16_t* key, const char16_t* notification) {
    ProbeControl::gTexts[control][String(u"LHK.") + notification] = key;
  }
  // main holds box, and box the children of that name and tab order; the first has the focus.
  void MakeRow(std::initializer_list<std::pair<const char*, int>> children) {
    std::string row;
    for (const auto& [name, tabStop] : children) {
      row += Box(name, Place(0, 0, 9, 9) + "TabStop='" + std::to_string(tabStop) + "'");
    }
    MakeWindow(Box("box", Place(0, 0, 99, 99), row));
    mWindow->mFocus = mMain->FindChild(u"box")->FindChild(FromUtf8(children.begin()->first));
    for (const auto& [name, tabStop] : children) {
      Listen(mMain->FindChild(u"box")->FindChild(FromUtf8(name)), {u"NID_GO"});
    }
    Listen(mMain->FindChild(u"box"), {u"NID_GO"});
  }
};

TEST_F(ControlKeysTest, AKeyClimbsFromTheFocusUntilItIsTaken) {
  MakeRow({{"a", 0}, {"b", 1}});
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), Log{"a key"});
  EXPECT_EQ(mWindow->TakeAsked(), Log{"key VKEY_F1"});
  At(u"box.a")->mTakesKeys = true;
  mWindow->Key(kF1);
  EXPECT_TRUE(mWindow->TakeAsked().empty());
  mMain->SetEnabled(false);
  TakeLog();
  mWindow->Key(kF1);
  EXPECT_TRUE(TakeLog().empty());
}

TEST_F(ControlKeysTest, OneNotificationMayHaveManyKeys) {
  Bind(u"b", u"VKEY_F1", u"1.NID_GO");
  Bind(u"b", u"VKEY_F2", u"2.NID_GO");
  MakeRow({{"a", 0}, {"b", 1}});
  for (const std::uint32_t key : {kF1, kF1 + 0x10000}) {
    TakeLog();
    mWindow->Key(key);
    EXPECT_EQ(TakeEvents(), (Log{"a key", "b NID_GO"}));
  }
}

TEST_F(ControlKeysTest, OnlyThePressOfTheTabKeyMovesTheFocus) {
  struct Case {
    std::uint32_t mKey;
    bool mWantsTab;
    const char16_t* mFocus;
    const char* mAsked;
  };
  const Case cases[] = {{kTabKey, false, u"box.b", ""},       {0x00090000, false, u"box.a", "key"},
                        {0x00000009, false, u"box.a", "key"}, {0xA0090000, false, u"box.a", "key"},
                        {kTabKey, true, u"box.a", ""},        {kF1, true, u"box.a", "key"}};
  for (const Case& entry : cases) {
    MakeRow({{"a", 0}, {"b", 1}});
    At(u"box.a")->SetFocus(true);
    At(u"box.a")->mWantsTab = entry.mWantsTab;
    mWindow->TakeAsked();
    mWindow->Key(entry.mKey);
    EXPECT_EQ(mWindow->mFocus, At(entry.mFocus)) << std::hex << entry.mKey;
    const Log asked = mWindow->TakeAsked();
    EXPECT_EQ(asked.empty() ? "" : asked.front().substr(0, 3), entry.mAsked) << std::hex << entry.mKey;
    mMain->Destroy();
  }
}

TEST_F(ControlKeysTest, HotKeysMatch) {
  struct Case {
    const char16_t* mBound;
    std::uint32_t mKey;
    bool mMatches;
  };
  const Case cases[] = {
      {u"VKEY_F1", kF1, true},
      {u"VKEY_F1", kF1 | KeyCode::kShift, false},
      {u"Alt+VKEY_F4", 0x24730000, true},
      {u"Alt+VKEY_F4", 0x04730000, false},  // Its release.
      {u"Alt+VKEY_F4", 0x20730000, false},
      {u"[65]", 65, true},
      {u"[65]", 65 | KeyCode::kShift, true},
      {u"[65]", 65 | KeyCode::kCtrl, true},
      {u"[65]", 65 | KeyCode::kAlt, false},
      {u"[65]", 66, false},
      {u"Alt+[65]", 65 | KeyCode::kAlt | KeyCode::kShift, true},
      {u"[65]", 0x20410000, false},
      {u"no key", 0x20000000, false},
  };
  for (const Case& entry : cases) {
    Bind(u"b", entry.mBound, u"NID_GO");
    MakeRow({{"a", 0}, {"b", 1}});
    mWindow->Key(entry.mKey);
    const Log expected = entry.mMatches ? Log{"a key", "b NID_GO"} : Log{"a key"};
    EXPECT_EQ(TakeEvents(), expected) << ToUtf8(entry.mBound) << " " << std::hex << entry.mKey;
    EXPECT_EQ(mWindow->TakeAsked().empty(), entry.mMatches);
    mMain->Destroy();
    mEar->UnregisterAll();
  }
}

TEST_F(ControlKeysTest, ASiblingBeforeTheSenderInTheTabOrderComesFirst) {
  struct Case {
    std::vector<const char16_t*> mBound;
    const char16_t* mFocus;
    const char* mTaker;
  };
  // Tab order: n (not focusable), a, b, c, d.
  const Case cases[] = {
      {{u"a", u"b", u"d"}, u"box.c", "b"},
      {{u"a", u"d"}, u"box.c", "a"},
      {{u"d"}, u"box.c", "d"},
      {{u"b", u"d"}, u"box.a", "d"},
      {{u"b", u"c"}, u"box.a", "c"},
      {{u"n", u"d"}, u"box.a", "d"},
      {{u"n"}, u"box.a", "n"},
      {{u"a"}, u"box.a", ""},
      {{u"box"}, u"box.a", ""},  // The key has passed through it.
  };
  for (const Case& entry : cases) {
    ProbeControl::gTexts.clear();
    for (const char16_t* bound : entry.mBound) Bind(bound, u"VKEY_F1", u"NID_GO");
    MakeRow({{"d", 4}, {"a", 1}, {"c", 3}, {"n", -1}, {"b", 2}});
    mWindow->mFocus = At(entry.mFocus);
    mWindow->Key(kF1);
    Log events = TakeEvents();
    events.erase(events.begin());
    const std::string taker = entry.mTaker;
    EXPECT_EQ(events, taker.empty() ? Log() : Log{taker + " NID_GO"}) << taker;
    mMain->Destroy();
    mEar->UnregisterAll();
  }
}

TEST_F(ControlKeysTest, AHotKeyOfAHiddenOrDisabledControlIsNone) {
  Bind(u"b", u"VKEY_F1", u"NID_GO");
  MakeRow({{"a", 0}, {"b", 1}});
  At(u"box.b")->SetVisible(false);
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), Log{"a key"});
  At(u"box.b")->SetVisible(true);
  At(u"box.b")->SetEnabled(false);
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), Log{"a key"});
}

// The hot key goes first to who listens to the control that has the focus.
TEST_F(ControlKeysTest, AHotKeyOfAChildIsAskedBeforeTheControlItself) {
  Bind(u"b", u"VKEY_F1", u"NID_GO");
  MakeRow({{"a", 0}, {"b", 1}});
  mWindow->mFocus = At(u"box");
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), Log{"b NID_GO"});
}

TEST_F(ControlKeysTest, AReceiverOfAHotKeyMayTakeAnyControlAway) {
  for (const char16_t* victim : {u"box.a", u"box.b", u"box.c", u"box", u""}) {
    ProbeControl::gTexts.clear();
    for (const char16_t* name : {u"b", u"c"}) Bind(name, u"VKEY_F1", u"NID_GO");
    MakeRow({{"a", 0}, {"b", 1}, {"c", 2}});
    RCPtr<LControl> gone = At(victim);
    ProbeControl::gAct = [&](ProbeControl&, const std::string& event) {
      if (event == "a key") At(u"box.c")->Destroy();
      if (event.ends_with("NID_GO")) gone->Destroy();
    };
    mWindow->Key(kF1);
    ProbeControl::gAct = nullptr;
    EXPECT_EQ(TakeEvents(), (Log{"a key", "b NID_GO"})) << ToUtf8(victim);
    EXPECT_FALSE(gone->GetParent());
    mMain->Destroy();
    mEar->UnregisterAll();
  }
}

}  // namespace
}  // namespace TF
