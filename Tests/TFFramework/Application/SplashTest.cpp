#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "TFFramework/Application/SplashProgress.h"
#include "TFFramework/Application/SplashWindow.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/XServer.h"

namespace {

using TestSupport::Eventually;
using TF::SplashMessageId;
using TF::SplashProgress;

constexpr std::uint32_t Words(std::uint32_t first, std::uint32_t last) {
  return first | last << 16;
}

TEST(SplashProgressTest, ARunStepsInWholePositionsFourTimesASecond) {
  struct Case {
    std::uint32_t mFirst, mLast, mSeconds;
    int mSteps;
    std::int32_t mEnd;
  };
  for (const Case& run : {Case{0, 100, 8, 32, 96}, Case{50, 100, 1, 4, 98}, Case{100, 0, 5, 20, 0},
                          Case{0, 10, 100, 400, 0}, Case{10, 90, 0, 0, 90}}) {
    SplashProgress progress;
    EXPECT_FALSE(progress.HasBar());
    EXPECT_TRUE(progress.Take({SplashMessageId::kRun, Words(run.mFirst, run.mLast), run.mSeconds}));
    EXPECT_TRUE(progress.HasBar());
    EXPECT_EQ(progress.GetPosition(), static_cast<std::int32_t>(run.mSeconds > 0 ? run.mFirst : run.mLast));
    int steps = 0;
    for (; progress.IsStepping() && steps < 1000; ++steps) progress.OnTimer();
    EXPECT_EQ(steps, run.mSteps);
    EXPECT_EQ(progress.GetPosition(), run.mEnd);
  }
}

TEST(SplashProgressTest, APositionEndsTheSteppingAndStaysInsideTheBar) {
  SplashProgress progress;
  progress.Take({SplashMessageId::kRun, Words(0, 100), 8});
  progress.OnTimer();
  progress.Take({SplashMessageId::kSetPosition, 0xFFFFFFFF, 0});
  EXPECT_FALSE(progress.IsStepping());
  progress.OnTimer();
  EXPECT_EQ(progress.GetPosition(), 100);
  EXPECT_FALSE(progress.Take({SplashMessageId::kQuit}));
}

TEST(SplashProgressTest, AColourMakesTheBar) {
  SplashProgress progress;
  progress.Take({SplashMessageId::kSetColor, 0, 0x00123456});
  EXPECT_TRUE(progress.HasBar());
  EXPECT_EQ(progress.GetColor(), 0xFF123456U);
}

class SplashWindowTest : public testing::Test {
 protected:
  static constexpr std::int16_t kLeft = (800 - 200) / 2;
  static constexpr std::int16_t kTop = (600 - 100) / 2;

  TF::RCPtr<TF::LBitmap> MakePicture(float alpha) {
    return TF::LBitmap::CreateFilledBitmap({200, 100}, {1, 0, 0, alpha});
  }
  bool Shows(int x, int y, std::uint32_t color) {
    return Eventually([&] {
      return mScreen.At(static_cast<std::int16_t>(kLeft + x), static_cast<std::int16_t>(kTop + y)) == color;
    });
  }

  TestSupport::XServer mServer;
  TestSupport::ScreenPixels mScreen;
};

TEST_F(SplashWindowTest, ShowsItsPictureAndABarInTheMiddleOfTheScreen) {
  const std::uint32_t nothing = mScreen.At(0, 0);
  {
    TF::LSplashWindow splash;
    splash.SetImage(MakePicture(1));
    splash.SetImage(MakePicture(0));
    splash.Start();
    EXPECT_TRUE(Shows(0, 0, 0xFF0000));
    EXPECT_TRUE(Shows(199, 99, 0xFF0000));
    EXPECT_TRUE(Shows(-1, 0, nothing));
    EXPECT_TRUE(Shows(200, 50, nothing));

    splash.SetProgress(50);
    const std::uint32_t fill = SplashProgress::kDefaultColor & 0xFFFFFF;
    EXPECT_TRUE(Shows(6, 88, fill));
    EXPECT_TRUE(Shows(98, 88, fill));
    EXPECT_TRUE(Shows(104, 88, 0xFFFFFF));
    EXPECT_TRUE(Shows(3, 88, 0xFF0000));
    EXPECT_TRUE(Shows(6, 79, 0xFF0000));
    EXPECT_TRUE(Shows(6, 97, 0xFF0000));

    splash.RunProgress(0, 100, 8);
    EXPECT_TRUE(Shows(98, 88, 0xFFFFFF));
    splash.SetProgress(100);
    EXPECT_TRUE(Shows(193, 88, fill));
  }
  EXPECT_TRUE(Shows(0, 0, nothing));
}

TEST_F(SplashWindowTest, ATranslucentPictureLiesOnWhite) {
  TF::LSplashWindow splash;
  splash.SetImage(MakePicture(0.5F));
  splash.Start();
  EXPECT_TRUE(Shows(10, 10, 0xFF7F7F));
}

TEST(SplashWindowWithoutDisplay, GoesWhenTheServerHasGone) {
  std::optional<TestSupport::XServer> server(std::in_place);
  TF::LSplashWindow splash;
  splash.SetImage(TF::LBitmap::CreateFilledBitmap({20, 10}, {1, 0, 0, 1}));
  splash.Start();
  server.reset();
  splash.SetProgress(50);
}

TEST(SplashWindowWithoutDisplay, StartsNothingAndWaitsForNothing) {
  unsetenv("DISPLAY");
  TF::LSplashWindow splash;
  splash.Start();
  splash.RunProgress(0, 100, 8);
  TF::LSplashWindow withPicture;
  withPicture.SetImage(TF::LBitmap::CreateFilledBitmap({20, 10}, {1, 0, 0, 1}));
  withPicture.Start();
  withPicture.SetProgress(100);
}

}  // namespace
