#include "TFFramework/Controls/MainMenu.h"

#include <string>
#include <utility>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/Controls/FrameworkControls.h"
#include "TFFramework/Renderer/Renderer.h"
#include "Tests/TFFramework/Controls/MenuSkin.h"

namespace TF {
namespace {

class TestBar : public Touchable<LMainMenu> {
 public:
  TestBar(const RCPtr<LControl>& parent, const String& name) : Touchable(parent, name) {
    const auto found = ProbeControl::gTexts.find(name);
    if (found != ProbeControl::gTexts.end()) mStringSection = MakeRC<LStringTable>(found->second);
  }
  using LMainMenu::mFixedMenuCount;
  using LMainMenu::mLastFocus;
  using LMainMenu::mTemplateSeen;
};

// May be what edit commands act on, and says how items are to be shown.
class Field : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;
  bool mIsTarget = true;

  bool IsEditTarget() override { return mIsTarget; }
  TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>& menu, std::int32_t index, const String& identifier,
                          LMenuItemState& state) override {
    EXPECT_EQ(menu->GetItem(index)->mIdentifier, identifier);
    if (identifier == u"NID_b") return kNothingDone;
    state.mChecked = !state.mChecked;
    state.mText = state.mText + u"!";
    return kSuccess;
  }
};

// A bar at the top of a window of 400 by 300, and two fields below.
class MainMenuTest : public MenuFixture {
 protected:
  using Texts = LStringTable::Strings;

  static inline const Texts kTwoMenus = {
      {u"CONTEXT_MENU0.00.NID_a", u"a"}, {u"CONTEXT_MENU0.01.NID_b", u"b"}, {u"CONTEXT_MENU1.00.NID_c", u"c"},
      {u"CONTEXT_MENU1.01.NID_d", u"d"}, {u"MENU_LABEL.00", u"File"},       {u"MENU_LABEL.01", u"Edit"},
  };

  void RegisterMore() override {
    MenuFixture::RegisterMore();
    mFactory->RegisterControlCreateFunction(u"MainMenu", MakeControl<TestBar>);
    mFactory->RegisterControlCreateFunction(u"Field", MakeControl<Field>);
    mFactory->RegisterControlCreateFunction(u"Other", MakeControl<TestCombo>);
  }
  static std::string Template(int x = 5, int width = 50) {
    return TestMenu("templateMenu", Place(x, 0, width, 24));
  }
  // The skin of everything, with these parts of the bar.
  static std::string Parts(const std::string& barParts) {
    return Part("Field", "frame", Place(0, 0, 400, 300) + "TabStop='0'",
                Part("MainMenu", "bar", Place(0, 0, 400, 24) + "TabStop='0'", barParts) +
                    Part("Field", "field", Place(0, 250, 100, 20) + "TabStop='1'") +
                    Part("Field", "other", Place(200, 250, 100, 20) + "TabStop='2'"));
  }
  void MakeBar(const Texts& texts, const std::string& barParts = Template()) {
    mWindow->ProcessSize({400, 300});
    ProbeControl::gTexts[u"bar"] = texts;
    MakeControls(Parts(barParts));
  }
  // Another skin, with these parts of the bar.
  void ChangeSkin(const std::string& barParts) {
    const std::string skin = "<Skin>" + Part("Box", "main", kFill, Parts(barParts)) + "</Skin>";
    ASSERT_EQ(LoadMore(SkinDocument(skin)), kSuccess);
    mFactory->SetCurrentSkin(static_cast<std::int32_t>(mFactory->GetSkinCount()) - 1);
    ASSERT_EQ(mFactory->ApplySkin(mMain), kSuccess);
  }
  RCPtr<TestBar> Bar() const { return Find<TestBar>(u"frame.bar"); }
  RCPtr<Field> At(const char16_t* name) const { return Find<Field>(std::u16string(u"frame.") + name); }
  RCPtr<TestCombo> Menu(const char16_t* name) const { return Bar()->FindChild(name); }
  RCPtr<TestPopup> PopupOf(const char16_t* name) const { return RCPtr<TestPopup>(Menu(name)->GetPopup()); }
  // "File@5(a,b) Edit@55(c,d)".
  static std::string Describe(const LMainMenu& bar) {
    std::string text;
    for (std::int32_t child = 0; child < bar.GetChildCount(); ++child) {
      const RCPtr<LComboMenu> menu(bar.GetChild(child));
      const RCPtr<LMenuDescriptor> items = menu ? menu->GetPopup()->GetMenu() : nullptr;
      if (!menu) continue;
      text += (text.empty() ? "" : " ") + ToUtf8(bar.GetMenuLabel(bar.FindMenu(menu->GetName()))) + "@" +
              std::to_string(int(menu->GetBounds().mX)) + "(";
      for (std::int32_t index = 0; items && index < items->GetItemCount(); ++index)
        text += (index > 0 ? "," : "") + ToUtf8(items->GetItem(index)->mText);
      text += ")";
    }
    return text;
  }
  std::string Describe() const { return Describe(*Bar()); }
  // What the window's queue delivers under a name.
  RCPtr<Hearer> HearWindow(const char16_t* name, Hearer::Act act = nullptr) const {
    const auto hearer = MakeRC<Hearer>(std::move(act));
    hearer->Register(RCPtr<LNotificationDistributor>(mWindow), name);
    mHearers.push_back(hearer);
    return hearer;
  }
  void TearDown() override {
    for (const RCPtr<Hearer>& hearer : mHearers) hearer->UnregisterAll();
    MenuFixture::TearDown();
  }

