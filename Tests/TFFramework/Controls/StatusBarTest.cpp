#include "TFFramework/Controls/StatusBar.h"

#include <memory>
#include <thread>
#include <utility>

#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

class CountingLabel : public LLabel {
 public:
  using LLabel::LLabel;
  TFRESULT SetText(const String& text) override {
    ++mTexts;
    return LLabel::SetText(text);
  }
  int mTexts = 0;
};

class StatusBarTest : public BarFixture {
 protected:
  void RegisterMore() override {
    mFactory->RegisterControlCreateFunction(u"Status", MakeControl<LStatusBar>);
    mFactory->RegisterControlCreateFunction(u"Label", MakeControl<CountingLabel>);
    LoadTexts("Box|bar", {{"LABEL", "Ready"}});
  }
  void MakeBar(const std::string& label = "label1") {
    MakeControls(Part("Status", "bar", Place(0, 280, 400, 20), Part("Label", label, "XSizeAbs='400'")));
    mBar = Find<LStatusBar>(u"bar");
  }
  void TearDown() override {
    mBar = nullptr;
    BarFixture::TearDown();
  }
  std::string Shown() const { return ToUtf8(mBar->FindChild(u"label1")->GetText()); }

  RCPtr<LStatusBar> mBar;
};

TEST_F(StatusBarTest, OfABurstOfTextsTheLastOneShows) {
  MakeBar();
  EXPECT_EQ(mBar->GetDefaultText(), u"Ready");
  EXPECT_TRUE(mBar->IsNotFocusable());
  for (const char16_t* text : {u"a", u"b", u"c"}) mBar->PostText(text);
  EXPECT_EQ(Shown(), "");
  const RCPtr<CountingLabel> label = mBar->FindChild(u"label1");
  label->mTexts = 0;
  mWindow->Idle();
  EXPECT_EQ(Shown(), "c");
  EXPECT_EQ(label->mTexts, 1);
  // A text that is said at once is the last word.
  mBar->PostText(u"d");
  mBar->SetTextNow(u"e");
  EXPECT_EQ(Shown(), "e");
  mWindow->Idle();
  EXPECT_EQ(Shown(), "e");
  std::thread([this] { mBar->PostText(u"from another thread"); }).join();
  mWindow->Idle();
  EXPECT_EQ(Shown(), "from another thread");
}

TEST_F(StatusBarTest, ItGoesWithItsTreeAndTakesNoTextsThen) {
  MakeBar();
  ASSERT_EQ(mBar->ApplyDescriptor(mBar->GetDescriptor()), kSuccess);
  mBar->PostText(u"last");
  // Carried by the bar, and so gone when it is.
  auto tag = std::make_shared<int>(0);
  const std::weak_ptr<int> alive = tag;
  mBar->SetTag(MakeRC<LHolder<std::shared_ptr<int>>>(std::move(tag)));
  mBar->Destroy();
  mBar->PostText(u"too late");
  mBar->SetTextNow(u"too late");
  mWindow->Idle();
  EXPECT_FALSE(alive.expired());
  mBar = nullptr;
  EXPECT_TRUE(alive.expired());
}

TEST_F(StatusBarTest, ItNeedsItsLabel) {
  MakeBar("label2");
  EXPECT_FALSE(mBar);
}

}  // namespace
}  // namespace TF
