#include "Platform/FileChooser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/Desktop.h"
#include "Platform/NativePath.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/Portal/SessionBus.h"
#include "Tests/Support/Portal/StandInPortal.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestScreen.h"

namespace Platform {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Conduct = TestSupport::StandInPortal::Conduct;
using Outcome = FileChoice::Outcome;
using TestSupport::Eventually;
using TestSupport::ReadWholeFile;
using TestSupport::Shell;
using TestSupport::StandInPortal;

std::vector<std::string> NativePaths(const FileChoice& choice) {
  std::vector<std::string> paths;
  for (const std::u16string& path : choice.mPaths) paths.push_back(ToNativePath(path));
  return paths;
}

class FileChooserTest : public testing::Test {
 protected:
  FileChooserTest() {
    TestSupport::StartTestScreen();
    mSystem = &GetDesktop().GetWindowSystem();
    WindowDescription description;
    description.mTitle = "Asker";
    description.mClient = {100, 120, 300, 200};
    mWindow = mSystem->CreateWindow(description, mRecorder);
    mWindow->Show(WindowShow::kShow);
    EXPECT_TRUE(
        TestSupport::PumpUntil(*mSystem, [&] { return mRecorder.Has("focus") && mRecorder.Has("expose"); }));
    mRequest.mTitle = u"Choose \u00FC";
    mRequest.mFolder = mFolder.InnerPath();
    mRequest.mFilters = {{u"Firmware", {u"*.Bin", u"my *.\u00E4"}}, {u"All", {u"*"}}};
    mRequest.mParentHandle = mWindow->GetNativeHandle();
  }
  ~FileChooserTest() override { setenv("PATH", mFormerPath.c_str(), 1); }

  FileChoice Choose() { return mSystem->GetFileChooser().Choose(mRequest); }

  // Found before the real one.
  void PutZenity(const std::string& script) {
    const std::filesystem::path path = mFolder.WriteFile("zenity", "#!/bin/sh\n" + script);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    setenv("PATH", (mFolder.Path().string() + ":" + mFormerPath).c_str(), 1);
  }

  // Acts beside the dialog, then has the program asked to end.
  std::thread QuitAfter(const std::function<void()>& act) {
    return std::thread([this, act] {
      act();
      mSystem->RequestQuit();
    });
  }