  mutable std::vector<RCPtr<Hearer>> mHearers;
};

TEST_F(MainMenuTest, TextsGiveAMenuForEachLabelOrNone) {
  struct Case {
    Texts mTexts;
    const char* mMenus;
  };
  const Case cases[] = {
      {{}, ""},
      {kTwoMenus, "File@5(a,b) Edit@55(c,d)"},
      {{{u"MENU_LABEL.00", u"File"}}, ""},
      {{{u"CONTEXT_MENU0.00.NID_a", u"a"}}, ""},
      {{{u"MENU_LABEL.00", u"File"}, {u"MENU_LABEL.01", u"Edit"}, {u"CONTEXT_MENU0.00.NID_a", u"a"}}, ""},
      {{{u"MENU_LABEL.00", u"File"}, {u"CONTEXT_MENU.00.NID_a", u"a"}}, "File@5(a)"},
      // Gaps on both sides; a menu without items keeps no place.
      {{{u"MENU_LABEL.00", u"File"},
        {u"MENU_LABEL.02", u"Help"},
        {u"CONTEXT_MENU0.00.NID_a", u"a"},
        {u"CONTEXT_MENU2.00.NID_b", u"b"}},
       "File@5(a) Help@55(b)"},
      {{{u"MENU_LABEL.01", u"File"}, {u"CONTEXT_MENU1.00.NID_a", u"a"}}, "File@5(a)"},
      {{{u"MENU_LABEL.00", u"File"}, {u"CONTEXT_MENU0.sub.00.NID_a", u"a"}}, ""},
      // The later one of two counts, of items the earlier one.
      {{{u"MENU_LABEL.0", u"no"},
        {u"MENU_LABEL.00", u"File"},
        {u"CONTEXT_MENU0.0.NID_a", u"a"},
        {u"CONTEXT_MENU0.00.NID_b", u"b"}},
       "File@5(a)"},
      // Numbers that nobody can mean.
      {{{u"MENU_LABEL.00", u"File"}, {u"MENU_LABEL.2147483647", u"x"}, {u"CONTEXT_MENU0.00.NID_a", u"a"}},
       ""},
      {{{u"MENU_LABEL.00", u"File"},
        {u"MENU_LABEL.99999999999999999999", u"x"},
        {u"CONTEXT_MENU0.00.NID_a", u"a"},
        {u"CONTEXT_MENU99999999999999999999.00.NID_b", u"b"}},
       ""},
      {{{u"MENU_LABEL.00", u"File"},
        {u"CONTEXT_MENU0.00.NID_a", u"a"},
        {u"CONTEXT_MENU4000000000.00.NID_b", u"b"}},
       "File@5(a)"},
  };
  for (const Case& each : cases) {
    MakeBar(each.mTexts);
    EXPECT_EQ(Describe(), each.mMenus) << &each - cases;
    EXPECT_FALSE(Bar()->FindChild(u"templateMenu"));
  }
}

