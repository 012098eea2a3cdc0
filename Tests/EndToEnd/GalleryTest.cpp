#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <sstream>
#include <string>

#include "Tests/EndToEnd/ProgramRun.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WindowManager.h"
#include "Tests/Support/XServer.h"

namespace EndToEnd {
namespace {

using TestSupport::Eventually;
using TestSupport::Shell;

// The gallery in a real window on a real X server, driven by its mouse and keyboard.
class GalleryTest : public testing::Test {
 protected:
  static constexpr std::uint32_t kChosen = 0x0A626C;  // The accent: the page that is shown.
  static constexpr std::uint32_t kTint = 0xD5EAEC;
  static constexpr int kTabDrag = 345, kTabFocus = 430, kTabY = 16;

  void Start() {
    mRun = std::make_unique<ProgramRun>(Options());
    ASSERT_TRUE(mRun->WaitForOutput("ready\n"));
    ASSERT_TRUE(Eventually([this] { return FindWindow() && HasFocus(); }));
  }
  ProgramOptions Options() const {
    ProgramOptions options;
    options.mProgram = "tessel-gallery";
    options.mEnvironment = {
        {"XDG_RUNTIME_DIR", mFolder.Path()}, {"XDG_CONFIG_HOME", mFolder.Path()}, {"WAYLAND_DISPLAY", ""}};
    return options;
  }
  bool FindWindow() {
    std::istringstream lines(Shell("wmctrl -l"));
    mWindow.clear();
    lines >> mWindow;
    if (!mWindow.empty()) mPlace = TestSupport::ReadPlace(mWindow);
    return !mWindow.empty();
  }
  bool HasFocus() const {
    return std::stoul(Shell("xdotool getwindowfocus 2>/dev/null || echo 0")) ==
           std::stoul(mWindow, nullptr, 16);
  }
  // Points count from the window's client area.
  std::string To(int x, int y) const {
    return " mousemove " + std::to_string(mPlace.mX + x) + " " + std::to_string(mPlace.mY + y) + " ";
  }
  void Mouse(const std::string& actions) const { Shell("xdotool" + actions); }
  void Click(int x, int y) const { Mouse(To(x, y) + "click 1"); }
  bool Shows(int x, int y, std::uint32_t color) const {
    return mScreen.Shows(mPlace.mX + x, mPlace.mY + y, color);
  }

  const TestSupport::TemporaryFolder mFolder;
  const TestSupport::XServer mServer{"1024x768x24"};
  const TestSupport::WindowManager mManager;
  const TestSupport::ScreenPixels mScreen;
  std::unique_ptr<ProgramRun> mRun;
  std::string mWindow;
  Platform::PixelRect mPlace;
};

TEST_F(GalleryTest, PagesClicksKeysAndDragsDoWhatTheySay) {
  Start();
  EXPECT_EQ(mPlace.mWidth, 640);
  EXPECT_EQ(mPlace.mHeight, 480);
  Click(kTabDrag, kTabY);
  ASSERT_TRUE(mRun->WaitForOutput("Drag page\n"));
  EXPECT_TRUE(Shows(30, 75, kTint));  // The box that can be carried.
  Mouse(To(60, 90) + "mousedown 1" + To(200, 160) + To(460, 250) + "mouseup 1");
  ASSERT_TRUE(mRun->WaitForOutput("carry: dropped on target\n"));
  Mouse(To(60, 135) + "mousedown 1" + To(80, 150) + To(100, 175) + "mouseup 1");
  ASSERT_TRUE(mRun->WaitForOutput("move: 52, 100, 110 by 36\n"));
  EXPECT_TRUE(Shows(460, 250, 0xFFFFFF));  // What was carried is clipped by its own parent again.

  Click(kTabFocus, kTabY);
  ASSERT_TRUE(mRun->WaitForOutput("Focus page\n"));
  Click(60, 80);
  ASSERT_TRUE(mRun->WaitForOutput("one: click\n"));
  Mouse(" key Tab key Tab key a click 4");
  ASSERT_TRUE(mRun->WaitForOutput("one: key Tab\ntwo: key Ctrl+I\n"));
  ASSERT_TRUE(mRun->WaitForOutput("three: key A\nthree: key a\n"));
  ASSERT_TRUE(mRun->WaitForOutput("one: wheel up\n"));
  Click(60, 225);
  ASSERT_TRUE(mRun->WaitForOutput("doomed: click\n"));
  EXPECT_TRUE(Shows(20, 215, 0xEEF2F4));
}

TEST_F(GalleryTest, ResizesWithinItsLimitsAndComesBackToItsPlace) {
  Start();
  Shell("xdotool windowsize --sync " + mWindow + " 800 600");
  EXPECT_TRUE(Eventually([this] { return FindWindow() && mPlace.mWidth == 800 && mPlace.mHeight == 600; }));
  EXPECT_TRUE(Shows(780, 590, 0xFFFFFF));  // The foot goes to the new edge.
  Shell("xdotool windowsize " + mWindow + " 100 100");
  EXPECT_TRUE(Eventually([this] { return FindWindow() && mPlace.mWidth == 480 && mPlace.mHeight == 360; }));
  Shell("xdotool windowmove --sync " + mWindow + " 120 90");
  FindWindow();
  const int x = mPlace.mX, y = mPlace.mY;
  Shell("wmctrl -i -c " + mWindow);
  EXPECT_EQ(mRun->Wait(), 0);
  Start();
  EXPECT_TRUE(Eventually([&] { return FindWindow() && mPlace.mX == x && mPlace.mY == y; }))
      << mPlace.mX << "," << mPlace.mY << " " << x << "," << y;
  EXPECT_EQ(mPlace.mWidth, 480);
  EXPECT_EQ(mPlace.mHeight, 360);
}

TEST_F(GalleryTest, ASecondStartRaisesTheFirstWindowAndTheExitKeyEndsIt) {
  Start();
  Shell("xdotool windowminimize " + mWindow);
  ASSERT_TRUE(Eventually([this] { return !HasFocus(); }));
  ProgramOptions second = Options();
  second.mArguments = {"-SOMETHING"};
  ProgramRun later(second);
  EXPECT_EQ(later.Wait(), 0);
  EXPECT_EQ(later.Output(), "");
  ASSERT_TRUE(mRun->WaitForOutput(" -SOMETHING\n"));
  ASSERT_TRUE(Eventually([this] { return FindWindow() && HasFocus(); }));
  // Most window managers take Alt+F4 for themselves and ask the window to close.
  Mouse(" key alt+F4");
  EXPECT_EQ(mRun->Wait(), 0);
  EXPECT_EQ(mRun->Errors(), "");
}

TEST_F(GalleryTest, ASignalEndsIt) {
  Start();
  mRun->Signal(SIGTERM);
  EXPECT_EQ(mRun->Wait(), 0);
}

TEST(GalleryWithoutADisplay, SaysWhichOneItTriedAndEnds) {
  for (const char* display : {":77", ""}) {
    ProgramOptions options;
    options.mProgram = "tessel-gallery";
    options.mEnvironment = {
        {"DISPLAY", display}, {"WAYLAND_DISPLAY", ""}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}};
    ProgramRun run(options);
    EXPECT_EQ(run.Wait(), 0);
    EXPECT_NE(run.Errors().find(*display ? "DISPLAY=\":77\"" : "DISPLAY is not set"), std::string::npos)
        << run.Errors();
  }
}

}  // namespace
}  // namespace EndToEnd
