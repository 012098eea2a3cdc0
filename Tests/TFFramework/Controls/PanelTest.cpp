#include <string>

#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

constexpr std::uint32_t kF1 = 0x20700000;
constexpr std::uint32_t kTab = 0x20090000;
constexpr std::uint32_t kBackTab = kTab | KeyCode::kShift;

// The panel "p" with "a" and "b", before it "c", behind it "d".
class PanelTest : public BarFixture {
 protected:
  void MakePanel(const std::string& type = "Panel") {
    const auto box = [](const char* name, int tab) {
      return Part("Box", name, Place(0, 0, 9, 9) + "TabStop='" + std::to_string(tab) + "' ");
    };
    MakeControls(Part(type, "p", Place(0, 0, 50, 50) + "TabStop='2' ", box("a", 1) + box("b", 2)) +
                 box("c", 1) + box("d", 3));
  }
  void Focus(const char16_t* name) {
    Find(name)->SetFocus(true);
    ASSERT_EQ(mWindow->mFocus, Find(name));
  }
  // A hot key of the control of that name, F1.
  static void Bind(const char16_t* name) { ProbeControl::gTexts[name][u"LHK.NID_GO"] = u"VKEY_F1"; }
};

TEST_F(PanelTest, TabLeavesAPanelAtItsEnds) {
  struct Case {
    const char16_t* mFrom;
    std::uint32_t mKey;
    const char16_t* mTo;
  };
  const Case cases[] = {{u"p.a", kTab, u"p.b"},     {u"p.b", kTab, u"d"},     {u"c", kTab, u"p.a"},
                        {u"p.b", kBackTab, u"p.a"}, {u"p.a", kBackTab, u"c"}, {u"d", kBackTab, u"p.b"}};
  MakePanel();
  for (const Case& each : cases) {
    Focus(each.mFrom);
    mWindow->Key(each.mKey, false);
    EXPECT_EQ(mWindow->mFocus, Find(each.mTo)) << ToUtf8(each.mFrom) << std::hex << each.mKey;
  }
}

TEST_F(PanelTest, OnlyAPanelBelowAnotherControlEndsItsOrder) {
  MakePanel();
  const auto panel = Find<LPanel>(u"p");
  const RCPtr<LControl> a = Find(u"p.a"), b = Find(u"p.b"), none;
  EXPECT_EQ(panel->GetNextInTabOrder(a, false), b);
  EXPECT_EQ(panel->GetNextInTabOrder(b, false), none);
  EXPECT_EQ(panel->GetNextInTabOrder(b, true), a);
  EXPECT_EQ(panel->GetNextInTabOrder(a, true), none);
  EXPECT_EQ(panel->GetNextInTabOrder(Find(u"c"), false), none);
  panel->SetParent(none);
  EXPECT_EQ(panel->GetNextInTabOrder(b, false), a);
  panel->Destroy();
}

TEST_F(PanelTest, HotKeysInAPanelWorkFromOutside) {
  for (const char* type : {"Panel", "Box"}) {
    Bind(u"b");
    MakePanel(type);
    Listen(Find(u"p.b"), {u"NID_GO"});
    Focus(u"c");
    Forget();
    mWindow->Key(kF1);
    const bool isPanel = std::string(type) == "Panel";
    EXPECT_EQ(TakeEvents(), isPanel ? (Log{"c key", "b NID_GO"}) : Log{"c key"}) << type;
    EXPECT_EQ(mWindow->TakeAsked().empty(), isPanel) << type;
    mEar->UnregisterAll();
  }
}

TEST_F(PanelTest, AHotKeyInAPanelThatIsOutOfUseDoesNothing) {
  Bind(u"b");
  MakePanel();
  Listen(Find(u"p.b"), {u"NID_GO"});
  Focus(u"c");
  for (const bool hides : {true, false}) {
    hides ? Find(u"p")->SetVisible(false) : Find(u"p")->SetEnabled(false);
    Forget();
    mWindow->Key(kF1);
    EXPECT_EQ(TakeEvents(), Log{"c key"});
    Find(u"p")->SetVisible(true);
  }
}

TEST_F(PanelTest, HotKeysReachThroughPanelsInPanels) {
  Bind(u"deep");
  MakeControls(Part("Panel", "outer", Place(0, 0, 90, 90),
                    Part("Panel", "inner", Place(0, 0, 50, 50), Part("Box", "deep", Place(0, 0, 9, 9)))) +
               Part("Box", "c", Place(100, 0, 9, 9)));
  Listen(Find(u"outer.inner.deep"), {u"NID_GO"});
  Focus(u"c");
  Forget();
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), (Log{"c key", "deep NID_GO"}));
  mWindow->Key(kF1 + 0x10000);
  EXPECT_EQ(mWindow->TakeAsked().back(), "key VKEY_F2");
}

TEST_F(PanelTest, APanelWithoutUseForAKeyLeavesItTaken) {
  Bind(u"b");
  MakeControls(Part("Box", "x", Place(0, 0, 90, 90),
                    Part("Panel", "p", Place(0, 0, 9, 9) + "TabStop='-1' ") +
                        Part("Panel", "q", Place(0, 0, 9, 9) + "TabStop='-1' ",
                             Part("Box", "b", Place(0, 0, 9, 9) + "TabStop='-1' "))));
  Listen(Find(u"x.q.b"), {u"NID_GO"});
  Focus(u"x");
  Forget();
  mWindow->Key(kF1);
  EXPECT_EQ(TakeEvents(), Log{"b NID_GO"});
}

TEST_F(PanelTest, AKeyFromInsideGoesOnToSiblingsOfThePanelAndToTheWindow) {
  for (const bool isBound : {true, false}) {
    if (isBound) Bind(u"c");
    MakePanel();
    Listen(Find(u"c"), {u"NID_GO"});
    Focus(u"p.a");
    Forget();
    mWindow->Key(kF1);
    EXPECT_EQ(TakeEvents(), isBound ? (Log{"a key", "c NID_GO"}) : Log{"a key"});
    EXPECT_EQ(mWindow->TakeAsked().empty(), isBound);
    ProbeControl::gTexts.clear();
    mEar->UnregisterAll();
  }
}

TEST_F(PanelTest, APanelScrollsItsContent) {
  MakeControls(Part("Panel", "p", Place(0, 0, 100, 80),
                    ViewBars(10, true) + Part("Box", "high", Place(0, 0, 20, 300) + "LayoutOrder='4' "),
                    "<CreateParam ID='AUTO_CLIENT_EXTENT_Y'>true</CreateParam>"));
  mWindow->Move(10, 10);
  EXPECT_EQ(mWindow->Wheel(LMouseWheelParam::kUp), kSuccess);
  EXPECT_EQ(Find(u"p")->GetScrollOffset().mY, 0);
  EXPECT_EQ(mWindow->Wheel(LMouseWheelParam::kDown), kSuccess);
  EXPECT_EQ(Find(u"p")->GetScrollOffset().mY, 8);
}

TEST_F(PanelTest, WhoHearsOfAHotKeyMayDestroyThePanel) {
  Bind(u"b");
  MakePanel();
  const RCPtr<LControl> panel = Find(u"p");
  const auto hearer = Hear(Find(u"p.b"), u"NID_GO", [&](const auto&) { panel->Destroy(); });
  Focus(u"c");
  mWindow->Key(kF1);
  EXPECT_EQ(hearer->mCount, 1);
  mWindow->Key(kF1);
  EXPECT_EQ(hearer->mCount, 1);
}

}  // namespace
}  // namespace TF