TEST_F(MainMenuTest, MenusBelowMenusOpenAsDeepAsTheyGo) {
  Texts texts = {{u"MENU_LABEL.00", u"File"}, {u"CONTEXT_MENU0.00.l0.", u"0"}};
  for (int level = 0; level < 200; ++level) {
    const std::string key = "CONTEXT_MENU0.l" + std::to_string(level) + ".0";
    texts[FromUtf8(key + "0.NID_" + std::to_string(level))] = u"a";
    texts[FromUtf8(key + "1.l" + std::to_string(level + 1) + ".")] = u"b";
  }
  MakeBar(texts);
  EXPECT_EQ(Describe(), "File@5(0)");
  mWindow->Click(10, 10);
  RCPtr<LPopupMenu> popup = PopupOf(u"menu0");
  std::string shown;
  for (int level = 0; popup && level < 200; ++level) {
    shown = Show(RCPtr<TestPopup>(popup));
    popup->OpenSubmenu(level == 0 ? 0 : 1);
    popup = popup->GetSubmenu();
  }
  EXPECT_FALSE(popup);
  EXPECT_EQ(shown, "a -1");
  mWindow->Click(10, 200);
  mWindow->Idle();
  EXPECT_EQ(Show(PopupOf(u"menu0")), "closed");
}

TEST_F(MainMenuTest, MenusOfTheSkinStandBeforeThoseOfTheTexts) {
  struct Case {
    std::string mParts;
    const char* mMenus;
    std::int32_t mFixed;
    bool mTemplate;
  };
  const std::string fixed = TestMenu("help", Place(20, 0, 40, 24)) + Part("Box", "line", Place(0, 0, 5, 5));
  const Case cases[] = {
      {Template() + fixed, "@20() File@60(a,b) Edit@110(c,d)", 1, true},
      {fixed, "@20() File@60(a,b) Edit@100(c,d)", 1, false},
      {TestMenu("menu1", Place(20, 0, 40, 24)) + Template(), "Edit@20(c,d) File@60(a,b)", 1, true},
      {Part("Box", "menu0", Place(0, 0, 5, 5)) + Template(), "Edit@5(c,d)", 0, true},
      {Part("Box", "line", Place(0, 0, 5, 5)), "", 0, false}};
  for (const Case& each : cases) {
    MakeBar(kTwoMenus, each.mParts);
    EXPECT_EQ(Describe(), each.mMenus) << &each - cases;
    EXPECT_EQ(Bar()->mFixedMenuCount, each.mFixed) << &each - cases;
    EXPECT_EQ(Bar()->mTemplateSeen, each.mTemplate) << &each - cases;
  }
  EXPECT_EQ(Bar()->AddMenu(0, u"x", u"X", MakeMenu("a")), kFailure);
}

