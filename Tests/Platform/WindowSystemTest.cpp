#include "Platform/WindowSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Desktop.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TestScreen.h"

namespace Platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using TestSupport::Shell;

class WindowSystemTest : public testing::Test {
 protected:
  WindowSystemTest() {
    TestSupport::StartTestScreen();
    mSystem = &GetDesktop().GetWindowSystem();
    Shell("xdotool mousemove 790 590");
    Open(mWindow, mRecorder, {100, 120, 300, 200});
    EXPECT_TRUE(Until([&] { return mRecorder.Has("focus") && mRecorder.Has("expose"); }));
    mRecorder.Clear();
  }

  void Open(std::unique_ptr<Window>& window, TestSupport::WindowRecorder& recorder, const PixelRect& client,
            bool resizable = true) {
    WindowDescription description;
    description.mTitle = "Recorder";
    description.mClient = client;
    description.mIsResizable = resizable;
    window = mSystem->CreateWindow(description, recorder);
    window->Show(WindowShow::kShow);
  }

  bool Until(const std::function<bool()>& condition) { return TestSupport::PumpUntil(*mSystem, condition); }
  bool UntilTold(const std::string& line) {
    return Until([&] { return mRecorder.Has(line); });
  }

  static std::string At(int x, int y) {
    return "xdotool mousemove " + std::to_string(100 + x) + " " + std::to_string(120 + y) + " ";
  }

  WindowSystem* mSystem = nullptr;
  TestSupport::WindowRecorder mRecorder;
  std::unique_ptr<Window> mWindow;
};

const std::vector<std::string> kButtons{"press", "double", "release"};
const std::vector<std::string> kTyped{"key", "character"};

// The releases are known to the display before the program hears of the presses.
TEST_F(WindowSystemTest, TellsFastClicksInOrderAndEverySecondAsDouble) {
  Shell(At(10, 20) + "click --repeat 3 --delay 1 1 click 3 click 2");
  EXPECT_TRUE(UntilTold("release 2 10,20"));
  EXPECT_THAT(
      mRecorder.Only(kButtons),
      ElementsAre("press 1 10,20", "release 1 10,20", "double 1 10,20", "release 1 10,20", "press 1 10,20",
                  "release 1 10,20", "press 4 10,20", "release 4 10,20", "press 2 10,20", "release 2 10,20"));
  mRecorder.Clear();
  Shell(At(100, 100) + "click 1 mousemove_relative 9 0 click 1");
  EXPECT_TRUE(UntilTold("release 1 109,100"));
  EXPECT_THAT(mRecorder.Only({"double"}), IsEmpty());
}

TEST_F(WindowSystemTest, CountsAWheelIn120thsWithTheRightBelowZero) {
  Shell(At(5, 6) + "click 4 click 5 click 5 click 6 click 7");
  EXPECT_TRUE(UntilTold("side wheel -120 5,6"));
  EXPECT_THAT(mRecorder.Only({"wheel", "side"}),
              ElementsAre("wheel 120 5,6", "wheel -120 5,6", "wheel -120 5,6", "side wheel 120 5,6",
                          "side wheel -120 5,6"));
  EXPECT_THAT(mRecorder.Only(kButtons), IsEmpty());
}

