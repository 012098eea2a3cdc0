#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <sstream>
#include <string>

#include "Tests/EndToEnd/ProgramRun.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/Portal/SessionBus.h"
#include "Tests/Support/Portal/StandInPortal.h"
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
  static constexpr std::uint32_t kTint = 0xE0F0F1;
  static constexpr int kTabDrag = 345, kTabFocus = 430, kTabButtons = 514, kTabY = 48;
  static constexpr int kTabViews = 262, kTabLists = 346, kTabMenus = 430, kTabStatus = 514, kTabY2 = 80;
  static constexpr std::uint32_t kTip = 0x22303A, kFill = 0x0E808D, kThumb = 0x6F828D, kChannel = 0xE9EEF1;

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
  EXPECT_EQ(mPlace.mHeight, 534);
  Click(kTabDrag, kTabY);
  ASSERT_TRUE(mRun->WaitForOutput("Drag page\n"));
  EXPECT_TRUE(Shows(30, 129, kTint));  // The box that can be carried.
  Mouse(To(60, 144) + "mousedown 1" + To(200, 214) + To(460, 304) + "mouseup 1");
  ASSERT_TRUE(mRun->WaitForOutput("carry: dropped on target\n"));
  Mouse(To(60, 189) + "mousedown 1" + To(80, 204) + To(100, 229) + "mouseup 1");
  ASSERT_TRUE(mRun->WaitForOutput("move: 52, 100, 110 by 36\n"));
  EXPECT_TRUE(Shows(460, 304, 0xFFFFFF));  // What was carried is clipped by its own parent again.

  Click(kTabFocus, kTabY);
  ASSERT_TRUE(mRun->WaitForOutput("Focus page\n"));
  Click(60, 134);
  ASSERT_TRUE(mRun->WaitForOutput("one: click\n"));
  Mouse(" key Tab key Tab key a click 4");
  ASSERT_TRUE(mRun->WaitForOutput("one: key Tab\ntwo: key Ctrl+I\n"));
  ASSERT_TRUE(mRun->WaitForOutput("three: key A\nthree: key a\n"));
  ASSERT_TRUE(mRun->WaitForOutput("one: wheel up\n"));
  Click(60, 279);
  ASSERT_TRUE(mRun->WaitForOutput("doomed: click\n"));
  EXPECT_TRUE(Shows(20, 269, 0xF4F7F8));
}

TEST_F(GalleryTest, ResizesWithinItsLimitsAndComesBackToItsPlace) {
  Start();
  Shell("xdotool windowsize --sync " + mWindow + " 800 600");
  EXPECT_TRUE(Eventually([this] { return FindWindow() && mPlace.mWidth == 800 && mPlace.mHeight == 600; }));
  EXPECT_TRUE(Shows(780, 590, 0xFFFFFF));  // The foot goes to the new edge.
  Shell("xdotool windowsize " + mWindow + " 100 100");
  EXPECT_TRUE(Eventually([this] { return FindWindow() && mPlace.mWidth == 640 && mPlace.mHeight == 414; }));
  Shell("xdotool windowmove --sync " + mWindow + " 120 90");
  FindWindow();
  const int x = mPlace.mX, y = mPlace.mY;
  Shell("wmctrl -i -c " + mWindow);
  EXPECT_EQ(mRun->Wait(), 0);
  Start();
  EXPECT_TRUE(Eventually([&] { return FindWindow() && mPlace.mX == x && mPlace.mY == y; }))
      << mPlace.mX << "," << mPlace.mY << " " << x << "," << y;
  EXPECT_EQ(mPlace.mWidth, 640);
  EXPECT_EQ(mPlace.mHeight, 414);
}

TEST_F(GalleryTest, ButtonsClickHoldTheirStateAndRepeat) {
  Start();
  Click(kTabButtons, kTabY);
  ASSERT_TRUE(mRun->WaitForOutput("Buttons page\n"));
  Click(60, 128);
  ASSERT_TRUE(mRun->WaitForOutput("push: click\n"));
  Mouse(" key Return");
  ASSERT_TRUE(mRun->WaitForOutput("push: click\npush: click\n"));
  Click(190, 128);  // Disabled: nothing.
  Click(450, 128);
  ASSERT_TRUE(mRun->WaitForOutput("push: click\ntoggle: on\n"));
  Click(70, 178);
  ASSERT_TRUE(mRun->WaitForOutput("radio1: on\n"));
  Click(330, 178);
  ASSERT_TRUE(mRun->WaitForOutput("radio3: on\n"));
  Mouse(To(60, 226) + "mousedown 1" + To(62, 228));
  ASSERT_TRUE(mRun->WaitForOutput("repeat: 3\n"));
  Mouse(" mouseup 1");
}

