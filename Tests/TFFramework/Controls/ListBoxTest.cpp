#include "TFFramework/Controls/ListBox.h"

#include <functional>
#include <string>
#include <vector>

#include "TFFramework/Controls/CheckedListBox.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

class TestList : public LCheckedListBox {
 public:
  using LCheckedListBox::GetItemRecord;
  using LCheckedListBox::LCheckedListBox;
  using LCheckedListBox::mIdleRefCount;
  using LCheckedListBox::mRows;
  using LCheckedListBox::SwapItems;

  // Records whose text begins so cannot be chosen.
  bool IsItemSelectable(std::int32_t index) override { return GetItemText(index).Find(u"-") != 0; }
};

// A list of 100 by 95 pixels with rows of 20, of which it shows four whole ones and a part of the fifth.
class ListBoxTest : public BarFixture {
 protected:
  void RegisterMore() override {
    mFactory->RegisterControlCreateFunction(u"List", MakeControl<TestList>);
    mFactory->RegisterControlCreateFunction(u"Row", MakeControl<Touchable<LCheckedListBoxItem>>);
  }
  void MakeList(const std::string& texts) {
    MakeControls(Part("List", "list", Place(0, 0, 100, 95),
                      Part("Row", "templateItem", FillAxis('X') + SizeOnAxis('Y', 20))));
    mList = Find<TestList>(u"list");
    ASSERT_TRUE(mList);
    SetTexts(texts);
  }
  void TearDown() override {
    mList = nullptr;
    BarFixture::TearDown();
  }
  // One record for each letter.
  void SetTexts(const std::string& texts) {
    mList->RemoveAllItems();
    for (const char letter : texts)
      mList->InsertItem(mList->GetItemCount(), MakeRC<LListText>(FromUtf8(std::string(1, letter))));
  }
  std::string Texts() const {
    std::string texts;
    for (std::int32_t index = 0; index < mList->GetItemCount(); ++index)
      texts += ToUtf8(mList->GetItemText(index));
    return texts;
  }
  // What the rows show: capitals are selected, '.' is an empty row.
  std::string Rows() const {
    std::string shown;
    for (const auto& row : mList->mRows) {
      std::string text = ToUtf8(row->GetText());
      if (row->GetValue() >= 0.5) text = ToUtf8(row->GetText().ToUpper());
      shown += text.empty() ? (row->IsEnabled(false) ? " " : ".") : text;
    }
    return shown;
  }
  // The indices of what is selected, and both ends: "1 2 [1,2]".
  std::string Selected() const {
    std::string text;
    for (std::int32_t index = 0; index < mList->GetItemCount(); ++index)
      if (mList->IsItemSelected(index)) text += std::to_string(index) + " ";
    return text + "[" + std::to_string(mList->GetAnchor()) + "," + std::to_string(mList->GetCaret()) + "]";
  }
  void Press(std::size_t row, std::uint32_t modifiers = 0, std::uint32_t button = kLeft,
             bool isDouble = false) {
    const RCPtr<LControl> held = mList->mRows.at(row);
    mWindow->mButtons = button;
    held->MouseDown(MakeRC<LMouseButtonParam>(2, 2, modifiers, 0U, button, isDouble, button));
  }
  void LetGo(std::size_t row, std::uint32_t modifiers = 0, std::uint32_t button = kLeft) {
    const RCPtr<LControl> held = mList->mRows.at(row);
    mWindow->mButtons = 0;
    held->MouseUp(MakeRC<LMouseButtonParam>(2, 2, modifiers, 0U, button, false, 0U));
  }
  void SetHeight(double pixels) {
    LayoutSize size;
    size.mReference = SizeReference::kSelf;
    size.mAbs = pixels;
    mList->SetAxisLayout(LayoutAxis::kY, mList->GetLayout()->Axis(LayoutAxis::kY).mPosition, size);
  }
  TFRESULT Key(std::uint32_t code) {
    KeyCode key;
    key.code = code;
    return mList->OnKeyDown(MakeRC<LKeyParam>(key));
  }

  // How often the list has sent it since this was asked last.
  static std::int32_t TakeHeard(const std::string& name) {
    return static_cast<std::int32_t>(std::erase(ProbeControl::gLog, "list " + name));
  }