TEST_F(WindowSystemTest, NamesKeysByNumberAndMakesControlCharacters) {
  struct Case {
    const char* mKeys;
    std::vector<std::string> mLines;
  };
  const std::vector<Case> cases{
      {"ctrl+a",
       {"key 0x11 down 0x3", "key 0x41 down 0x3", "character 0x1 0x3", "key 0x11 up 0x0", "key 0x41 up 0x0"}},
      {"105+22",
       {"key 0x11 down 0x5", "key 0x8 down 0x5", "character 0x7f 0x5", "key 0x11 up 0x0", "key 0x8 up 0x0"}},
      {"62+56",
       {"key 0x10 down 0x28", "key 0x42 down 0x28", "character 0x42 0x28", "key 0x10 up 0x0",
        "key 0x42 up 0x0"}},
      {"alt+x", {"key 0x12 down 0xc0", "key 0x58 down 0xc0", "key 0x12 up 0x0", "key 0x58 up 0x0"}},
      {"134", {"key 0x5c down 0xa00", "key 0x5c up 0x0"}},
      {"Tab", {"key 0x9 down 0x0", "character 0x9 0x0", "key 0x9 up 0x0"}},
      {"Return", {"key 0xd down 0x0", "character 0xd 0x0", "key 0xd up 0x0"}},
      {"KP_Enter", {"key 0xd down 0x0", "character 0xd 0x0", "key 0xd up 0x0"}},
      {"Escape", {"key 0x1b down 0x0", "character 0x1b 0x0", "key 0x1b up 0x0"}},
      {"KP_Home", {"key 0x24 down 0x0", "key 0x24 up 0x0"}},
      {"7", {"key 0x37 down 0x0", "character 0x37 0x0", "key 0x37 up 0x0"}},
      {"semicolon", {"key 0xba down 0x0", "character 0x3b 0x0", "key 0xba up 0x0"}},
      {"F5", {"key 0x74 down 0x0", "key 0x74 up 0x0"}},
      {"Delete", {"key 0x2e down 0x0", "key 0x2e up 0x0"}},
      {"XF86AudioMute", {"key 0xad down 0x0", "key 0xad up 0x0"}},
  };
  for (const Case& test : cases) {
    mRecorder.Clear();
    Shell(std::string("xdotool key ") + test.mKeys);
    EXPECT_TRUE(UntilTold(test.mLines.back())) << test.mKeys;
    EXPECT_EQ(mRecorder.Only(kTyped), test.mLines) << test.mKeys;
  }
}

TEST_F(WindowSystemTest, KeepsTheKeysOfTheEventsThatWereHandled) {
  bool isDown = false;
  bool isToggled = false;
  mRecorder.mOnLine = [&](const std::string& line) {
    if (line == "key 0x41 down 0x8") ADD_FAILURE() << "a shift without its side";
    if (line == "key 0x41 down 0x18") mSystem->GetKeyState(0x10, isDown, isToggled);
  };
  Shell("xdotool key shift+a");
  EXPECT_TRUE(UntilTold("key 0x10 up 0x0"));
  EXPECT_TRUE(isDown);
  mSystem->GetKeyState(0x10, isDown, isToggled);
  EXPECT_FALSE(isDown);
  EXPECT_EQ(mSystem->GetModifiers(), 0U);
  Shell("xdotool key Caps_Lock");
  EXPECT_TRUE(UntilTold("key 0x14 up 0x0"));
  mSystem->GetKeyState(0x14, isDown, isToggled);
  EXPECT_TRUE(isToggled);
  Shell("xdotool key Caps_Lock");
  mRecorder.Clear();
  EXPECT_TRUE(UntilTold("key 0x14 up 0x0"));
  mSystem->GetKeyState(0x14, isDown, isToggled);
  EXPECT_FALSE(isToggled);
}

TEST_F(WindowSystemTest, MarksTheRepeatsOfAKeyThatIsHeld) {
  Shell("xset r rate 100 50 2>/dev/null || true; xdotool keydown e");
  EXPECT_TRUE(UntilTold("key 0x45 again 0x0"));
  Shell("xdotool keyup e");
  EXPECT_TRUE(UntilTold("key 0x45 up 0x0"));
  EXPECT_EQ(mRecorder.mLines.front(), "key 0x45 down 0x0");
}

TEST_F(WindowSystemTest, HandsTextOverInUnitsAndAltGrWithoutModifiers) {
  Shell("setxkbmap de");
  EXPECT_TRUE(Until([&] { return Shell("setxkbmap -query").find("de") != std::string::npos; }));
  Shell("xdotool key udiaeresis key ISO_Level3_Shift+q");
  EXPECT_TRUE(UntilTold("character 0x40 0x0"));
  EXPECT_TRUE(mRecorder.Has("character 0xfc 0x0"));
  EXPECT_TRUE(mRecorder.Has("key 0x51 down 0x0"));
  // A key of its own for a character beyond the first 65536.
  Shell(
      "setxkbmap us -print | sed 's/\\(xkb_symbols *{ *include *\"[^\"]*\"\\)/\\1 key <AC01> { [ U1D11E ] "
      "};/' | "
      "xkbcomp -w0 - $DISPLAY 2>/dev/null; xdotool key 38");
  EXPECT_TRUE(UntilTold("character 0xdd1e 0x0"));
  const auto units = mRecorder.Only({"character 0xd8", "character 0xdd"});
  EXPECT_THAT(units, ElementsAre("character 0xd834 0x0", "character 0xdd1e 0x0"));
  Shell("setxkbmap us");
}

