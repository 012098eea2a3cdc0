#include "TFFramework/ControlBase/ControlWindow.h"

#include <string>
#include <vector>

#include "Tests/TFFramework/ControlBase/ControlFixture.h"

namespace TF {
namespace {

// A window without a screen that writes down what its controls ask for.
class RecordingWindow : public LRootWindow, public IControlWindow {
 public:
  void SetTitle(const String& title) override { mAsked.push_back("title " + ToUtf8(title)); }
  void SetClientSize(const SizeT<std::int32_t>& size) override {
    mAsked.push_back("size " + std::to_string(size.mWidth) + " " + std::to_string(size.mHeight));
  }
  bool GetLayoutDesktop(LayoutDesktop& desktop) override {
    desktop = {{10, 20}, {320, 200}, {1000, 800}, {30, 40}};
    return true;
  }
  std::uintptr_t SetCursor(std::uintptr_t cursor) override { return std::exchange(mCursor, cursor); }
  void RepeatHitTest() override { mAsked.push_back("hit test"); }
  void ForgetControl(LControl& control) override { mAsked.push_back("forget " + ToUtf8(control.GetName())); }

  std::vector<std::string> TakeAsked() { return std::exchange(mAsked, {}); }

  std::uintptr_t mCursor = 7;

 private:
  std::vector<std::string> mAsked;
};

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

  const RCPtr<RecordingWindow> mWindow = MakeRC<RecordingWindow>();
  RCPtr<ClockApplication> mApplication;
  RCPtr<LControl> mMain;
};

TEST_F(ControlWindowTest, TheWindowTakesTheSizeOfItsTopControl) {
  EXPECT_EQ(mWindow->TakeAsked(), std::vector<std::string>{"size 300 100"});
  mMain->Relayout();
  EXPECT_TRUE(mWindow->TakeAsked().empty());
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
