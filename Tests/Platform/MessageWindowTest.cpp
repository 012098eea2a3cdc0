#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>

#include "Platform/Desktop.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TestScreen.h"

namespace Platform {
namespace {

using ::testing::IsEmpty;
using TestSupport::Shell;

// Messages in real windows, above another one that listens.
class MessageWindowTest : public testing::Test {
 protected:
  MessageWindowTest() {
    TestSupport::StartTestScreen();
    mSystem = &GetDesktop().GetWindowSystem();
    Shell("xdotool mousemove 790 590");
    WindowDescription description;
    description.mTitle = "Below";
    description.mClient = {100, 120, 300, 200};
    mWindow = mSystem->CreateWindow(description, mRecorder);
    mWindow->Show(WindowShow::kShow);
    EXPECT_TRUE(TestSupport::PumpUntil(*mSystem, [&] { return mWindow->HasFocus(); }));
    mRecorder.Clear();
  }

  static bool IsOnTop(const std::string& title) {
    return TestSupport::Eventually(
        [&] { return Shell("xdotool getwindowfocus getwindowname 2>/dev/null || true") == title + "\n"; });
  }

  // The user acts as soon as the message has the keyboard, and presses Return until it is gone.
  template <class Action>
  MessageAnswer Show(MessageRequest request, Action act) {
    request.mCaption = "Trouble";
    std::atomic<bool> isAnswered = false;
    auto user = std::async(std::launch::async, [&] {
      const bool shown = IsOnTop(request.mCaption);
      if (shown) act();
      while (!isAnswered) Shell("wmctrl -a Trouble || true; xdotool key Return");
      return shown;
    });
    const MessageAnswer answer = mSystem->ShowMessage(request);
    isAnswered = true;
    EXPECT_TRUE(user.get());
    return answer;
  }
  MessageAnswer Show(MessageButtons buttons, const std::string& command) {
    return Show({"The device does not answer.", "", MessageIcon::kError, buttons}, [&] { Shell(command); });
  }

  // The message, which has the keyboard.
  static PixelRect FindShown() { return TestSupport::ReadPlace("$(xdotool getwindowfocus)"); }
  // A point of the last button, left of its label.
  static PixelPoint RightButton(const PixelRect& shown) {
    return {shown.mX + shown.mWidth - 24 - 92 + 8, shown.mY + shown.mHeight - 33};
  }
  static bool Shows(const PixelPoint& point, std::uint32_t color) {
    return TestSupport::ScreenPixels().Shows(point.mX, point.mY, color);
  }

  static constexpr std::uint32_t kErrorColor = 0xB3261E;
  static constexpr std::uint32_t kAccent = 0x0A626C;
  static constexpr std::uint32_t kAccentPressed = 0x064A52;