TEST_F(WindowSystemTest, HearsNothingWhileDisabled) {
  mWindow->SetEnabled(false);
  Shell(At(10, 20) + "click 1 key a; wmctrl -c Recorder");
  Shell("xdotool mousemove 700 500");
  TestSupport::WindowRecorder other;
  std::unique_ptr<Window> second;
  Open(second, other, {450, 120, 200, 150});
  EXPECT_TRUE(Until([&] { return second->HasFocus(); }));
  EXPECT_THAT(mRecorder.Only({"press", "release", "move", "key", "character", "close", "leave"}), IsEmpty());
  mWindow->SetEnabled(true);
  second.reset();
  Shell("wmctrl -c Recorder");
  EXPECT_TRUE(UntilTold("close"));
  EXPECT_FALSE(mSystem->TakeQuitRequest());
}

TEST_F(WindowSystemTest, ShowsThePixelsThatArePresentedAndAsksForAllAfterAResize) {
  std::vector<std::uint32_t> pixels(300 * 200, 0xFF336699);
  for (int x = 0; x < 300; ++x) pixels[static_cast<std::size_t>(x)] = 0xFFFF0000;
  const PixelView view{pixels.data(), 300, 200, 300 * sizeof(std::uint32_t)};
  const PixelRect parts[] = {{0, 0, 300, 1}, {20, 30, 40, 50}};
  mWindow->Present(view, parts);
  const TestSupport::ScreenPixels screen;
  EXPECT_TRUE(Until([&] { return screen.At(159, 199) == 0x336699; }));
  EXPECT_EQ(screen.At(100, 120), 0xFF0000U);
  EXPECT_EQ(screen.At(399, 120), 0xFF0000U);
  EXPECT_NE(screen.At(160, 199), 0x336699U);
  EXPECT_NE(screen.At(159, 200), 0x336699U);
  EXPECT_TRUE(UntilTold("expose"));
  mRecorder.Clear();
  mWindow->Present(view, parts);
  mSystem->DispatchPaints();
  EXPECT_FALSE(mRecorder.Has("expose"));
  mWindow->SetClientRect({100, 120, 310, 200});
  EXPECT_TRUE(UntilTold("size 310x200"));
  mSystem->DispatchPaints();
  mRecorder.Clear();
  mWindow->Present(view, parts);
  mSystem->DispatchPaints();
  EXPECT_TRUE(mRecorder.Has("expose"));
}

TEST_F(WindowSystemTest, PaintsOncePerRequestFromAnyThreadAndDoesNotCountItAsInput) {
  EXPECT_TRUE(Until([&] { return !mSystem->DispatchInput(); }));
  std::thread([&] {
    mWindow->RequestPaint();
    mWindow->RequestPaint();
  }).join();
  mSystem->Wait(20000);
  EXPECT_FALSE(mSystem->DispatchInput());
  mSystem->Wait(20000);
  mSystem->DispatchPaints();
  mSystem->DispatchPaints();
  EXPECT_THAT(mRecorder.Only({"paint"}), ElementsAre("paint"));
  std::thread([&] { mSystem->Wake(); }).join();
  mSystem->Wait(20000);
  EXPECT_TRUE(mSystem->DispatchInput());
  std::thread([&] { mSystem->RequestQuit(); }).join();
  EXPECT_TRUE(mSystem->TakeQuitRequest());
  EXPECT_FALSE(mSystem->TakeQuitRequest());
}

TEST_F(WindowSystemTest, KeepsTheRestOfTheInputWhenAListenerThrows) {
  mRecorder.mOnLine = [](const std::string& line) {
    if (line == "key 0x41 down 0x3") throw std::logic_error("a listener");
  };
  Shell("xdotool key ctrl+a");
  EXPECT_THROW(Until([&] { return mRecorder.Has("key 0x41 up 0x0"); }), std::logic_error);
  EXPECT_EQ(mRecorder.mLines.back(), "key 0x41 down 0x3");
  EXPECT_TRUE(UntilTold("key 0x41 up 0x0"));
  EXPECT_TRUE(mRecorder.Has("character 0x1 0x3"));
}