TEST_F(MainMenuTest, AMenuIsMadeOnceForItsName) {
  MakeBar({}, Template() + Part("Box", "line", Place(0, 0, 5, 5)));
  EXPECT_EQ(Bar()->GetMenuCount(), 0);
  const RCPtr<LMenuDescriptor> items = MakeMenu("ab");
  EXPECT_EQ(Bar()->AddMenu(-1, u"one", u"One", items), kSuccess);
  EXPECT_EQ(Bar()->AddMenu(77, u"two", u"Two", items), kSuccess);
  EXPECT_EQ(Bar()->AddMenu(2, u"one", u"First", MakeMenu("c")), kSuccess);
  items->AddItem(-1, u"late", u"L", true, false);
  EXPECT_EQ(Describe(), "First@5(c) Two@55(a,b)");
  EXPECT_EQ(Bar()->GetMenuCount(), 2);
  EXPECT_EQ(Bar()->FindMenu(u"two"), 1);
  for (const char16_t* name : {u"", u"line", u"templateMenu"}) EXPECT_EQ(Bar()->FindMenu(name), -1);
  for (const std::int32_t index : {-1, 2}) EXPECT_TRUE(Bar()->GetMenuLabel(index).IsEmpty());
  EXPECT_EQ(Bar()->AddMenu(0, u"line", u"x", items), kFailure);
  EXPECT_EQ(Bar()->AddMenu(0, u"x", u"x", nullptr), kInvalidArgument);
  EXPECT_EQ(Describe(), "First@5(c) Two@55(a,b)");
  // Those behind a new one move on.
  EXPECT_EQ(Bar()->AddMenu(1, u"middle", u"Middle", MakeMenu("d")), kSuccess);
  EXPECT_EQ(Describe(), "First@5(c) Two@105(a,b) Middle@55(d)");
  EXPECT_EQ(Bar()->FindMenu(u"middle"), 1);
  EXPECT_EQ(Bar()->FindMenu(u"two"), 2);
  EXPECT_EQ(Bar()->GetMenuLabel(1), u"Middle");
}

TEST_F(MainMenuTest, LabelsAndItemsOutliveASkin) {
  struct Case {
    std::string mParts;
    const char* mMenus;
    bool mStays = true;  // The same control goes on.
  };
  const std::string help = TestMenu("help", Place(20, 0, 40, 24));
  const std::string more = TestMenu("more", Place(90, 0, 30, 24));
  std::string others = Template(10, 60);
  others.replace(others.find("Combo"), 5, "Other");
  const Case cases[] = {
      {Template(10, 60), "File@10(a,b) Changed@70(z) More@130(m)"},
      {help + Template(10, 60), "@20() File@60(a,b) Changed@120(z) More@180(m)"},
      {help, "@20() File@60(a,b) Changed@100(z) More@140(m)"},
      {"", "File@5(a,b) Changed@55(z) More@105(m)"},
      {others, "File@10(a,b) Changed@70(z) More@130(m)", false},
      {more + Template(), "More@90(m) File@120(a,b) Changed@170(z)"},
  };
  for (const Case& each : cases) {
    MakeBar(kTwoMenus);
    Bar()->AddMenu(2, u"more", u"More", MakeMenu("m"));
    Bar()->AddMenu(1, u"menu1", u"Changed", MakeMenu("z"));
    const RCPtr<TestCombo> before = Menu(u"menu1");
    ChangeSkin(each.mParts);
    EXPECT_EQ(Describe(), each.mMenus) << &each - cases;
    EXPECT_EQ(before == Menu(u"menu1"), each.mStays) << &each - cases;
    // And another one on top, which has no menu of its own.
    ChangeSkin(Template());
    const bool wasFixed = each.mParts.find(more) != std::string::npos;
    EXPECT_EQ(Describe(), wasFixed ? "File@5(a,b) Changed@55(z)" : "File@5(a,b) Changed@55(z) More@105(m)");
  }
  const RCPtr<Hearer> heard = HearWindow(u"NID_z");
  mWindow->Click(60, 10);
  mWindow->Click(60, 35);
  mWindow->ProcessKeyQueue(true);
  EXPECT_EQ(heard->mCount, 1);
  // What the program has taken away does not come back.
  Menu(u"menu0")->Destroy();
  ChangeSkin(Template());
  EXPECT_EQ(Describe(), "Changed@5(z)");
}

TEST_F(MainMenuTest, AChosenItemComesWithTheNextPassOfTheWindow) {
  MakeBar(kTwoMenus);
  Bar()->AddMenu(2, u"late", u"Late", MakeMenu("xyz"));
  struct Case {
    int mX;
    const char16_t* mName;
    std::int32_t mIndex;
  };
  for (const Case& each : {Case{10, u"NID_b", 1}, Case{60, u"NID_c", 0}, Case{110, u"NID_z", 2}}) {
    std::int32_t index = -1;
    const RCPtr<Hearer> heard = HearWindow(each.mName, [&](const RCPtr<LNotification>& notification) {
      const RCPtr<LMenuActivationParam> chosen(notification->GetData());
      ASSERT_TRUE(chosen);
      index = chosen->mIndex;
    });
    mWindow->Click(each.mX, 10);
    mWindow->Click(each.mX, 24 + kRow * each.mIndex + 10);
    EXPECT_EQ(heard->mCount, 0);
    mWindow->ProcessKeyQueue(true);
    EXPECT_EQ(heard->mCount, 1);
    EXPECT_EQ(index, each.mIndex);
    mWindow->ProcessKeyQueue(true);
    EXPECT_EQ(heard->mCount, 1);
  }
}