  WindowSystem* mSystem = nullptr;
  TestSupport::WindowRecorder mRecorder;
  std::unique_ptr<Window> mWindow;
};

TEST_F(MessageWindowTest, AnswersWhatTheUserChose) {
  // The buttons stand in the lower right corner, each 92 wide, 104 apart.
  const auto at = [](int fromRight) {
    return "eval $(xdotool getwindowfocus getwindowgeometry --shell); xdotool mousemove --window $WINDOW "
           "$((WIDTH - 70 - 104 * " +
           std::to_string(fromRight) + ")) $((HEIGHT - 33)) ";
  };
  struct Case {
    MessageButtons mButtons;
    std::string mCommand;
    MessageAnswer mAnswer;
  };
  const Case cases[] = {
      {MessageButtons::kOk, "xdotool key Return", MessageAnswer::kOk},
      {MessageButtons::kOk, "xdotool key Escape", MessageAnswer::kOk},
      {MessageButtons::kOkCancel, "xdotool key space", MessageAnswer::kOk},
      {MessageButtons::kOkCancel, "xdotool key Tab key KP_Enter", MessageAnswer::kCancel},
      {MessageButtons::kOkCancel, "xdotool key Tab key Tab key Return", MessageAnswer::kOk},
      {MessageButtons::kOkCancel, "xdotool key Escape", MessageAnswer::kCancel},
      {MessageButtons::kYesNo, "xdotool key Right key Return", MessageAnswer::kNo},
      {MessageButtons::kYesNo, "xdotool key Left key Left key Return", MessageAnswer::kYes},
      {MessageButtons::kYesNo, "xdotool key Escape", MessageAnswer::kNo},
      {MessageButtons::kYesNoCancel, "xdotool key shift+Tab key Return", MessageAnswer::kCancel},
      {MessageButtons::kYesNoCancel, "wmctrl -c Trouble", MessageAnswer::kCancel},
      {MessageButtons::kYesNoCancel, at(1) + "click 1", MessageAnswer::kNo},
      {MessageButtons::kYesNoCancel, at(2) + "click 3 click 1", MessageAnswer::kYes},
  };
  for (const Case& test : cases) EXPECT_EQ(Show(test.mButtons, test.mCommand), test.mAnswer) << test.mCommand;
}

TEST_F(MessageWindowTest, APressThatLeavesItsButtonTakesTheChoiceBack) {
  const MessageRequest request{"Really?", "", MessageIcon::kQuestion, MessageButtons::kYesNoCancel};
  const MessageAnswer answer = Show(request, [] {
    const PixelPoint button = RightButton(FindShown());
    const std::string x = std::to_string(button.mX) + " ";
    Shell("xdotool mousemove " + x + std::to_string(button.mY) + " mousedown 1");
    EXPECT_TRUE(Shows(button, kAccentPressed));
    Shell("xdotool mousemove " + x + std::to_string(button.mY - 60));
    EXPECT_TRUE(Shows(button, kAccent));
    Shell("xdotool mouseup 1 key Tab");  // From there round to the first button.
    EXPECT_TRUE(Shows(button, 0xFFFFFF));
  });
  EXPECT_EQ(answer, MessageAnswer::kYes);
}

TEST_F(MessageWindowTest, KeepsInputAndPaintsFromOtherWindowsUntilTheAnswer) {
  Show({"Wait.", ""}, [&] {
    Shell("xdotool mousemove 105 315 click 1 click 4; wmctrl -c Below");
    mWindow->RequestPaint();
    mSystem->Wake();
  });
  EXPECT_THAT(mRecorder.Only({"press", "release", "move", "wheel", "close", "paint"}), IsEmpty());
  EXPECT_TRUE(mSystem->DispatchInput());  // The wake-up was not for the message.
  EXPECT_TRUE(
      TestSupport::PumpUntil(*mSystem, [&] { return mRecorder.Has("paint") && mWindow->HasFocus(); }));
  Shell("xdotool mousemove 110 130 click 1");
  EXPECT_TRUE(TestSupport::PumpUntil(*mSystem, [&] { return mRecorder.Has("release 1 10,10"); }));
}

TEST_F(MessageWindowTest, AWishToQuitClosesItAndStays) {
  const MessageAnswer answer = Show({"Go on?", "", MessageIcon::kQuestion, MessageButtons::kOkCancel},
                                    [&] { mSystem->RequestQuit(); });
  EXPECT_EQ(answer, MessageAnswer::kCancel);
  EXPECT_TRUE(mSystem->TakeQuitRequest());
  EXPECT_FALSE(mSystem->TakeQuitRequest());
}

TEST_F(MessageWindowTest, ShowsIconAndButtonsAndCopiesItsText) {
  Show({"Gr\xC3\xBC\xC3\x9F\x65\nfrom the device", "", MessageIcon::kError}, [&] {
    const PixelRect shown = FindShown();
    EXPECT_TRUE(Shows({shown.mX + 44, shown.mY + 29}, kErrorColor));
    EXPECT_TRUE(Shows(RightButton(shown), kAccent));
    Shell("xdotool key ctrl+c");
  });
  EXPECT_EQ(mSystem->GetClipboard().GetText(), "Trouble\n\nGr\xC3\xBC\xC3\x9F\x65\nfrom the device\n");
}

TEST_F(MessageWindowTest, FitsOnTheScreenWhateverItsText) {
  std::string lines = "\xFF\x80 no characters, and a zero: ";
  lines += '\0';
  for (int i = 0; i < 3000; ++i) lines += "a line of a long report\n";
  for (const std::string& text : {lines, std::string(100000, 'x'), std::string()}) {
    Show({text, ""}, [&] {
      const std::string size = Shell(
          "eval $(xdotool getwindowfocus getwindowgeometry --shell); test $WIDTH -le 760 -a $HEIGHT -le 560 "
          "-a "
          "$WIDTH -ge 300 && echo fits");
      EXPECT_EQ(size, "fits\n") << text.size();
    });
  }
}

}  // namespace
}  // namespace Platform
