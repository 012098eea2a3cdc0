#include "TFFramework/Controls/PopupMenu.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Tests/TFFramework/Controls/MenuSkin.h"

namespace TF {
namespace {

// Hears what menus report.
class Owner : public ProbeControl {
 public:
  using ProbeControl::ProbeControl;

  void OnNotification(const RCPtr<LNotificationDistributor>& sender,
                      const RCPtr<LNotification>& notification) override {
    const RCPtr<LMenuActivationParam> chosen(notification->GetData());
    if (chosen) Tell(ToUtf8(notification->GetId()) + " " + std::to_string(chosen->mIndex));
    ProbeControl::OnNotification(sender, notification);
  }
};

// In a window of 400 by 300.
class PopupMenuTest : public MenuFixture {
 protected:
  void RegisterMore() override {
    MenuFixture::RegisterMore();
    mFactory->RegisterControlCreateFunction(u"Owner", MakeControl<Owner>);
  }
  void SetUp() override {
    mWindow->ProcessSize({400, 300});
    MakeControls(Part("Owner", "owner", Place(0, 50, 400, 250) + "TabStop='0'") +
                     TestMenu("file", Place(0, 0, 50, 24)) + TestMenu("edit", Place(50, 0, 50, 24)) +
                     TestMenu("far", Place(350, 0, 50, 24)),
                 TestPopupPart("contextMenu", ""));
  }
  RCPtr<LControl> Control(const char16_t* name) const { return mMain->FindChild(name); }
  RCPtr<TestPopup> Popup() const { return Control(u"owner")->FindChild(u"contextMenu"); }
  RCPtr<TestPopup> Sub() const { return Popup() ? RCPtr<TestPopup>(Popup()->GetSubmenu()) : nullptr; }
  RCPtr<TestPopup> PopupOf(const char16_t* combo) const { return Control(combo)->FindChild(u"popupMenu"); }
  // A context menu at a point of the window.
  void Open(const std::string& letters, int x = 20, int y = 80) {
    RCPtr<ProbeControl>(Control(u"owner"))->mContextMenu = MakeMenu(letters);
    mWindow->Click(x, y, kRight);
    ASSERT_TRUE(Popup());
    Forget();
  }
  // What the owner hears.
  std::vector<std::string> Chosen() const {
    Log events = TakeEvents();
    std::erase_if(events, [](const std::string& event) { return event.find("NID_") == std::string::npos; });
    return events;
  }
  bool IsEverythingClosed() {
    mWindow->Idle();
    return !Popup() && !mWindow->mCapture;
  }
};

TEST_F(PopupMenuTest, TheSelectionFollowsTheMouseAndAClickChooses) {
  Open("ab-!cd");
  EXPECT_EQ(Popup()->GetWindowPosition(), (PointT<double>{20, 80}));
  EXPECT_EQ(Popup()->GetBounds().mHeight, 5 * kRow);
  for (const auto& [y, shown] : {std::pair(85, "abcd 0"), std::pair(105, "abcd 1"), std::pair(125, "abcd 1"),
                                 std::pair(145, "abcd 1"), std::pair(165, "abcd 4")}) {
    mWindow->Move(30, y);
    EXPECT_EQ(Show(Popup()), shown) << y;
  }
  mWindow->Press();
  Wait(0.5);
  mWindow->Idle();
  mWindow->LetGo();
  EXPECT_EQ(Chosen(), Log{"owner NID_d 4"});
  EXPECT_TRUE(IsEverythingClosed());
  Open("a");
  mWindow->Click(30, 85);
  EXPECT_EQ(Chosen(), Log{"owner NID_a 0"});
  EXPECT_TRUE(IsEverythingClosed());
}

TEST_F(PopupMenuTest, WhatCannotBeChosenStaysOpenAndAPressOutsideCloses) {
  Open("!a-b");
  mWindow->Click(30, 85);
  mWindow->Click(30, 105);
  EXPECT_EQ(Show(Popup()), "ab -1");
  mWindow->Click(300, 200);
  EXPECT_EQ(Chosen(), Log());
  EXPECT_TRUE(IsEverythingClosed());
}

TEST_F(PopupMenuTest, OpensWhereTheWindowLeavesRoom) {
  struct Case {
    int mX, mY;
    PointT<double> mPlace;
  };
  for (const Case& each :
       {Case{5, 55, {5, 55}}, Case{395, 55, {300, 55}}, Case{5, 295, {5, 240}}, Case{395, 295, {300, 240}}}) {
    Open("abc", each.mX, each.mY);
    EXPECT_EQ(Popup()->GetWindowPosition(), each.mPlace);
    Key(kEscape);
    EXPECT_TRUE(IsEverythingClosed());
  }
  Open("abcdefghijklmnopqrstuvwxyz");
  EXPECT_EQ(Popup()->GetWindowPosition().mY, 0);
  EXPECT_EQ(Popup()->GetBounds().mHeight, 300);
}

TEST_F(PopupMenuTest, ASubmenuOpensAfterAMoment) {
  Open("aBcD");
  mWindow->Move(30, 105);
  Wait(0.25);
  mWindow->Idle();
  EXPECT_EQ(Show(Sub()), "closed");
  Wait(0.001);
  mWindow->Idle();
  EXPECT_EQ(Show(Sub()), "xy -1");
  EXPECT_EQ(Sub()->GetWindowPosition(), (PointT<double>{120, 100}));
  // On the way back and forth it stays, and its item is selected.
  mWindow->Move(30, 85);
  mWindow->Move(130, 125);
  PassDelay();
  EXPECT_EQ(Show(Sub()), "xy 1");
  EXPECT_EQ(Popup()->GetCaret(), 1);
  mWindow->Move(30, 85);
  PassDelay();
  EXPECT_EQ(Show(Sub()), "closed");
  // Moving on within the time opens nothing.
  mWindow->Move(30, 105);
  Wait(0.2);
  mWindow->Idle();
  mWindow->Move(30, 125);
  PassDelay();
  EXPECT_EQ(Show(Sub()), "closed");
  EXPECT_EQ(Popup()->mIdleRefCount, 0);
  mWindow->Move(30, 145);
  PassDelay();
  mWindow->Click(130, 165);
  EXPECT_EQ(Chosen(), Log{"owner NID_Dy 1"});
  EXPECT_TRUE(IsEverythingClosed());
}

TEST_F(PopupMenuTest, ASubmenuGoesToTheSideThatHasRoom) {
  struct Case {
    int mX, mY;
    PointT<double> mPlace;
  };
  for (const Case& each : {Case{20, 80, {120, 80}}, Case{290, 80, {190, 80}}, Case{20, 279, {120, 260}}}) {
    Open("A", each.mX, each.mY);
    EXPECT_EQ(Popup()->OpenSubmenu(0), kSuccess);
    EXPECT_EQ(Sub()->GetWindowPosition(), each.mPlace) << each.mX;
    Popup()->CloseAll();
    EXPECT_TRUE(IsEverythingClosed());
  }
  mWindow->ProcessSize({150, 300});
  Open("A", 40, 80);
  Popup()->OpenSubmenu(0);
  EXPECT_EQ(Sub()->GetWindowPosition().mX, 140);
  EXPECT_EQ(Popup()->OpenSubmenu(1), kInvalidArgument);
}

TEST_F(PopupMenuTest, KeysWalkThroughTheChain) {
  Open("a-B!c");
  struct Case {
    std::uint32_t mKey;
    const char* mPopup;
    const char* mSub;
  };
  const Case cases[] = {
      {kLeftKey, "aBc -1", "closed"}, {kRightKey, "aBc -1", "closed"}, {kDown, "aBc 0", "closed"},
      {kRightKey, "aBc 0", "closed"}, {kDown, "aBc 2", "closed"},      {kDown, "aBc 2", "closed"},
      {kRightKey, "aBc 2", "xy 0"},   {kDown, "aBc 2", "xy 1"},        {kUp, "aBc 2", "xy 0"},
      {kLeftKey, "aBc 2", "closed"},  {kEnter, "aBc 2", "xy 0"},       {kDown, "aBc 2", "xy 1"}};
  for (const Case& each : cases) {
    Key(each.mKey);
    mWindow->Idle();
    EXPECT_EQ(Show(Popup()), each.mPopup) << &each - cases;
    EXPECT_EQ(Show(Sub()), each.mSub) << &each - cases;
  }
  Key(kEnter);
  EXPECT_EQ(Chosen(), Log{"owner NID_By 1"});
  EXPECT_TRUE(IsEverythingClosed());
  Open("A");
  Key(kDown);
  Key(kRightKey);
  Key(kEscape);
  EXPECT_EQ(Chosen(), Log());
  EXPECT_TRUE(IsEverythingClosed());
  Open("ab");
  EXPECT_EQ(Popup()->SwapItems(0, 1), kNotImplemented);
}

TEST_F(PopupMenuTest, ItemsMayGoWhileThePopupIsOpen) {
  Open("aBc");
  mWindow->Move(30, 105);
  PassDelay();
  ASSERT_TRUE(Sub());
  Popup()->SetMenu(MakeMenu("z"));
  mWindow->Idle();
  EXPECT_EQ(Show(Popup()), "z -1");
  EXPECT_EQ(Popup()->GetBounds().mHeight, kRow);
  EXPECT_FALSE(Sub());
  Popup()->SetMenu(MakeMenu(""));
  mWindow->Move(31, 85);
  Key(kEnter);
  Key(kDown);
  EXPECT_EQ(Chosen(), Log());
  EXPECT_EQ(Popup()->SetMenu(nullptr), kInvalidArgument);
}

TEST_F(PopupMenuTest, TheOwnerMayGoWhileItIsTold) {
  for (const bool throws : {false, true}) {
    Open("a");
    ProbeControl::gAct = [&](ProbeControl& control, const std::string& event) {
      if (event.find("NID_a") == std::string::npos) return;
      if (throws) throw std::runtime_error("a fault");
      control.Destroy();
    };
    if (throws) {
      mWindow->Move(30, 85);
      mWindow->Press();
      EXPECT_THROW(mWindow->LetGo(), std::runtime_error);
      ProbeControl::gAct = nullptr;
      EXPECT_FALSE(mWindow->mCapture);
      return;
    }
    mWindow->Click(30, 85);
    ProbeControl::gAct = nullptr;
    EXPECT_FALSE(Control(u"owner"));
    TearDown();
    SetUp();
  }
}

TEST_F(PopupMenuTest, AComboMenuOpensAndClosesByItsFace) {
  PopupOf(u"file")->SetMenu(MakeMenu("ab"));
  mWindow->Click(10, 10);
  EXPECT_EQ(Show(PopupOf(u"file")), "ab -1");
  EXPECT_EQ(PopupOf(u"file")->GetWindowPosition(), (PointT<double>{0, 24}));
  mWindow->Click(10, 10);
  EXPECT_EQ(Show(PopupOf(u"file")), "closed");
  mWindow->Click(10, 10);
  mWindow->Click(10, 50);
  EXPECT_EQ(Chosen(), Log());
  EXPECT_EQ(Show(PopupOf(u"file")), "closed");
  mWindow->Click(10, 10);
  mWindow->Click(300, 200);
  EXPECT_EQ(Show(PopupOf(u"file")), "closed");
  EXPECT_TRUE(PopupOf(u"file")->GetParent());
}

TEST_F(PopupMenuTest, PressDragAndReleaseChooseInOneGesture) {
  PopupOf(u"file")->SetMenu(MakeMenu("ab"));
  PopupOf(u"file")->SetReceiver(RCPtr<LNotificationReceiver>(Control(u"owner")));
  mWindow->Move(10, 10);
  mWindow->Press();
  mWindow->Move(10, 30);
  mWindow->Move(10, 55);
  EXPECT_EQ(Show(PopupOf(u"file")), "ab 1");
  mWindow->LetGo();
  EXPECT_EQ(Chosen(), Log{"owner NID_b 1"});
  EXPECT_EQ(Show(PopupOf(u"file")), "closed");
}

TEST_F(PopupMenuTest, TheMouseWalksThroughAnOpenBar) {
  for (const char16_t* name : {u"file", u"edit", u"far"}) PopupOf(name)->SetMenu(MakeMenu("ab"));
  mWindow->Move(60, 10);
  EXPECT_EQ(Show(PopupOf(u"edit")), "closed");
  mWindow->Click(10, 10);
  mWindow->Move(60, 10);
  EXPECT_EQ(Show(PopupOf(u"file")) + Show(PopupOf(u"edit")), "closedab -1");
  mWindow->Move(360, 10);
  EXPECT_EQ(Show(PopupOf(u"edit")) + Show(PopupOf(u"far")), "closedab -1");
  EXPECT_EQ(PopupOf(u"far")->GetWindowPosition().mX, 300);
  EXPECT_EQ(RCPtr<TestCombo>(Control(u"edit"))->IsPopupShown(), false);
}

}  // namespace
}  // namespace TF