  RCPtr<TestList> mList;
};

TEST_F(ListBoxTest, ShowsAnyNumberOfRecordsWithAFewRows) {
  MakeList("abc");
  EXPECT_EQ(Rows(), "abc..");
  EXPECT_EQ(mList->GetContentHeight(), 60);
  SetTexts("abcdefghij");
  EXPECT_EQ(Rows(), "abcde");
  for (const auto& [offset, rows] :
       {std::pair(40.0, "cdefg"), std::pair(100.0, "fghij"), std::pair(0.0, "abcde")}) {
    mList->SetScrollOffset({0, offset});
    EXPECT_EQ(Rows(), rows);
    EXPECT_EQ(mList->mRows[0]->GetPositionInParent().mY, 0) << offset;
  }
  EXPECT_EQ(mList->FindChild(u"templateItem"), nullptr);
  EXPECT_EQ(mList->SetItemCount(100000), 100000);
  EXPECT_EQ(mList->GetRowCount(), 5);
  EXPECT_EQ(Rows(), "abcde");
}

TEST_F(ListBoxTest, AHigherViewGetsMoreRows) {
  MakeList("abcdefghij");
  SetHeight(155);
  EXPECT_EQ(Rows(), "abcdefgh");
  EXPECT_EQ(mList->mRows[7]->GetBounds().mY, 140);
}

TEST_F(ListBoxTest, HiddenRecordsTakeNoRow) {
  MakeList("abcdefghij");
  mList->SelectRange(1, -1, true);
  EXPECT_EQ(mList->SetItemHidden(1, true), kSuccess);
  EXPECT_EQ(mList->SetItemHidden(1, true), kNothingDone);
  mList->SetItemHidden(4, true);
  EXPECT_EQ(Rows(), "acdfg");
  EXPECT_EQ(Selected(), "[-1,-1]");
  EXPECT_EQ(mList->GetContentHeight(), 160);
  EXPECT_EQ(mList->GetRowOfItem(5), 3);
  EXPECT_EQ(mList->GetRowOfItem(4), -1);
  EXPECT_EQ(mList->IndexOfRow(mList->mRows[3].Get()), 5);
  mList->SetScrollOffset({0, 40});
  EXPECT_EQ(Rows(), "dfghi");
  mList->SetItemHidden(0, true);
  mList->SetItemHidden(9, true);
  EXPECT_EQ(mList->SetItemHidden(10, true), kInvalidArgument);
  for (std::int32_t index = 0; index < 10; ++index) mList->SetItemHidden(index, true);
  EXPECT_EQ(mList->GetContentHeight(), 0);
  EXPECT_EQ(mList->EnsureVisible(3), kNothingDone);
}

TEST_F(ListBoxTest, ASelectionHasTwoEnds) {
  MakeList("abcdefgh");
  mList->SetMultiSelect(true);
  struct Case {
    std::function<TFRESULT()> mStep;
    const char* mSelected;
  };
  const Case cases[] = {{[&] { return mList->SelectRange(2, -1, true); }, "2 [2,2]"},
                        {[&] { return mList->SelectRange(4, 6, true); }, "4 5 6 [4,6]"},
                        {[&] { return mList->SelectRange(6, 3, true); }, "3 4 5 6 [6,3]"},
                        {[&] { return mList->SelectRange(0, 0, false); }, "0 3 4 5 6 [0,0]"},
                        {[&] { return mList->Deselect(0); }, "3 4 5 6 [6,6]"},
                        {[&] { return mList->Deselect(6); }, "3 4 5 [5,5]"},
                        {[&] { return mList->SelectRange(1, 3, false); }, "1 2 3 4 5 [1,3]"},
                        {[&] { return mList->Deselect(1); }, "2 3 4 5 [2,3]"},
                        {[&] { return mList->Deselect(3); }, "2 4 5 [2,4]"},
                        {[&] { return mList->Deselect(7); }, "2 4 5 [2,4]"},
                        {[&] { return mList->RemoveItem(0); }, "1 3 4 [1,3]"},
                        {[&] { return mList->RemoveItem(2); }, "1 2 3 [-1,-1]"},
                        {[&] { return mList->SelectRange(0, 9, true); }, "0 1 2 3 4 5 [0,5]"},
                        {[&] { return mList->SelectRange(9, 0, true); }, "0 1 2 3 4 5 [0,5]"},
                        {[&] { return mList->RemoveAllItems(); }, "[-1,-1]"},
                        {[&] { return mList->RemoveAllItems(); }, "[-1,-1]"}};
  for (const Case& each : cases) {
    each.mStep();
    EXPECT_EQ(Selected(), each.mSelected) << &each - cases;
  }
  EXPECT_EQ(mList->GetSelectedCount(), 0);
}