TEST_F(WindowSystemTest, MinimizesMaximizesRestoresAndHides) {
  mWindow->Show(WindowShow::kMinimize);
  EXPECT_TRUE(Until([&] { return mWindow->IsMinimized() && mRecorder.Has("no focus"); }));
  mRecorder.Clear();
  mWindow->Show(WindowShow::kRestore);
  EXPECT_TRUE(Until([&] { return !mWindow->IsMinimized() && mRecorder.Has("expose"); }));
  EXPECT_EQ(mWindow->GetClientRect(), (PixelRect{100, 120, 300, 200}));
  mWindow->Show(WindowShow::kMaximize);
  EXPECT_TRUE(Until([&] { return mWindow->IsMaximized() && mWindow->GetClientRect().mWidth > 700; }));
  mWindow->Show(WindowShow::kRestore);
  EXPECT_TRUE(UntilTold("size 300x200"));
  mWindow->Show(WindowShow::kHide);
  EXPECT_FALSE(mWindow->IsVisible());
}

TEST_F(WindowSystemTest, KeepsWhoDragsTheFrameWithinTheLimits) {
  mWindow->SetSizeLimits({200, 150}, {0, 400});
  const std::string handle = std::to_string(mWindow->GetNativeHandle());
  const std::string resize = "wmctrl -i -r " + handle + " -e 0,-1,-1,";
  Shell(resize + "600,500");
  EXPECT_TRUE(UntilTold("size 600x400"));
  Shell(resize + "50,50");
  EXPECT_TRUE(UntilTold("size 200x150"));
  mWindow->SetSizeLimits({220, 160}, {230, 170});
  EXPECT_TRUE(UntilTold("size 220x160"));
}

// As the display changes it before the program hears of that.
TEST_F(WindowSystemTest, NewLimitsLeaveTheSizeThatTheUserHasMade) {
  const std::string handle = std::to_string(mWindow->GetNativeHandle());
  Shell("xdotool windowsize --sync " + handle + " 380 260");
  mWindow->SetSizeLimits({200, 150}, {500, 500});
  EXPECT_EQ(mWindow->GetClientRect(), (PixelRect{100, 120, 380, 260}));
  EXPECT_TRUE(UntilTold("size 380x260"));
}

TEST_F(WindowSystemTest, StandsWhereItIsPutWithItsFrameAround) {
  EXPECT_EQ(mWindow->GetClientRect(), (PixelRect{100, 120, 300, 200}));
  const PixelRect frame = mWindow->GetFrameRect();
  EXPECT_LT(frame.mY, 120);
  EXPECT_GT(frame.mHeight, 200);
  mWindow->SetClientRect({50, 60, 320, 240});
  EXPECT_TRUE(UntilTold("size 320x240"));
  EXPECT_EQ(mWindow->GetClientRect(), (PixelRect{50, 60, 320, 240}));
  Shell("xdotool windowmove --sync " + std::to_string(mWindow->GetNativeHandle()) + " 200 210");
  EXPECT_TRUE(UntilTold("place"));
  EXPECT_NE(mWindow->GetNativeHandle(), 0U);
  EXPECT_THAT(mRecorder.Only({"size"}), ElementsAre("size 320x240"));
  const PixelRect area = mSystem->GetWorkArea();
  EXPECT_EQ(area, (PixelRect{0, 0, 800, 600}));
}

TEST_F(WindowSystemTest, FollowsADragOutsideAndTellsTheLeaveBehindTheRelease) {
  Shell(At(40, 70) + "mousedown 1");
  EXPECT_TRUE(UntilTold("press 1 40,70"));
  Shell("xdotool mousemove 90 100 mousemove 80 90");
  EXPECT_TRUE(UntilTold("move -20,-30"));
  PixelPoint point;
  EXPECT_TRUE(mSystem->GetCursorPosition(point));
  EXPECT_EQ(point, (PixelPoint{80, 90}));
  EXPECT_FALSE(mRecorder.Has("leave"));
  Shell("xdotool mouseup 1");
  EXPECT_TRUE(UntilTold("leave"));
  Shell(At(30, 30));
  EXPECT_TRUE(UntilTold("move 30,30"));
  EXPECT_THAT(mRecorder.Only({"press", "release", "leave"}),
              ElementsAre("press 1 40,70", "release 1 -20,-30", "leave"));
  mRecorder.Clear();
  Shell("xdotool mousemove 600 500");
  EXPECT_TRUE(UntilTold("leave"));
  EXPECT_FALSE(mRecorder.Has("move 0,0"));
  EXPECT_TRUE(mSystem->SetCursorPosition({150, 160}));
  EXPECT_TRUE(UntilTold("move 50,40"));
  EXPECT_TRUE(mSystem->GetCursorPosition(point));
  EXPECT_EQ(point, (PixelPoint{150, 160}));
}