TEST_F(GalleryTest, ListsAndViewsGoFarByKeysAndTheirBars) {
  Start();
  Click(kTabLists, kTabY2);
  ASSERT_TRUE(mRun->WaitForOutput("Lists page\n"));
  Click(100, 180);
  ASSERT_TRUE(mRun->WaitForOutput("list: 1 selected, at "));
  Mouse(" key End");
  ASSERT_TRUE(Shows(306, 470, kThumb));
  Click(100, 464);
  ASSERT_TRUE(mRun->WaitForOutput("list: 1 selected, at 100000\n"));
  Mouse(" key Up");
  ASSERT_TRUE(mRun->WaitForOutput("list: 1 selected, at 99999\n"));
  Click(400, 400);
  Mouse(" keydown shift" + To(400, 440) + "click 1 keyup shift");
  ASSERT_TRUE(mRun->WaitForOutput("several: 3 selected"));
  Click(kTabViews, kTabY2);
  ASSERT_TRUE(mRun->WaitForOutput("Views page\n"));
  // The thumb goes where it is dragged to.
  ASSERT_TRUE(Shows(620, 140, kThumb));
  Mouse(To(620, 140));
  ASSERT_TRUE(Shows(620, 140, kChosen));  // As buttons do under the mouse.
  Mouse(" mousedown 1");
  Mouse(To(620, 200));
  ASSERT_TRUE(Shows(620, 200, kChosen));
  Mouse(To(620, 400));
  EXPECT_TRUE(Shows(620, 400, kChosen));
  EXPECT_TRUE(Shows(620, 140, kChannel));
  Mouse(" mouseup 1");
}

TEST_F(GalleryTest, MenusOpenFollowTheMouseAndChooseInOneGesture) {
  Start();
  // Press, drag over the neighbour, and let go on its second item.
  Mouse(To(20, 12) + "mousedown 1");
  ASSERT_TRUE(Shows(20, 30, 0xFFFFFF));
  for (const int x : {66, 118}) {
    Mouse(To(x, 12));
    ASSERT_TRUE(Shows(x, 4, kChosen));
  }
  Mouse(To(130, 40) + To(130, 66) + "mouseup 1");
  ASSERT_TRUE(mRun->WaitForOutput("Panels page\n"));
  // By keys, two levels down.
  Click(kTabMenus, kTabY2);
  ASSERT_TRUE(mRun->WaitForOutput("Menus page\n"));
  Mouse(To(600, 480) + "click 3");
  ASSERT_TRUE(Shows(600, 529, 0xFFFFFF));  // Inside the window, up to its edge.
  Mouse(" key Down Down Down Right Down Right Down Return");
  ASSERT_TRUE(mRun->WaitForOutput("southEast: NID_GALLERY_FOURTH\n"));
  // By the mouse; the check mark is there the next time.
  Mouse(To(60, 480) + "click 3");
  Mouse(To(90, 431));
  Mouse(" click 1");
  ASSERT_TRUE(mRun->WaitForOutput("southWest: NID_GALLERY_CHECK\n"));
}

TEST_F(GalleryTest, TextsGoToOtherProgramsAndComeBack) {
  Start();
  Click(kTabMenus, kTabY2);
  ASSERT_TRUE(mRun->WaitForOutput("Menus page\n"));
  Click(320, 304);
  ASSERT_TRUE(mRun->WaitForOutput("clip: click\n"));
  const auto edit = [this](int y) {
    Click(66, 12);
    EXPECT_TRUE(Shows(66, 4, kChosen));
    Click(90, y);
  };
  edit(66);  // Copy.
  ASSERT_TRUE(mRun->WaitForOutput("clip: Text for the clipboard\n"));
  EXPECT_EQ(Shell("timeout -k 1 30 xclip -selection clipboard -o"), "Text for the clipboard");
  Shell("printf 'from elsewhere' | timeout -k 1 30 xclip -selection clipboard -i >/dev/null 2>&1");
  edit(91);  // Paste.
  ASSERT_TRUE(mRun->WaitForOutput("clip: from elsewhere\n"));
}

TEST_F(GalleryTest, FilesComeFromTheDesktopsDialog) {
  using Portal = TestSupport::StandInPortal;
  const TestSupport::SessionBus bus;
  const auto open = [this](Portal& portal) {
    Click(20, 12);
    EXPECT_TRUE(Shows(20, 30, 0xFFFFFF));
    Click(40, 41);
    EXPECT_TRUE(Eventually([&] { return !portal.GetQuestion().empty(); }));
    EXPECT_NE(portal.GetQuestion().find("'Open a file'"), std::string::npos) << portal.GetQuestion();
  };
  {
    const std::string path = mFolder.WriteFile("picture.png", "");
    Portal portal(bus.GetAddress(), {Portal::Conduct::kAnswers, 0, {"file://" + path}});
    Start();
    open(portal);
    ASSERT_TRUE(mRun->WaitForOutput("file: " + path + "\n"));
  }
  // Without an answer the window goes on.
  Portal portal(bus.GetAddress(), {Portal::Conduct::kDies, 0, {}});
  open(portal);
  ASSERT_TRUE(mRun->WaitForOutput("no file\n"));
  Click(kTabDrag, kTabY);
  EXPECT_TRUE(mRun->WaitForOutput("Drag page\n"));
}

TEST_F(GalleryTest, TipsShowAndGoAndTheBarFills) {
  Start();
  Click(kTabStatus, kTabY2);
  ASSERT_TRUE(mRun->WaitForOutput("Status page\n"));
  Mouse(To(60, 270));
  ASSERT_TRUE(Shows(63, 296, kTip));
  Mouse(" key Shift_L");
  ASSERT_TRUE(Shows(63, 296, 0xF4F7F8));
  for (int click = 0; click < 3; ++click) Mouse(To(200 + click, 210) + "click 1");
  ASSERT_TRUE(mRun->WaitForOutput("more: click\nmore: click\nmore: click\n"));
  EXPECT_TRUE(Shows(60, 157, kFill));
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