  const std::string mFormerPath = std::getenv("PATH");
  const TestSupport::TemporaryFolder mFolder;
  TestSupport::WindowRecorder mRecorder;
  WindowSystem* mSystem = nullptr;
  std::unique_ptr<Window> mWindow;
  FileRequest mRequest;
};

TEST_F(FileChooserTest, TakesThePortalsAnswerForWhatItIs) {
  struct Case {
    StandInPortal::Answer mAnswer;
    Outcome mOutcome;
    std::vector<std::string> mPaths;
    std::string mReason;
  };
  const Case cases[] = {
      {{Conduct::kAnswers, 0, {"file:///tmp/a%20b.bin"}}, Outcome::kChosen, {"/tmp/a b.bin"}, ""},
      {{Conduct::kAnswers, 0, {"file://localhost/a/b"}}, Outcome::kChosen, {"/a/b"}, ""},
      {{Conduct::kAnswersFirst, 0, {"file:///a/b"}}, Outcome::kChosen, {"/a/b"}, ""},
      {{Conduct::kAnswers, 0, {"file:///a/%C3%BC", "file:///b"}},
       Outcome::kChosen,
       {"/a/\xC3\xBC", "/./b"},
       ""},
      {{Conduct::kAnswers, 0, {"file:///a/line%0Abreak%FF"}}, Outcome::kChosen, {"/a/line\nbreak\xFF"}, ""},
      {{Conduct::kAnswers, 1, {}}, Outcome::kCancelled, {}, ""},
      {{Conduct::kAnswers, 2, {}}, Outcome::kFailed, {}, "response 2"},
      {{Conduct::kAnswers, 0, {}}, Outcome::kFailed, {}, "names no file"},
      {{Conduct::kAnswers, 0, {"file:///a/b", "http://a/b"}},
       Outcome::kFailed,
       {},
       "no local file: http://a/b"},
      {{Conduct::kAnswers, 0, {"file://elsewhere/a"}},
       Outcome::kFailed,
       {},
       "no local file: file://elsewhere/a"},
      {{Conduct::kAnswers, 0, {"file:///a%00b"}}, Outcome::kFailed, {}, "no local file"},
      {{Conduct::kAnswersWrongly, 0, {}}, Outcome::kFailed, {}, "wrong form"},
      {{Conduct::kDies, 0, {}}, Outcome::kFailed, {}, "the portal has gone"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(testing::PrintToString(row.mAnswer.mUris) + row.mReason);
    const TestSupport::SessionBus bus;
    const StandInPortal portal(bus.GetAddress(), row.mAnswer);
    const FileChoice choice = Choose();
    EXPECT_EQ(choice.mOutcome, row.mOutcome);
    EXPECT_EQ(NativePaths(choice), row.mPaths);
    EXPECT_THAT(choice.mReason, HasSubstr(row.mReason));
  }
}

TEST_F(FileChooserTest, TellsThePortalWhatIsWanted) {
  const TestSupport::SessionBus bus;
  StandInPortal portal(bus.GetAddress(), {Conduct::kAnswers, 1, {}});
  mRequest.mMultiple = true;
  Choose();
  const std::string question = portal.GetQuestion();
  std::ostringstream handle;
  handle << "('x11:" << std::hex << mWindow->GetNativeHandle() << "', 'Choose \xC3\xBC', ";
  EXPECT_EQ(question.rfind(handle.str(), 0), 0U) << question;
  for (const char* const part : {"'multiple': <true>",
                                 "'filters': <[('Firmware', [(uint32 0, '*.[bB][iI][nN]'), (0, '[mM][yY] "
                                 "*.\xC3\xA4')]), ('All', [(0, '*')])]>"})
    EXPECT_THAT(question, HasSubstr(part));
  EXPECT_THAT(question, HasSubstr("'current_folder': <b'" + mFolder.Path().string() + "'>"));
}

// Nobody else is asked then: the dialog may have been shown.
TEST_F(FileChooserTest, SurvivesTheEndOfTheBus) {
  PutZenity("exit 1\n");
  for (const Conduct conduct : {Conduct::kKeepsSilent, Conduct::kTakesNothing}) {
    TestSupport::SessionBus bus;
    StandInPortal portal(bus.GetAddress(), {conduct, 0, {}});
    std::thread end([&] {
      Eventually([&] { return !portal.GetQuestion().empty(); });
      bus.End();
    });
    const FileChoice choice = Choose();
    end.join();
    EXPECT_EQ(choice.mOutcome, Outcome::kFailed);
    EXPECT_THAT(choice.mReason, HasSubstr("has gone before"));
  }
}

// No listener hears what the user does beside the dialog; what is shown stays shown.
TEST_F(FileChooserTest, SwallowsInputAndShowsWindowsWhileItWaits) {
  const TestSupport::SessionBus bus;
  StandInPortal portal(bus.GetAddress(), {Conduct::kKeepsSilent, 0, {}});
  mRecorder.Clear();
  std::promise<void> exposed;
  mRecorder.mOnLine = [&, told = false](const std::string& line) mutable {
    if (line == "expose" && !std::exchange(told, true)) exposed.set_value();
  };
  const std::string window = std::to_string(mWindow->GetNativeHandle());
  std::thread user = QuitAfter([&] {
    EXPECT_TRUE(Eventually([&] { return !portal.GetQuestion().empty(); }));
    Shell("xdotool mousemove 150 170 click 1 click 4 key a && wmctrl -i -c " + window);
    Shell("xdotool windowmove " + window + " 2000 2000 windowmove " + window + " 100 120");
    EXPECT_EQ(exposed.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
  });
  const FileChoice choice = Choose();
  user.join();
  EXPECT_EQ(choice.mOutcome, Outcome::kCancelled);
  EXPECT_TRUE(mSystem->TakeQuitRequest());
  EXPECT_THAT(mRecorder.Only({"press", "release", "wheel", "key", "character", "close"}), IsEmpty());
  mRecorder.mOnLine = nullptr;
  Shell("xdotool mousemove 160 180 click 1");
  EXPECT_TRUE(TestSupport::PumpUntil(*mSystem, [&] { return !mRecorder.Only({"press"}).empty(); }));
  EXPECT_TRUE(Eventually([&] { return portal.IsAskerGone(); }));
}

TEST_F(FileChooserTest, AsksZenityWhereNoPortalAnswers) {
  struct Case {
    std::string mScript;
    bool mMultiple;
    Outcome mOutcome;
    std::vector<std::string> mPaths;
    std::string mReason;
  };
  const Case cases[] = {
      {"echo '/a/b c'", false, Outcome::kChosen, {"/a/b c"}, ""},
      {"printf '/a/line\\n\\nbreak\\n\\n'", false, Outcome::kChosen, {"/a/line\n\nbreak\n"}, ""},
      {"echo '/a/b//c'", false, Outcome::kChosen, {"/a/b//c"}, ""},
      {"echo /a/b", true, Outcome::kChosen, {"/a/b"}, ""},
      {"printf '/a/|b\\n///a/c:///d/e\\n'", true, Outcome::kChosen, {"/a/|b\n", "/a/c:", "/d/e"}, ""},
      {"printf '/a/\\303\\274\\n'", false, Outcome::kChosen, {"/a/\xC3\xBC"}, ""},
      {"echo \"/a/$CHARSET\"", false, Outcome::kChosen, {"/a/UTF-8"}, ""},
      {"exit 1", false, Outcome::kCancelled, {}, ""},
      {"exit 5", false, Outcome::kFailed, {}, "status 5"},
      {"echo /a/b; exit 255", false, Outcome::kFailed, {}, "status 255"},
      {"kill -KILL $$", false, Outcome::kFailed, {}, "signal 9"},
      {"true", false, Outcome::kFailed, {}, "named no file"},
      {"echo relative", false, Outcome::kFailed, {}, "named no file"},
      {"exec yes /", false, Outcome::kFailed, {}, "too much output"},
      {"echo /a/b; exec >&-; exit 0", false, Outcome::kChosen, {"/a/b"}, ""},
  };
  for (const bool hasBus : {false, true}) {
    std::unique_ptr<TestSupport::SessionBus> bus;
    std::unique_ptr<StandInPortal> portal;
    if (hasBus) {
      bus = std::make_unique<TestSupport::SessionBus>();
      portal = std::make_unique<StandInPortal>(bus->GetAddress(), StandInPortal::Answer{Conduct::kRefuses});
    }
    for (const Case& row : cases) {
      SCOPED_TRACE(row.mScript);
      PutZenity(row.mScript + "\n");
      mRequest.mMultiple = row.mMultiple;
      const FileChoice choice = Choose();
      EXPECT_EQ(choice.mOutcome, row.mOutcome);
      EXPECT_EQ(NativePaths(choice), row.mPaths);
      EXPECT_THAT(choice.mReason, HasSubstr(row.mReason));
    }
  }
}

TEST_F(FileChooserTest, TellsZenityWhatIsWanted) {
  PutZenity("for argument; do echo \"$argument\"; done > " + mFolder.Entry("arguments").string() +
            "\nexit 1\n");
  mRequest.mMultiple = true;
  EXPECT_EQ(Choose().mOutcome, Outcome::kCancelled);
  EXPECT_EQ(ReadWholeFile(mFolder.Entry("arguments")),
            "--file-selection\n--modal\n--title=Choose \xC3\xBC\n--attach=" +
                std::to_string(mWindow->GetNativeHandle()) + "\n--filename=" + mFolder.Path().string() +
                "/\n--multiple\n--separator=//\n--file-filter=Firmware | *.[bB][iI][nN] [mM][yY]?*.\xC3\xA4\n"
                "--file-filter=All | *\n");
}

TEST_F(FileChooserTest, TakesZenityFromTheScreenWhenTheProgramIsToEnd) {
  const std::filesystem::path number = mFolder.Entry("number");
  PutZenity("echo $$ > " + number.string() + ".part; mv " + number.string() + ".part " + number.string() +
            "\ntrap '' TERM\nexec sleep 1000\n");
  std::thread user =
      QuitAfter([&] { EXPECT_TRUE(Eventually([&] { return std::filesystem::exists(number); })); });
  const FileChoice choice = Choose();
  user.join();
  EXPECT_EQ(choice.mOutcome, Outcome::kCancelled) << choice.mReason;
  EXPECT_TRUE(mSystem->TakeQuitRequest());
  EXPECT_EQ(kill(std::stoi(ReadWholeFile(number)), 0), -1);
  EXPECT_EQ(errno, ESRCH);
}

TEST_F(FileChooserTest, SaysWhatIsMissingWhereThereIsNoDialog) {
  for (const bool hasBus : {false, true}) {
    std::optional<TestSupport::SessionBus> bus;
    if (hasBus) bus.emplace();
    setenv("PATH", mFolder.Path().c_str(), 1);
    const FileChoice choice = Choose();
    setenv("PATH", mFormerPath.c_str(), 1);
    EXPECT_EQ(choice.mOutcome, Outcome::kUnavailable);
    EXPECT_THAT(choice.mReason, HasSubstr(hasBus ? "no portal answers (" : "there is no session bus;"));
    EXPECT_THAT(choice.mReason, HasSubstr("; zenity cannot be started ("));
  }
}

// What a listener throws comes out, and the dialog goes with it.
TEST_F(FileChooserTest, EndsTheDialogWhenAListenerThrows) {
  const TestSupport::SessionBus bus;
  StandInPortal portal(bus.GetAddress(), {Conduct::kKeepsSilent, 0, {}});
  mRecorder.mOnLine = [](const std::string& line) {
    if (line == "paint") throw std::runtime_error("cannot paint");
  };
  mWindow->RequestPaint();
  EXPECT_THROW(Choose(), std::runtime_error);
  mRecorder.mOnLine = nullptr;
  EXPECT_TRUE(TestSupport::PumpUntil(*mSystem, [&] { return true; }));
}

// The real program takes the arguments and can be dismissed. Until it listens, keys are lost.
TEST_F(FileChooserTest, UnderstandsTheRealZenity) {
  mRequest.mTitle = u"Zenity";
  mRequest.mMultiple = true;
  std::promise<void> answered;
  std::thread user([&] {
    const std::future<void> end = answered.get_future();
    int rounds = 0;
    do {
      Shell("xdotool search --onlyvisible --name '^Zenity$' windowfocus key Escape || true");
      if (++rounds == 60) mSystem->RequestQuit();
    } while (end.wait_for(std::chrono::seconds(1)) != std::future_status::ready);
  });
  const FileChoice choice = Choose();
  answered.set_value();
  user.join();
  EXPECT_FALSE(mSystem->TakeQuitRequest());
  EXPECT_EQ(choice.mOutcome, Outcome::kCancelled) << choice.mReason;
}

}  // namespace
}  // namespace Platform
