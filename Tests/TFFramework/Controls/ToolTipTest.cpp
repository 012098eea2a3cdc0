#include "TFFramework/Controls/ToolTip.h"

#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

// Two controls beside each other, in a window of 400 by 300, with tips of 60 by 30 pixels.
class ToolTipTest : public BarFixture {
 protected:
  void RegisterMore() override { mFactory->RegisterControlCreateFunction(u"Tip", MakeControl<LToolTip>); }
  void SetUp() override {
    mWindow->ProcessSize({400, 300});
    MakeControls(Part("Box", "a", Place(0, 0, 200, 300)) + Part("Box", "b", Place(200, 0, 200, 300)),
                 Part("Tip", "toolTip",
                      "ClipToParent='False' Z_Order='2000' TabStop='-1' XSizeAbs='60' YSizeAbs='30'"));
    mA = mMain->FindChild(u"a");
    mB = mMain->FindChild(u"b");
    mA->SetToolTipText(u"first");
    mB->SetToolTipText(u"second");
    mWindow->mMouse = {50, 40};
    Pass(10);  // Whatever another test has hidden is long ago.
  }
  void TearDown() override {
    mA = mB = nullptr;
    BarFixture::TearDown();
  }
  void Pass(double seconds) {
    Wait(seconds);
    mWindow->Idle();
  }
  static RCPtr<LToolTip> TipOf(const RCPtr<LControl>& control) { return control->FindChild(u"toolTip"); }
  static bool IsShown(const RCPtr<LControl>& control) {
    return TipOf(control) && TipOf(control)->IsShown(true);
  }
  // Where it lies in the window.
  static PointT<double> PlaceOf(const RCPtr<LControl>& control) {
    return TipOf(control)->GetWindowPosition();
  }

  RCPtr<LControl> mA, mB;
};

TEST_F(ToolTipTest, ItShowsAfterAWhileBelowTheMouseAndGoesByItself) {
  mA->ShowToolTip(true);
  Pass(0.5);
  EXPECT_FALSE(IsShown(mA));
  Pass(0.001);
  ASSERT_TRUE(IsShown(mA));
  EXPECT_EQ(TipOf(mA)->GetText(), u"first");
  EXPECT_EQ(PlaceOf(mA).mX, 50);
  EXPECT_EQ(PlaceOf(mA).mY, 60);
  EXPECT_TRUE(TipOf(mA)->IsNotFocusable());
  Pass(5);
  EXPECT_TRUE(IsShown(mA));
  Pass(0.001);
  Pass(0);
  EXPECT_FALSE(TipOf(mA));
  EXPECT_EQ(mA->GetChildCount(), 0);
}

TEST_F(ToolTipTest, OneThatWasNeverShownLeavesNoTrace) {
  mA->ShowToolTip(true);
  Pass(0.4);
  mA->ShowToolTip(false);
  Pass(0);
  EXPECT_EQ(mA->GetChildCount(), 0);
  mB->ShowToolTip(true);
  Pass(0.01);
  EXPECT_FALSE(IsShown(mB));
  Pass(0.5);
  EXPECT_TRUE(IsShown(mB));
}

TEST_F(ToolTipTest, TheNextOneComesAtOnceWhenItComesSoon) {
  for (const auto& [seconds, isShown] : {std::pair(0.049, true), std::pair(0.05, false)}) {
    mA->ShowToolTip(true);
    Pass(0.6);
    ASSERT_TRUE(IsShown(mA));
    mA->ShowToolTip(false);
    Wait(seconds);
    mB->ShowToolTip(true);
    EXPECT_EQ(IsShown(mB), isShown) << seconds;
    mB->ShowToolTip(false);
    Pass(10);
  }
}

TEST_F(ToolTipTest, AnotherOnOneControlIsMadeWhileTheOldOneGoes) {
  mA->ShowToolTip(true);
  Pass(0.6);
  mA->ShowToolTip(false);
  mA->SetToolTipText(u"third");
  mA->ShowToolTip(true);
  ASSERT_TRUE(IsShown(mA));
  EXPECT_EQ(TipOf(mA)->GetText(), u"third");
  Pass(0);
  EXPECT_EQ(mA->GetChildCount(), 1);
  // Asked for again, it stays one and still goes.
  mA->ShowToolTip(true);
  Pass(6);
  Pass(6);
  Pass(0);
  EXPECT_EQ(mA->GetChildCount(), 0);
}

TEST_F(ToolTipTest, ItStaysInTheWindowWhateverItsParentHasScrolled) {
  struct Case {
    PointT<std::int32_t> mMouse;
    PointT<double> mPlace;
  };
  mB->SetScrollOffset({30, 70});
  for (const Case& each :
       {Case{{390, 295}, {340, 270}}, Case{{330, 200}, {330, 220}}, Case{{341, 251}, {340, 270}}}) {
    mWindow->mMouse = each.mMouse;
    mB->ShowToolTip(true);
    Pass(0.6);
    ASSERT_TRUE(IsShown(mB));
    EXPECT_EQ(PlaceOf(mB).mX, each.mPlace.mX);
    EXPECT_EQ(PlaceOf(mB).mY, each.mPlace.mY);
    mB->ShowToolTip(false);
    Pass(10);
  }
}

TEST_F(ToolTipTest, ItMayGoWithItsControl) {
  mA->ShowToolTip(true);
  Pass(0.6);
  mA->Destroy();
  mA = nullptr;
  Pass(6);
  mB->ShowToolTip(true);
  mMain->Destroy();
  mB = nullptr;
  Pass(6);
  EXPECT_EQ(mLog.Text(), "");
}

}  // namespace
}  // namespace TF
