#include "TFFramework/Controls/MainMenu.h"

#include <string>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/Controls/FrameworkControls.h"
#include "TFFramework/Renderer/Renderer.h"
#include "Tests/TFFramework/Controls/MenuSkin.h"

namespace TF {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

// Takes edits, and answers for items.
class Editor : public Owner {
 public:
  using Owner::Owner;
  bool IsEditTarget() override { return true; }
  TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>&, std::int32_t index, const String& identifier,
                          LMenuItemState& state) override {
    state.mText = identifier + String::Format(u" %d", index);
    state.mEnabled = index == 0;
    return kSuccess;
  }
};

// A bar of 400 by 24 pixels and a control below it.
class MainMenuTest : public BarFixture {
 protected:
  void RegisterMore() override {
    RegisterMenuControls(*mFactory);
    mFactory->RegisterControlCreateFunction(u"MenuBar", MakeControl<LMainMenu>);
    mFactory->RegisterControlCreateFunction(u"Editor", MakeControl<Editor>);
    LoadTexts("Box|bar", mTexts);
  }
  void MakeBar(const Texts& texts, const std::string& menus = TestComboPart("templateMenu", 0)) {
    mTexts = texts;
    mWindow->ProcessSize({400, 300});
    MakeControls(Part("MenuBar", "bar", Place(0, 0, 400, 24) + "TabStop='-1' Z_Order='10'", menus) +
                 Part("Editor", "editor", Place(0, 50, 400, 250) + "TabStop='0'"));
    mBar = Find<LMainMenu>(u"bar");
    ASSERT_TRUE(mBar);
  }
  // File with a and b, Edit with c.
  void MakeBar() {
    MakeBar({{"MENU_LABEL.00", "File"},
             {"MENU_LABEL.01", "Edit"},
             {"CONTEXT_MENU0.00.NID_a", "a"},
             {"CONTEXT_MENU0.01.NID_b", "b"},
             {"CONTEXT_MENU1.00.NID_c", "c"}});
  }
  void TearDown() override {
    mBar = nullptr;
    BarFixture::TearDown();
  }
  RCPtr<TestPopup> PopupOf(std::int32_t menu) const {
    for (std::int32_t index = 0; index < mBar->GetChildCount(); ++index) {
      const RCPtr<LComboMenu> combo(mBar->GetChild(index));
      if (combo && mBar->FindMenu(combo->GetName()) == menu) return combo->GetPopup();
    }
    return nullptr;
  }
  // From the left: label, place and items.
  std::string Show() const {
    std::string shown;
    for (std::int32_t menu = 0; menu < mBar->GetMenuCount(); ++menu) {
      const RCPtr<TestPopup> popup = PopupOf(menu);
      shown += (menu > 0 ? ", " : "") + ToUtf8(mBar->GetMenuLabel(menu)) + " " +
               std::to_string(RoundToInt32(popup->GetParent()->GetBounds().mX)) + " ";
      for (std::int32_t item = 0; popup->GetMenu() && item < popup->GetMenu()->GetItemCount(); ++item)
        shown += ToUtf8(popup->GetMenu()->GetItem(item)->mText);
    }
    return shown;
  }
  bool IsOpen(std::int32_t menu) const { return PopupOf(menu)->IsShown(true); }
  RCPtr<Editor> GetEditor() const { return Find<Editor>(u"editor"); }

  Texts mTexts;
  RCPtr<LMainMenu> mBar;
};