TEST_F(ListBoxTest, HalfAValueCountsAsSelected) {
  MakeList("abc");
  mList->SetItemValue(0, 0.4999);
  mList->SetItemValue(1, 0.5);
  EXPECT_EQ(Rows(), "aBc..");
  EXPECT_EQ(mList->GetSelectedCount(), 1);
  EXPECT_EQ(mList->SetItemValue(3, 1), kInvalidArgument);
}

TEST_F(ListBoxTest, PressesSelectAsTheirModifiersSay) {
  MakeList("abcde");
  SetHeight(120);
  Listen(mList, {u"NID_SELECTION_CHANGE", u"NID_ITEM_DOUBLE_CLICKED", u"NID_ITEM_RIGHT_CLICK"});
  Press(1);
  LetGo(1);
  Press(1, 0, kLeft, true);
  LetGo(1);
  Press(2, 0, kRight);
  LetGo(2, 0, kRight);
  EXPECT_EQ(TakeHeard("NID_SELECTION_CHANGE"), 1);
  EXPECT_EQ(TakeHeard("NID_ITEM_DOUBLE_CLICKED"), 1);
  EXPECT_EQ(TakeHeard("NID_ITEM_RIGHT_CLICK"), 1);
  Press(3, Modifier::kCtrl);
  LetGo(3);
  EXPECT_EQ(Selected(), "3 [3,3]");
  mList->SetMultiSelect(true);
  struct Case {
    std::size_t mRow;
    std::uint32_t mModifiers;
    const char* mSelected;
  };
  const Case cases[] = {{0, 0, "0 [0,0]"},
                        {2, Modifier::kShift, "0 1 2 [0,2]"},
                        {4, Modifier::kCtrl, "0 1 2 4 [4,4]"},
                        {3, Modifier::kCtrl | Modifier::kShift, "0 1 2 3 4 [3,3]"},
                        {1, Modifier::kCtrl, "0 2 3 4 [3,3]"},
                        {1, 0, "1 [1,1]"},
                        {1, 0, "1 [1,1]"}};
  for (const Case& each : cases) {
    Press(each.mRow, each.mModifiers);
    LetGo(each.mRow, each.mModifiers);
    EXPECT_EQ(Selected(), each.mSelected) << &each - cases;
  }
  mList->SetClickMode(LListBox::kToggleMode);
  Press(1);
  LetGo(1);
  Press(2);
  LetGo(2);
  EXPECT_EQ(Selected(), "2 [2,2]");
}

// So that all of a selection can be dragged by one of its records.
TEST_F(ListBoxTest, APressOnWhatIsSelectedCountsAtItsRelease) {
  MakeList("abcde");
  mList->SetMultiSelect(true);
  mList->SelectRange(1, 3, true);
  Press(2);
  EXPECT_EQ(Selected(), "1 2 3 [1,3]");
  LetGo(2);
  EXPECT_EQ(Selected(), "2 [2,2]");
}

TEST_F(ListBoxTest, KeysMoveTheSelectionOverWhatCanBeChosen) {
  MakeList("a-bc");
  constexpr std::uint32_t kUp = 0x20260000, kDown = 0x20280000, kShift = KeyCode::kShift;
  struct Case {
    std::uint32_t mKey;
    const char* mSelected;
  };
  for (const Case& each :
       {Case{kUp, "[-1,-1]"}, Case{kDown, "0 [0,0]"}, Case{kUp, "0 [0,0]"}, Case{kDown, "2 [2,2]"},
        Case{kDown | kShift, "3 [3,3]"}, Case{kDown, "3 [3,3]"}, Case{kUp, "2 [2,2]"}}) {
    EXPECT_EQ(Key(each.mKey), kSuccess);
    EXPECT_EQ(Selected(), each.mSelected);
  }
  mList->SetMultiSelect(true);
  Key(kUp | kShift);
  EXPECT_EQ(Selected(), "0 1 2 [2,0]");
  EXPECT_EQ(Key(0x20410000), kNothingDone);
}