TEST_F(MainMenuTest, TheFocusComesBackBeforeAnItemIsHeard) {
  MakeBar(kTwoMenus);
  for (const char16_t* name : {u"field", u"other"}) {
    ASSERT_EQ(At(name)->SetFocus(true), kSuccess);
    mWindow->Click(10, 10);
    EXPECT_TRUE(Bar()->ContainsFocus());
    EXPECT_FALSE(At(name)->HasFocus());
    // By way of the neighbour.
    mWindow->Move(60, 10);
    mWindow->Click(60, 35);
    EXPECT_TRUE(At(name)->HasFocus());
    EXPECT_FALSE(Bar()->ContainsFocus());
    EXPECT_EQ(Show(PopupOf(u"menu1")), "closed");
  }
}

TEST_F(MainMenuTest, EditCommandsGoToWhatHadTheFocus) {
  MakeBar(kTwoMenus);
  At(u"field")->SetFocus(true);
  mWindow->Click(10, 10);
  struct Case {
    bool mField, mFrame;
    const char16_t* mTarget;
  };
  for (const Case& each : {Case{true, true, u"field"}, Case{true, false, u"field"},
                           Case{false, true, u"frame"}, Case{false, false, u""}}) {
    At(u"field")->mIsTarget = each.mField;
    Find<Field>(u"frame")->mIsTarget = each.mFrame;
    // As the command asks it: from the popup, which has the focus.
    ASSERT_TRUE(mWindow->mFocus);
    const RCPtr<LControl> target = mWindow->mFocus->FindEditTarget();
    EXPECT_EQ(target ? target->GetName() : String(), each.mTarget);
  }
  // The window may go to the back and come again.
  At(u"field")->mIsTarget = true;
  mMain->LoseFocus();
  EXPECT_FALSE(mWindow->mFocus);
  Menu(u"menu0")->SetFocus(true);
  EXPECT_EQ(mWindow->mFocus->FindEditTarget(), At(u"field"));
}

TEST_F(MainMenuTest, WhatHadTheFocusMayGoWhileAMenuIsOpen) {
  enum class End { kDestroyed, kHidden, kParentHidden, kMoved };
  for (const End end : {End::kDestroyed, End::kHidden, End::kParentHidden, End::kMoved}) {
    MakeBar(kTwoMenus, Template());
    RCPtr<Field> field = At(u"field");
    field->SetFocus(true);
    mWindow->Click(10, 10);
    ASSERT_EQ(Bar()->mLastFocus, field);
    const int alive = BoxControl::gAlive;
    if (end == End::kDestroyed) field->Destroy();
    if (end == End::kHidden) field->SetVisible(false);
    if (end == End::kParentHidden) mMain->SetVisible(false);
    if (end == End::kMoved) field->SetParent(nullptr);
    const RCPtr<LControl> target = Bar()->FindEditTarget();
    EXPECT_EQ(target, Find<LControl>(u"frame"));
    EXPECT_EQ(Bar()->mLastFocus == nullptr, end != End::kMoved);
    if (end == End::kDestroyed) {
      field = nullptr;
      mWindow->TakeAsked();
      EXPECT_EQ(BoxControl::gAlive, alive - 1);
    }
    mMain->SetVisible(true);
    mWindow->Click(10, 35);
    EXPECT_EQ(Show(PopupOf(u"menu0")), "closed");
    if (field && !field->GetParent()) field->Destroy();
  }
}