TEST_F(WindowSystemTest, CountsAPressAsActivationAndTellsTheOldWindowFirst) {
  TestSupport::WindowRecorder other;
  std::unique_ptr<Window> second;
  std::vector<std::string> order;
  Open(second, other, {450, 120, 200, 150});
  EXPECT_TRUE(Until([&] { return second->HasFocus(); }));
  EXPECT_TRUE(mRecorder.Has("no focus"));
  mRecorder.Clear();
  other.Clear();
  mRecorder.mOnLine = [&](const std::string& line) { order.push_back("first: " + line); };
  other.mOnLine = [&](const std::string& line) { order.push_back("second: " + line); };
  Shell(At(40, 60) + "click 1");
  EXPECT_TRUE(UntilTold("release 1 40,60"));
  std::erase_if(order, [](const std::string& line) {
    return line.find("focus") == std::string::npos && line.find("press") == std::string::npos;
  });
  EXPECT_THAT(order, ElementsAre("second: no focus", "first: focus", "first: press 1 40,60"));
  EXPECT_TRUE(mWindow->HasFocus());
}

TEST_F(WindowSystemTest, SurvivesTheEndOfAWindowInsideAnyOfItsCalls) {
  for (const char* const last : {"press 1 10,20", "key 0x41 down 0x3", "focus", "move 10,20"}) {
    Shell("xdotool mousemove 790 590");
    Open(mWindow, mRecorder, {100, 120, 300, 200});
    mRecorder.Clear();
    bool ended = false;
    mRecorder.mOnLine = [&](const std::string& line) {
      if (line != last) return;
      mWindow.reset();
      ended = true;
    };
    Shell(At(10, 20));
    EXPECT_TRUE(Until([&] { return ended || (mWindow->HasFocus() && mRecorder.Has("move 10,20")); }));
    if (!ended) Shell(At(10, 20) + "click 1 key ctrl+a");
    EXPECT_TRUE(Until([&] { return ended; })) << last;
  }
}

TEST_F(WindowSystemTest, AnErrorOfTheDisplayDoesNotEndTheProgram) {
  // SDL cannot end a window that the display has lost.
  static TestSupport::WindowRecorder other;
  static std::unique_ptr<Window> lost;
  Open(lost, other, {450, 120, 200, 150});
  EXPECT_TRUE(Until([&] { return lost->HasFocus(); }));
  Shell("xdotool windowclose " + std::to_string(lost->GetNativeHandle()));
  lost->SetTitle("Nowhere");
  [[maybe_unused]] static const Window* const kept = lost.release();
  Shell(At(10, 20) + "click 1");
  EXPECT_TRUE(UntilTold("release 1 10,20"));
}

TEST_F(WindowSystemTest, MakesEveryCursorOnce) {
  for (auto kind = SystemCursor::kArrow; kind <= SystemCursor::kHelp;
       kind = static_cast<SystemCursor>(static_cast<int>(kind) + 1)) {
    const CursorId cursor = mSystem->GetSystemCursor(kind);
    EXPECT_NE(cursor, kNoCursor) << static_cast<int>(kind);
    EXPECT_EQ(mSystem->GetSystemCursor(kind), cursor);
    mSystem->SetCursor(cursor);
  }
  const std::vector<std::uint32_t> pixels(16 * 16, 0x80400000);
  const PixelView view{pixels.data(), 16, 16, 16 * sizeof(std::uint32_t)};
  const CursorId own = mSystem->MakeCursor(view, {3, 4});
  EXPECT_NE(own, kNoCursor);
  mSystem->SetCursor(own);
  EXPECT_EQ(mSystem->MakeCursor({}, {}), kNoCursor);
  EXPECT_EQ(mSystem->MakeCursor(view, {16, 0}), kNoCursor);
  mSystem->SetCursor(kNoCursor);
  mSystem->ShowCursor(false);
  mSystem->ShowCursor(true);
}

}  // namespace
}  // namespace Platform