TEST_F(ListBoxTest, ActivatingTellsWithAParentOnly) {
  MakeList("a-");
  Listen(mList, {u"NID_ITEM_ACTIVATED"});
  for (const std::int32_t index : {0, 1, 2, -1}) mList->Activate(index);
  EXPECT_EQ(TakeHeard("NID_ITEM_ACTIVATED"), 1);
}

TEST_F(ListBoxTest, ScrollsNoFurtherThanItMust) {
  MakeList("abcdefghij");
  struct Case {
    std::int32_t mIndex;
    const char* mRows;
  };
  for (const Case& each : {Case{3, "abcde"}, Case{4, "bcdef"}, Case{9, "ghij."}, Case{7, "ghij."},
                           Case{5, "fghij"}, Case{0, "abcde"}}) {
    EXPECT_EQ(mList->EnsureVisible(each.mIndex), kSuccess);
    EXPECT_EQ(Rows(), each.mRows) << each.mIndex;
  }
  EXPECT_EQ(mList->EnsureVisible(10), kInvalidArgument);
}

TEST_F(ListBoxTest, SortsByTextWhateverItsCaseAndKeepsEqualOnesInOrder) {
  MakeList("cBaDbA");
  mList->SetItemChecked(3, true);
  mList->SelectRange(0, 3, true);
  mList->SetSorted(true);
  EXPECT_EQ(Texts(), "aABbcD");
  EXPECT_TRUE(mList->IsItemChecked(5));
  EXPECT_EQ(mList->GetAnchor(), 4);
  EXPECT_EQ(mList->GetCaret(), 5);
  mList->InsertItem(0, MakeRC<LListText>(u"C"));
  EXPECT_EQ(Texts(), "aABbCcD");
}

TEST_F(ListBoxTest, TheMouseSelectsWhereItHovers) {
  MakeList("ab-");
  mList->SetSelectOnHover(true);
  Listen(mList, {u"NID_SELECTION_CHANGE", u"NID_ITEM_HOVER_CONDITION_CHANGE"});
  mWindow->Move(10, 30);
  EXPECT_EQ(Selected(), "1 [1,1]");
  mWindow->Move(10, 50);
  EXPECT_EQ(Selected(), "1 [1,1]");
  EXPECT_EQ(TakeHeard("NID_SELECTION_CHANGE"), 0);
  EXPECT_EQ(TakeHeard("NID_ITEM_HOVER_CONDITION_CHANGE"), 3);
}

TEST_F(ListBoxTest, AListMayBeEmptiedInsideItsOwnNotification) {
  for (const std::string act : {"empty", "destroy", "throw"}) {
    MakeList("abcdef");
    mList->SetMultiSelect(true);
    Listen(mList, {u"NID_SELECTION_CHANGE"});
    mEar->mAct = [&] {
      if (act == "empty") mList->RemoveAllItems();
      if (act == "destroy") mMain->Destroy();
      if (act == "throw") throw std::runtime_error(act);
    };
    for (const auto& step : std::vector<std::function<void()>>{
             [&] { mList->SelectRange(1, 4, true); }, [&] { Press(0); }, [&] { mList->RemoveItem(1); },
             [&] { mList->Deselect(2); }, [&] { mList->SetItemHidden(3, true); }}) {
      try {
        if (mList->GetRowCount() > 0) step();
      } catch (const std::runtime_error&) {
        EXPECT_EQ(act, "throw");
      }
    }
    mEar->mAct = nullptr;
    EXPECT_LE(mList->GetSelectedCount(), mList->GetItemCount());
    mEar->UnregisterAll();
    mMain->Destroy();
  }
}

}  // namespace
}  // namespace TF