TEST_F(MainMenuTest, TextsMakeAMenuForEachLabelWhenThereAreAsManyOfBoth) {
  struct Case {
    Texts mTexts;
    const char* mBar;
  };
  for (const Case& each : {
           Case{{}, ""},
           Case{{{"MENU_LABEL.00", "File"}}, ""},
           Case{{{"CONTEXT_MENU0.00.NID_a", "a"}}, ""},
           Case{{{"MENU_LABEL.00", "File"}, {"CONTEXT_MENU.00.NID_a", "a"}, {"CONTEXT_MENU.01.NID_b", "b"}},
                "File 0 ab"},
           Case{{{"MENU_LABEL.00", "File"}, {"CONTEXT_MENU0.00.NID_a", "a"}, {"CONTEXT_MENU1.00.NID_b", "b"}},
                ""},
           Case{{{"MENU_LABEL.00", "File"},
                 {"MENU_LABEL.01", "Edit"},
                 {"CONTEXT_MENU0.00.NID_a", "a"},
                 {"CONTEXT_MENU1.00.NID_b", "b"}},
                "File 0 a, Edit 50 b"},
           // A label without a number of its own, and menus with a gap: the next one takes the place.
           Case{{{"MENU_LABEL.02", "Last"},
                 {"MENU_LABEL.00", "First"},
                 {"CONTEXT_MENU0.00.NID_a", "a"},
                 {"CONTEXT_MENU2.00.NID_b", "b"}},
                "First 0 a, Last 50 b"},
           Case{{{"MENU_LABEL.00", "File"},
                 {"MENU_LABEL.999999999999", "Far"},
                 {"MENU_LABEL.x", "x"},
                 {"CONTEXT_MENU0.00.NID_a", "a"},
                 {"CONTEXT_MENU0.02.NID_b", "b"},
                 {"CONTEXT_MENU0.Nobody.00.NID_c", "c"}},
                "x 0 a"},
       }) {
    MakeBar(each.mTexts);
    EXPECT_EQ(Show(), each.mBar);
    EXPECT_EQ(mBar->FindChild(u"templateMenu"), nullptr);
    EXPECT_TRUE(mBar->IsNotFocusable());
  }
}

TEST_F(MainMenuTest, MenusOfTheSkinStayAndTheProgramAddsItsOwn) {
  MakeBar({}, TestComboPart("tools", 10));
  EXPECT_EQ(Show(), " 10 ");
  EXPECT_EQ(mBar->AddMenu(5, u"last", u"Last", MakeTestMenu("ab")), kSuccess);
  EXPECT_EQ(mBar->AddMenu(1, u"middle", u"Middle", MakeTestMenu("c")), kSuccess);
  EXPECT_EQ(Show(), " 10 , Middle 60 c, Last 110 ab");
  EXPECT_EQ(mBar->FindMenu(u"last"), 2);
  EXPECT_EQ(mBar->FindMenu(u"nobody"), -1);
  EXPECT_EQ(mBar->GetMenuLabel(-1) + mBar->GetMenuLabel(3), u"");
  const RCPtr<LMenuDescriptor> menu = MakeTestMenu("D");
  EXPECT_EQ(mBar->AddMenu(0, u"last", u"Again", menu), kSuccess);
  menu->GetItem(0)->mText = u"changed";
  EXPECT_EQ(Show(), " 10 , Middle 60 c, Again 110 D");
  EXPECT_EQ(mBar->AddMenu(0, u"null", u"Null", nullptr), kInvalidArgument);
  mBar->FindChild(u"middle")->Destroy();
  EXPECT_EQ(mBar->GetMenuCount(), 2);
  MakeBar({}, "");
  EXPECT_EQ(mBar->AddMenu(0, u"menu", u"Menu", menu), kFailure);
}

TEST_F(MainMenuTest, ANewSkinKeepsTextsAndItems) {
  MakeBar();
  mBar->AddMenu(2, u"own", u"Own", MakeTestMenu("x"));
  mBar->AddMenu(0, u"menu0", u"Renamed", MakeTestMenu("y"));
  ASSERT_EQ(mBar->ApplyDescriptor(mBar->GetDescriptor()), kSuccess);
  EXPECT_EQ(Show(), "Renamed 0 y, Edit 50 c, Own 100 x");
  mWindow->Click(10, 10);
  EXPECT_TRUE(IsOpen(0));
}

