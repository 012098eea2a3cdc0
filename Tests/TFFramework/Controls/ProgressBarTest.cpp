#include "TFFramework/Controls/ProgressBar.h"

#include <string>

#include "App/Resources/ProgramResources.h"
#include "Tests/TFFramework/Controls/BarSkin.h"

namespace TF {
namespace {

constexpr std::uint32_t kEnglish = 0x0409;
constexpr std::uint32_t kGerman = 0x0407;

// A bar of 200 by 20 pixels.
class ProgressBarTest : public BarFixture {
 protected:
  void RegisterMore() override {
    mFactory->RegisterControlCreateFunction(u"Progress", MakeControl<LProgressBar>);
    mFactory->RegisterControlCreateFunction(u"Label", MakeControl<LLabel>);
    RegisterProgramResources();
    EXPECT_EQ(mFactory->LoadStrings(u"::FRAMEWORK_STRINGS", u"::NONE", mLanguage), kSuccess);
  }
  static std::string Parts() {
    return Part("Box", "activeOverlay", "XSizeAbs='0' YSizeAbs='20'") +
           Part("Label", "timeRemainingLabel", "XSizeAbs='200' YSizeAbs='20'") +
           Part("Label", "percentCompleteLabel", "XSizeAbs='40' YSizeAbs='20'");
  }
  void MakeBar(const std::string& parts = Parts()) {
    MakeControls(Part("Progress", "bar", Place(10, 10, 200, 20), parts));
    mBar = Find<LProgressBar>(u"bar");
  }
  void TearDown() override {
    mBar = nullptr;
    BarFixture::TearDown();
  }
  // The width that is filled; -1 when nothing is.
  double Fill() const {
    const RCPtr<LControl> overlay = mBar->FindChild(u"activeOverlay");
    return overlay->IsShown(false) ? overlay->GetBounds().mWidth : -1;
  }
  std::string Percent() const { return ToUtf8(mBar->FindChild(u"percentCompleteLabel")->GetText()); }
  // Empty when it is hidden.
  std::string Time() const {
    const RCPtr<LControl> label = mBar->FindChild(u"timeRemainingLabel");
    return label->GetLayout()->IsVisible ? ToUtf8(label->GetText()) : "";
  }

  std::uint32_t mLanguage = kEnglish;
  RCPtr<LProgressBar> mBar;
};

TEST_F(ProgressBarTest, ItsValueFillsItAndIsToldInPercent) {
  MakeBar();
  struct Case {
    double mValue;
    double mFill;
    const char* mPercent;
  };
  for (const Case& each :
       {Case{0, -1, "0"}, Case{0.002, -1, "0"}, Case{0.004, 1, "0"}, Case{0.5, 100, "50"},
        Case{0.4949, 99, "49"}, Case{0.0125, 3, "1"}, Case{1, 200, "100"}, Case{0, -1, "0"}}) {
    mBar->SetValue(each.mValue);
    EXPECT_EQ(Fill(), each.mFill) << each.mValue;
    EXPECT_EQ(Percent(), each.mPercent) << each.mValue;
  }
  mBar->SetValue(0.5);
  LayoutPosition position;
  LayoutSize size;
  mBar->GetAxisLayout(LayoutAxis::kX, position, size);
  size.mAbs = 300;
  mBar->SetAxisLayout(LayoutAxis::kX, position, size);
  EXPECT_EQ(Fill(), 150);
  EXPECT_TRUE(mBar->IsNotFocusable());
}

TEST_F(ProgressBarTest, TimeIsToldInWordsOfTheUsersLanguage) {
  MakeBar();
  EXPECT_EQ(Time(), "");
  struct Case {
    std::int32_t mSeconds;
    const char* mText;
  };
  for (const Case& each :
       {Case{0, "0 Seconds Remaining"}, Case{1, "1 Second Remaining"}, Case{59, "59 Seconds Remaining"},
        Case{60, "1 Minute 0 Seconds Remaining"}, Case{121, "2 Minutes 1 Second Remaining"},
        Case{3600, "1 Hour 0 Minutes 0 Seconds Remaining"},
        Case{3725, "1 Hour 2 Minutes 5 Seconds Remaining"}, Case{7261, "2 Hours 1 Minute 1 Second Remaining"},
        Case{-5, "0 Seconds Remaining"}, Case{INT32_MAX, "596523 Hours 14 Minutes 7 Seconds Remaining"}}) {
    mBar->SetTimeRemaining(each.mSeconds);
    EXPECT_EQ(Time(), each.mText) << each.mSeconds;
  }
  mLanguage = kGerman;
  MakeBar();
  mBar->SetTimeRemaining(7261);
  EXPECT_EQ(Time().substr(0, 30), "2 Stunden 1 Minute 1 Sekunde v");
}

TEST_F(ProgressBarTest, TheTimeLeftIsEstimatedByTheCourseSoFar) {
  MakeBar();
  mBar->SetValue(0.2);
  Wait(100);
  mBar->SetEstimateTime(true);
  mBar->SetValue(0.3);  // At the same moment: no time has passed to go by.
  EXPECT_EQ(Time(), "");
  Wait(2);
  mBar->SetEstimateTime(true);  // Goes on.
  mBar->SetValue(0.4);          // 0.2 in 2 seconds.
  EXPECT_EQ(Time(), "6 Seconds Remaining");
  Wait(5);
  mBar->SetValue(0.35);  // Back: nothing is known.
  EXPECT_EQ(Time(), "6 Seconds Remaining");
  mBar->SetValue(0.9);  // 0.7 in 7 seconds.
  EXPECT_EQ(Time(), "1 Second Remaining");
  Wait(1);
  mBar->SetValue(1);
  EXPECT_EQ(Time(), "0 Seconds Remaining");
  // It has ended.
  mBar->SetValue(0);
  Wait(10);
  mBar->SetValue(0.5);
  EXPECT_EQ(Time(), "0 Seconds Remaining");
}

TEST_F(ProgressBarTest, AValueBehindTheStartTellsNoTime) {
  MakeBar();
  mBar->SetValue(0.5);
  mBar->SetEstimateTime(true);
  Wait(3);
  mBar->SetValue(0.1);
  EXPECT_EQ(Time(), "");
  mBar->SetEstimateTime(false);
  mBar->SetEstimateTime(true);
  Wait(3);
  mBar->SetValue(1e-300);
  mBar->SetValue(0.2);
  EXPECT_EQ(Time(), "24 Seconds Remaining");
}

TEST_F(ProgressBarTest, ANewSkinFindsItWhereItWas) {
  MakeBar();
  mBar->SetValue(0.5);
  mBar->SetTimeRemaining(61);
  ASSERT_EQ(mBar->ApplyDescriptor(mBar->GetDescriptor()), kSuccess);
  EXPECT_EQ(mBar->GetValue(), 0.5);
  EXPECT_EQ(Fill(), 100);
  EXPECT_EQ(Time(), "1 Minute 1 Second Remaining");
}

TEST_F(ProgressBarTest, ASkinThatLacksAPartMakesNone) {
  for (const char* missing : {"activeOverlay", "timeRemainingLabel", "percentCompleteLabel"}) {
    std::string parts = Parts();
    parts.replace(parts.find(missing), 2, "xx");
    MakeBar(parts);
    EXPECT_FALSE(mBar) << missing;
    EXPECT_NE(mLog.Text().find("A progress bar of the skin lacks"), std::string::npos);
  }
}

}  // namespace
}  // namespace TF