TEST_F(MainMenuTest, ItemsAreShownAsTheirUpdaterSays) {
  MakeBar(kTwoMenus);
  const auto shown = [this] {
    mWindow->Click(10, 10);
    const std::string text = Show(PopupOf(u"menu0"));
    const bool isChecked = PopupOf(u"menu0")->GetMenu()->GetItem(0)->mChecked;
    mWindow->Click(250, 260);
    return text + (isChecked ? " checked" : "");
  };
  EXPECT_EQ(shown(), "ab -1");
  Bar()->SetItemUpdater(At(u"other")->GetMenuItemUpdater());
  EXPECT_EQ(shown(), "a!b -1 checked");
  EXPECT_EQ(shown(), "a!!b -1");
  At(u"other")->Destroy();
  EXPECT_EQ(shown(), "a!!b -1");
  Bar()->SetItemUpdater(nullptr);
  EXPECT_EQ(shown(), "a!!b -1");
}

TEST_F(MainMenuTest, TheMouseOpensTheNeighbours) {
  MakeBar(kTwoMenus, Template() + TestMenu("help", Place(200, 0, 50, 24)));
  PopupOf(u"help")->SetMenu(MakeMenu("h"));
  const auto all = [this] {
    return Show(PopupOf(u"help")) + "|" + Show(PopupOf(u"menu0")) + "|" + Show(PopupOf(u"menu1"));
  };
  mWindow->Move(260, 10);
  EXPECT_EQ(all(), "closed|closed|closed");
  mWindow->Click(260, 10);
  EXPECT_EQ(all(), "closed|ab -1|closed");
  mWindow->Move(310, 10);
  EXPECT_EQ(all(), "closed|closed|cd -1");
  mWindow->Move(210, 10);
  EXPECT_EQ(all(), "h -1|closed|closed");
  mWindow->Click(10, 200);
  EXPECT_EQ(all(), "closed|closed|closed");
  mWindow->Move(260, 10);
  EXPECT_EQ(all(), "closed|closed|closed");
}

TEST_F(MainMenuTest, TheFocusPassesTheBarByUnlessAMenuIsPressed) {
  MakeBar(kTwoMenus);
  EXPECT_TRUE(Bar()->IsNotFocusable());
  ASSERT_EQ(mMain->SetFocus(true), kSuccess);
  EXPECT_TRUE(At(u"field")->HasFocus());
  for (const char16_t* name : {u"other", u"field", u"other"}) {
    Key(0x09);
    EXPECT_TRUE(At(name)->HasFocus());
  }
  // The bar itself takes no focus, one of its menus does.
  mWindow->Click(390, 10);
  EXPECT_TRUE(At(u"other")->HasFocus());
  mWindow->Click(10, 10);
  EXPECT_TRUE(Bar()->ContainsFocus());
}

TEST_F(MainMenuTest, ABarMayGoWhileAMenuIsOpen) {
  MakeBar(kTwoMenus);
  At(u"field")->SetFocus(true);
  const RCPtr<LMenuItemUpdater> updater = Bar()->GetMenuItemUpdater();
  mWindow->Click(10, 10);
  const RCPtr<TestBar> bar = Bar();
  bar->Destroy();
  EXPECT_FALSE(bar->mLastFocus);
  EXPECT_FALSE(mWindow->mFocus && mWindow->mFocus->GetRootWindow() == nullptr);
  EXPECT_EQ(bar->GetRegistrationCount(), 0);
  LMenuItemState state;
  EXPECT_EQ(updater->Update(MakeMenu("a"), 0, u"NID_a", state), kNothingDone);
  mWindow->Move(60, 10);
  mWindow->Click(60, 35);
}

