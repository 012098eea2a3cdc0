#include "TFFramework/ControlBase/ControlWindow.h"

#include <string>
#include <vector>

#include "Tests/TFFramework/ControlBase/ControlFixture.h"
#include "Tests/TFFramework/ControlBase/StubWindow.h"

namespace TF {
namespace {

class PlainControl : public LControl {
 public:
  using LControl::LControl;
  void SetHover(bool hover) {
    mHover = hover;
    UpdateConditions();
  }
  void ProcessRootWindowAquired() override {
    ++mAcquired;
    LControl::ProcessRootWindowAquired();
  }
  std::int32_t mAcquired = 0;
};

class ControlWindowTest : public SkinDocumentFixture {
 protected:
  void SetUp() override {
    ASSERT_EQ(
        Load(SkinDocument("<Skin><SubControl Class='Plain' Name='main' XSizeAbs='300' YSizeAbs='100'><Skin>"
                          "<SubControl Class='Plain' Name='child'/></Skin></SubControl></Skin>")),
        kSuccess);
    mApplication = MakeRC<ClockApplication>(mFactory);
    mFactory->RegisterControlCreateFunction(u"Plain", MakeControl<PlainControl>);
    mMain = mFactory->CreateControl(u"main", RCPtr<LRootWindow>(mWindow));
    ASSERT_TRUE(mMain);
    mMain->Relayout();
  }
  void TearDown() override {
    mMain->Destroy();
    SkinDocumentFixture::TearDown();
  }

  const RCPtr<StubWindow> mWindow = MakeRC<StubWindow>();
  RCPtr<ClockApplication> mApplication;
  RCPtr<LControl> mMain;
};

TEST_F(ControlWindowTest, TheWindowTakesTheSizeOfItsTopControl) {
  EXPECT_EQ(mWindow->TakeAsked(), std::vector<std::string>{"size 300 100"});
  mMain->Relayout();
  EXPECT_TRUE(mWindow->TakeAsked().empty());
}

TEST_F(ControlWindowTest, AnotherSkinLeavesTheWindowsSizeAndBringsItsLimits) {
  const auto layout = MakeRC<LLayoutDescriptor>(*mMain->GetDescriptor()->mLayout);
  layout->Axis(LayoutAxis::kX).mSize.mAbs = 500;
  layout->Axis(LayoutAxis::kX).mMaximum.mAbs = 350;
  const auto descriptor = mFactory->CopyDescriptor(mMain->GetDescriptor(), layout, u"main");
  EXPECT_EQ(mMain->ApplyDescriptor(descriptor), kSuccess);
  EXPECT_EQ(mMain->GetBounds().mWidth, 300);
  EXPECT_EQ(mMain->ConstrainSize({400, 100}).mWidth, 350);
}

TEST_F(ControlWindowTest, OnlyTheTopControlNamesTheWindow) {
  mWindow->TakeAsked();
  mMain->FindChild(u"child")->SetText(u"label");
  EXPECT_TRUE(mWindow->TakeAsked().empty());
  mMain->SetText(u"title");
  EXPECT_EQ(mWindow->TakeAsked(), std::vector<std::string>{"title title"});
}

TEST_F(ControlWindowTest, ADestroyedTreeIsForgottenByTheWindowFromTheInside) {
  mWindow->TakeAsked();
  mMain->Destroy();
  EXPECT_EQ(mWindow->TakeAsked(), (std::vector<std::string>{"forget child", "forget main"}));
  EXPECT_FALSE(mMain->GetRootWindow());
}

TEST_F(ControlWindowTest, AWindowIsAnnouncedOnceToEachControl) {
  EXPECT_EQ(RCPtr<PlainControl>(mMain)->mAcquired, 1);
  EXPECT_EQ(RCPtr<PlainControl>(mMain->FindChild(u"child"))->mAcquired, 1);
  const auto late = mFactory->CopyDescriptor(mMain->GetDescriptor(), MakeRC<LLayoutDescriptor>(), u"late");
  const auto made = RCPtr<PlainControl>(mFactory->CreateSubControl(mMain, late));
  EXPECT_EQ(made->mAcquired, 1);
  EXPECT_EQ(RCPtr<PlainControl>(made->FindChild(u"child"))->mAcquired, 1);
}

TEST_F(ControlWindowTest, ACursorIsShownWhileTheMouseIsOverTheControl) {
  const auto child = RCPtr<PlainControl>(mMain->FindChild(u"child"));
  child->SetCursor(5);
  EXPECT_EQ(mWindow->mCursor, 7U);
  child->SetHover(true);
  EXPECT_EQ(mWindow->mCursor, 5U);
  child->SetHover(false);
  EXPECT_EQ(mWindow->mCursor, 7U);
}

TEST_F(ControlWindowTest, AControlThatIsHiddenUnderTheMouseAsksWhatLiesBelow) {
  const auto child = RCPtr<PlainControl>(mMain->FindChild(u"child"));
  child->SetHover(true);
  mWindow->TakeAsked();
  child->SetVisible(false);
  EXPECT_EQ(mWindow->TakeAsked(), std::vector<std::string>{"hit test"});
}

}  // namespace
}  // namespace TF