TEST_F(MainMenuTest, AnOpenBarFollowsTheMouseAndItemsReportToTheWindow) {
  MakeBar();
  GetEditor()->SetFocus(true);
  std::vector<std::string> chosen;
  const auto hearer = MakeRC<Hearer>([&](const RCPtr<LNotification>& notification) {
    const RCPtr<LMenuActivationParam> param(notification->GetData());
    chosen.push_back(ToUtf8(notification->GetId()) + " " + std::to_string(param->mIndex));
  });
  for (const char16_t* name : {u"NID_b", u"NID_c"})
    hearer->Register(RCPtr<LNotificationDistributor>(mWindow), name);
  mWindow->Move(60, 10);
  EXPECT_FALSE(IsOpen(1));
  mWindow->Click(10, 10);
  EXPECT_TRUE(IsOpen(0));
  mWindow->Move(60, 10);
  EXPECT_FALSE(IsOpen(0));
  EXPECT_TRUE(IsOpen(1));
  mWindow->Click(60, 30);
  EXPECT_FALSE(IsOpen(1));
  EXPECT_TRUE(chosen.empty());
  mWindow->Process(false);
  EXPECT_EQ(chosen, std::vector<std::string>{"NID_c 0"});
  // The focus is where it was.
  EXPECT_TRUE(GetEditor()->HasFocus());
  // In one gesture.
  mWindow->Move(10, 10);
  mWindow->Press();
  mWindow->Move(12, 30);
  mWindow->Move(12, 50);
  mWindow->LetGo();
  mWindow->Process(false);
  EXPECT_EQ(chosen.size(), 2U);
  EXPECT_EQ(chosen.back(), "NID_b 1");
  EXPECT_TRUE(GetEditor()->HasFocus());
  // In one gesture by way of the neighbour and back to it.
  mWindow->Move(10, 10);
  mWindow->Press();
  mWindow->Move(60, 10);
  EXPECT_TRUE(IsOpen(1));
  mWindow->Move(12, 10);
  EXPECT_TRUE(IsOpen(0));
  mWindow->Move(60, 10);
  mWindow->Move(62, 30);
  mWindow->LetGo();
  mWindow->Process(false);
  EXPECT_EQ(chosen.size(), 3U);
  EXPECT_EQ(chosen.back(), "NID_c 0");
  EXPECT_FALSE(IsOpen(0) || IsOpen(1));
  EXPECT_FALSE(mWindow->mCapture);
}

TEST_F(MainMenuTest, EditsGoToWhatHadTheFocusBeforeTheBar) {
  MakeBar();
  EXPECT_FALSE(mBar->FindEditTarget());
  mWindow->Click(100, 100);
  mWindow->Click(10, 10);
  ASSERT_TRUE(IsOpen(0));
  EXPECT_EQ(mBar->FindEditTarget(), GetEditor());
  EXPECT_EQ(PopupOf(0)->FindEditTarget(), GetEditor());
  GetEditor()->Destroy();
  EXPECT_FALSE(mBar->FindEditTarget());
  mWindow->Click(10, 30);
  EXPECT_FALSE(IsOpen(0));
}

TEST_F(MainMenuTest, WhoAnswersForTheItemsSaysHowTheyShow) {
  MakeBar();
  mWindow->Click(10, 10);
  EXPECT_EQ(PopupOf(0)->GetMenu()->GetItem(1)->mText, u"b");
  mWindow->Click(10, 10);
  mBar->SetItemUpdater(GetEditor()->GetMenuItemUpdater());
  mWindow->Click(10, 10);
  ASSERT_TRUE(IsOpen(0));
  EXPECT_EQ(PopupOf(0)->GetMenu()->GetItem(1)->mText, u"NID_b 1");
  EXPECT_FALSE(PopupOf(0)->GetMenu()->GetItem(1)->mEnabled);
  mWindow->Click(10, 10);
  // Nobody is left to ask.
  GetEditor()->Destroy();
  mWindow->Click(10, 10);
  EXPECT_TRUE(IsOpen(0));
}

// The program's own skin, drawn with its fonts.
class ShippedMenuTest : public MainMenuTest {
 protected:
  void SetUp() override {
    RegisterProgramResources();
    mFactory = MakeRC<LControlFactory>(u"Tessel");
    ASSERT_EQ(mFactory->LoadResources(u"::", 0x0409), kSuccess);
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
    mBar = Find<LMainMenu>(u"mainMenu");
  }
};

TEST_F(ShippedMenuTest, ItsScreenIsBuiltWholeAndItsMenuFitsItsItems) {
  ASSERT_TRUE(mBar);
  EXPECT_EQ(mBar->GetMenuCount(), 1);
  EXPECT_EQ(mBar->GetMenuLabel(0), u"File");
  const RCPtr<LMenuDescriptor> menu = MakeTestMenu("a-bC");
  menu->GetItem(0)->mChecked = true;
  mBar->AddMenu(0, u"menu0", u"File", menu);
  mBar->SetVisible(true);
  const RCPtr<LComboMenu> face(mBar->FindChild(u"menu0"));
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
  // An edge of a pixel above and one below, as the skin draws it.
  const RectT<double> client = popup->GetClientRect();
  EXPECT_EQ(client.mHeight, 23 + 9 + 23 + 23);
}

}  // namespace
}  // namespace TF