TEST_F(MainMenuTest, OneGestureGoesByWayOfTheNeighbour) {
  MakeBar(kTwoMenus);
  At(u"field")->SetFocus(true);
  const RCPtr<Hearer> heard = HearWindow(u"NID_d");
  mWindow->Move(10, 10);
  mWindow->Press();
  mWindow->Move(60, 10);
  EXPECT_EQ(Show(PopupOf(u"menu0")), "closed");
  EXPECT_EQ(Show(PopupOf(u"menu1")), "cd -1");
  mWindow->Move(12, 10);
  EXPECT_EQ(Show(PopupOf(u"menu1")), "closed");
  EXPECT_EQ(Show(PopupOf(u"menu0")), "ab -1");
  mWindow->Move(60, 10);
  mWindow->Move(62, 50);
  mWindow->LetGo();
  mWindow->ProcessKeyQueue(true);
  EXPECT_EQ(heard->mCount, 1);
  EXPECT_EQ(Show(PopupOf(u"menu1")), "closed");
  EXPECT_FALSE(mWindow->mCapture);
  EXPECT_TRUE(At(u"field")->HasFocus());
}

// The bar of the program, with its own skin and texts.
TEST_F(MainMenuTest, TheProgramHasItsMenu) {
  RegisterProgramResources();
  mFactory = MakeRC<LControlFactory>(u"FirmwareUpdater");
  ASSERT_EQ(mFactory->LoadResources(u"::", 0x0409), kSuccess) << mLog.Text();
  mApplication = MakeRC<ClockApplication>(mFactory);
  ASSERT_EQ(RegisterFrameworkControls(*mFactory), kSuccess);
  mFactory->RegisterControlCreateFunction(u"FirmwareUpdater.MainControl", MakeControl<ProbeControl>);
  mMain = mFactory->CreateControl(u"mainControl", RCPtr<LRootWindow>(mWindow));
  ASSERT_TRUE(mMain);
  const RCPtr<LMainMenu> bar(mMain->FindChild(u"mainMenu"));
  ASSERT_TRUE(bar);
  EXPECT_EQ(Describe(*bar), "File@0(Select Firmware File)");
  EXPECT_FALSE(bar->IsShown(false));
}

// Drawn with its fonts.
TEST_F(MainMenuTest, TheProgramsMenuFitsItsItems) {
  RegisterProgramResources();
  mFactory = MakeRC<LControlFactory>(u"FirmwareUpdater");
  ASSERT_EQ(mFactory->LoadResources(u"::", 0x0409), kSuccess) << mLog.Text();
  mApplication = MakeRC<ClockApplication>(mFactory);
  mApplication->mRenderer = LRenderer::Create(static_cast<std::int32_t>(RendererType::kGdi), nullptr);
  ASSERT_EQ(mApplication->TakeDocuments(), kSuccess);
  ASSERT_EQ(RegisterFrameworkControls(*mFactory), kSuccess);
  mFactory->RegisterControlCreateFunction(u"FirmwareUpdater.MainControl", MakeControl<ProbeControl>);
  mWindow->ProcessSize({400, 425});
  mMain = mFactory->CreateControl(u"mainControl", RCPtr<LRootWindow>(mWindow));
  ASSERT_TRUE(mMain);
  mMain->Relayout();
  mWindow->mTop = mMain;
  const RCPtr<LMainMenu> bar(mMain->FindChild(u"mainMenu"));
  const RCPtr<LMenuDescriptor> menu = MakeMenu("a-bC");
  menu->GetItem(0)->mChecked = true;
  bar->AddMenu(0, u"menu0", u"File", menu);
  bar->SetVisible(true);
  const RCPtr<LComboMenu> face(bar->FindChild(u"menu0"));
  face->ShowPopup(true);
  const RCPtr<LPopupMenu> popup = face->GetPopup();
  ASSERT_TRUE(popup->IsShown(true));
  std::string heights, marks;
  for (std::int32_t index = 0; index < popup->GetChildCount(); ++index) {
    const RCPtr<LMenuListBoxItem> row(popup->GetChild(index));
    if (!row || popup->IndexOfRow(row.Get()) < 0) continue;
    heights += std::to_string(RoundToInt32(row->GetBounds().mHeight)) + " ";
    marks += row->GetCheckBox()->GetLookAlpha(7) > 0 ? 'x' : '.';
  }
  EXPECT_EQ(heights, "23 9 23 23 ");
  EXPECT_EQ(marks, "x...");
  EXPECT_EQ(popup->GetClientRect().mHeight, 23 + 9 + 23 + 23);
}

}  // namespace
}  // namespace TF
