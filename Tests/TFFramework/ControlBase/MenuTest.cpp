#include <string>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/MenuBuilder.h"
#include "Tests/TFFramework/ControlBase/ControlFixture.h"

namespace TF {
namespace {

// "a=ID b(key)=ID - Sub{...}".
std::string Show(const LMenuDescriptor* menu) {
  if (!menu) return "none";
  std::string text;
  for (std::int32_t index = 0; index < menu->GetItemCount(); ++index) {
    const RCPtr<LMenuItemDescriptor> item = menu->GetItem(index);
    EXPECT_EQ(item->GetParentMenu(), menu);
    if (!text.empty()) text += ' ';
    text += item->mSeparator ? "-" : ToUtf8(item->mText);
    if (!item->mHotKeyText.IsEmpty()) text += "(" + ToUtf8(item->mHotKeyText) + ")";
    if (!item->mIdentifier.IsEmpty()) text += "=" + ToUtf8(item->mIdentifier);
    if (item->GetItemCount() > 0) text += "{" + Show(item.Get()) + "}";
  }
  return text;
}

TEST(MenuBuilderTest, TextsMakeAMenu) {
  struct Case {
    MenuTexts mTexts;
    const char* mMenu;
  };
  const String digits(std::u16string(40, u'9'));
  for (const Case& each : {
           Case{{{u"00.A", u"a"}, {u"01.B", u"b"}}, "a=A b=B"},
           Case{{{u"00.A", u"a"}, {u"02.B", u"b"}, {u"01.C", u"c"}}, "a=A c=C"},
           Case{{{u"0.A", u"a"}, {u"1.B", u"b|Ctrl+B|x"}, {u"2.s", u"-"}}, "a=A b(Ctrl+B|x)=B -"},
           Case{{{u"00.A", u"a"}, {u"00.B", u"b"}}, "a=A"},
           Case{{{u"00.sub.", u"Sub"}, {u"sub.00.A", u"a"}, {u"sub.01.B", u"b"}}, "Sub{a=A b=B}"},
           Case{{{u"00.sub.", u"Sub"}, {u"01.A", u"a"}}, "a=A"},
           Case{{{u"00.sub.", u"Sub|k"}, {u"sub.00.sub.", u"Sub"}, {u"sub.01.A", u"a"}}, "Sub(k){a=A}"},
           Case{{{u"sub.00.A", u"a"}}, "none"},
           Case{{{u"", u"a"},
                 {u".", u"a"},
                 {u"..", u"a"},
                 {u"00", u"a"},
                 {u"00.", u"a"},
                 {u"00..", u"a"},
                 {u".A", u"a"},
                 {u"s..A", u"a"},
                 {digits + u".A", u"a"},
                 {u"x.y.A", u"a"}},
                "none"},
           Case{{{u"00.A", u""}}, "=A"},
           Case{{}, "none"},
       }) {
    EXPECT_EQ(Show(CreateMenu(each.mTexts).Get()), each.mMenu);
  }
}

TEST(MenuBuilderTest, SubmenusEndSomewhere) {
  MenuTexts texts{{u"00.l0.", u"0"}};
  for (int level = 0; level < 200; ++level) {
    const String name = FromUtf8("l" + std::to_string(level)),
                 next = FromUtf8("l" + std::to_string(level + 1));
    texts.emplace_back(name + u".00." + next + u".", u"x");
    texts.emplace_back(name + u".01.A", u"a");
  }
  RCPtr<LMenuDescriptor> menu = CreateMenu(texts);
  int depth = 0;
  for (; menu; menu = RCPtr<LMenuDescriptor>(menu->GetItem(0))) ++depth;
  EXPECT_GT(depth, 50);
  EXPECT_LT(depth, 100);
}

std::int32_t CountItems(const LMenuDescriptor& menu) {
  std::int32_t count = menu.GetItemCount();
  for (std::int32_t index = 0; index < menu.GetItemCount(); ++index)
    count += CountItems(*menu.GetItem(index));
  return count;
}

// However many texts there are, and however often they name the same list.
TEST(MenuBuilderTest, AMenuHasAnEnd) {
  MenuTexts texts;
  for (int item = 0; item < 10050; ++item) texts.emplace_back(FromUtf8(std::to_string(item) + ".A"), u"a");
  EXPECT_EQ(CountItems(*CreateMenu(texts)), 10000);
  texts = {{u"00.l0.", u"x"}, {u"01.l0.", u"x"}};
  for (int level = 0; level < 60; ++level) {
    const String name = FromUtf8("l" + std::to_string(level)),
                 next = FromUtf8("l" + std::to_string(level + 1) + ".");
    texts.emplace_back(name + u".00." + next, u"x");
    texts.emplace_back(name + u".01." + next, u"x");
  }
  texts.emplace_back(u"l60.00.A", u"a");
  EXPECT_EQ(CountItems(*CreateMenu(texts)), 10000);
}

TEST(MenuBuilderTest, AControlHasOneMenuOrSeveral) {
  struct Case {
    LStringTable::Strings mTexts;
    const char* mMenus;
  };
  for (const Case& each :
       {Case{{{u"CONTEXT_MENU.00.A", u"a"}, {u"CONTEXT_MENU0.00.B", u"b"}}, "a=A;"},
        Case{{{u"CONTEXT_MENU0.00.A", u"a"}, {u"CONTEXT_MENU2.00.B", u"b"}, {u"CONTEXT_MENU2.01.C", u"c"}},
             "a=A;none;b=B c=C;"},
        Case{{{u"CONTEXT_MENUx.00.A", u"a"}, {u"CONTEXT_MENU", u"a"}, {u"CONTEXT_MENU4000000000.00.A", u"a"}},
             ""},
        Case{{{u"MENU_LABEL.00", u"File"}}, ""}}) {
    std::string menus;
    for (const auto& menu : ReadContextMenus(*MakeRC<LStringTable>(each.mTexts)))
      menus += Show(menu.Get()) + ";";
    EXPECT_EQ(menus, each.mMenus);
  }
}

TEST(MenuBuilderTest, LabelsAreReadByTheirNumbers) {
  struct Case {
    LStringTable::Strings mTexts;
    std::vector<String> mLabels;
  };
  for (const Case& each :
       {Case{{{u"MENU_LABEL.00", u"a"}, {u"MENU_LABEL.01", u"b"}}, {u"a", u"b"}},
        Case{{{u"MENU_LABEL.2", u"c"}, {u"MENU_LABEL", u"x"}, {u"LABEL", u"y"}}, {u"", u"", u"c"}},
        Case{{{u"MENU_LABEL.0", u"a"}, {u"MENU_LABEL.00", u"b"}}, {u"b"}},
        Case{{{u"MENU_LABEL.00", u"a"}, {u"MENU_LABEL.1000", u"b"}}, {}},
        Case{{{u"MENU_LABEL.99999999999999999999", u"b"}}, {}}, Case{{}, {}}}) {
    EXPECT_EQ(ReadMenuLabels(*MakeRC<LStringTable>(each.mTexts)), each.mLabels);
  }
}

TEST(MenuDescriptorTest, HoldsItemsAndCopiesThem) {
  const auto menu = MakeRC<LMenuDescriptor>();
  menu->AddItem(-1, u"a", u"A", true, false);
  menu->AddItem(0, u"b", u"B", false, true);
  menu->AddSeparator(1);
  EXPECT_EQ(Show(menu.Get()), "b=B - a=A");
  LMenuItemState state;
  EXPECT_EQ(menu->GetItemState(0, state), kSuccess);
  EXPECT_TRUE(!state.mEnabled && state.mChecked && state.mText == u"b");
  for (const std::int32_t index : {-1, 3}) {
    EXPECT_EQ(menu->GetItemState(index, state), kInvalidArgument);
    EXPECT_TRUE(!state.mEnabled && !state.mChecked && state.mText.IsEmpty());
    EXPECT_FALSE(menu->GetItem(index));
  }
  const RCPtr<LMenuItemDescriptor> item = menu->GetItem(0);
  item->AddItem(-1, u"c", u"C", true, false);
  EXPECT_EQ(item->AddItem(-1, item), kInvalidArgument);
  EXPECT_EQ(menu->AddItem(-1, item), kInvalidArgument);
  EXPECT_EQ(menu->AddItem(-1, nullptr), kInvalidArgument);
  auto copy = MakeRC<LMenuDescriptor>();
  copy->AddItem(-1, u"gone", u"G", true, false);
  copy->CopyFrom(*menu);
  menu->CopyFrom(*menu);
  EXPECT_EQ(Show(copy.Get()), "b=B{c=C} - a=A");
  EXPECT_FALSE(copy->GetItem(0) == item);
  const RCPtr<LMenuItemDescriptor> left = copy->GetItem(0);
  copy = nullptr;
  EXPECT_EQ(left->GetParentMenu(), nullptr);
}

class MenuUpdaterTest : public ControlFixture {};

class AnsweringControl : public BoxControl {
 public:
  using BoxControl::BoxControl;
  TFRESULT OnMenuItemText(const RCPtr<LMenuDescriptor>&, std::int32_t, const String& identifier,
                          LMenuItemState& state) override {
    state.mChecked = identifier == u"A";
    return kSuccess;
  }
};

TEST_F(MenuUpdaterTest, AsksItsControlAsLongAsThatIsThere) {
  MakeTree("");
  auto control = MakeRC<AnsweringControl>(nullptr, u"c");
  const RCPtr<LMenuItemUpdater> updater = control->GetMenuItemUpdater();
  EXPECT_EQ(updater, control->GetMenuItemUpdater());
  LMenuItemState state;
  EXPECT_EQ(updater->Update(nullptr, 0, u"A", state), kSuccess);
  EXPECT_TRUE(state.mChecked);
  control = nullptr;
  EXPECT_EQ(updater->Update(nullptr, 0, u"A", state), kNothingDone);
  EXPECT_EQ(mMain->GetMenuItemUpdater()->Update(nullptr, 0, u"A", state), kNothingDone);
}

}  // namespace
}  // namespace TF
