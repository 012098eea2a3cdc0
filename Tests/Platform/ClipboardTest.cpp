#include "Platform/Clipboard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "Platform/Desktop.h"
#include "Tests/Support/DesktopWindow.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/TestScreen.h"

namespace Platform {
namespace {

using TestSupport::Shell;

constexpr const char* kGreeting = "Gr\xC3\xBC\xC3\x9F\x65";

// Beside xclip, a program that has nothing in common with this one but the display.
class ClipboardTest : public testing::Test {
 protected:
  ClipboardTest() {
    TestSupport::StartTestScreen();
    mSystem = &GetDesktop().GetWindowSystem();
    mClipboard = &mSystem->GetClipboard();
    WindowDescription description;
    description.mTitle = "Owner";
    description.mClient = {100, 120, 300, 200};
    mWindow = mSystem->CreateWindow(description, mRecorder);
  }

  bool Until(const std::function<bool()>& condition) { return TestSupport::PumpUntil(*mSystem, condition); }
  bool UntilFound(const std::string& text) {
    return Until([&] {
      mClipboard->Look();
      return mClipboard->GetText() == text;
    });
  }

  // What the other program finds, while this one goes on.
  std::string Paste() {
    std::atomic<bool> done = false;
    std::string pasted;
    std::thread reader([&] {
      pasted = Shell("timeout 20 xclip -selection clipboard -o 2>/dev/null || true");
      done = true;
      mSystem->Wake();
    });
    EXPECT_TRUE(Until([&] { return done.load(); }));
    reader.join();
    return pasted;
  }

  // The other program takes the clipboard and keeps it until somebody else does.
  void CopyElsewhere(const std::string& bytes) {
    const std::string path = mFolder.WriteFile("copied", bytes).string();
    Shell("timeout 60 xclip -selection clipboard -i -quiet " + path + " >/dev/null 2>&1 &");
  }

  std::size_t CountLosses() const { return mRecorder.Only({"clipboard lost"}).size(); }

  const TestSupport::TemporaryFolder mFolder;
  TestSupport::WindowRecorder mRecorder;
  WindowSystem* mSystem = nullptr;
  Clipboard* mClipboard = nullptr;
  std::unique_ptr<Window> mWindow;
};

TEST_F(ClipboardTest, GivesTextsToOtherProgramsAndKeepsThemAsItsOwn) {
  const std::string large(3 << 20, 'x');
  const std::string tooLarge(100 << 20, 'x');
  struct Case {
    const char* mName;
    std::string mSet;
    bool mTaken;
    std::string mFoundElsewhere;
  };
  const Case cases[] = {{"text", kGreeting, true, kGreeting},
                        {"empty", "", true, ""},
                        {"large", large, true, large},
                        {"too large", tooLarge, false, ""},
                        {"no UTF-8", "a\xFFz", true, "a\xEF\xBF\xBDz"},
                        {"zero inside", std::string("a\0z", 3), true, "a"}};
  for (const Case& row : cases) {
    SCOPED_TRACE(row.mName);
    ASSERT_TRUE(mClipboard->SetText("before"));
    const std::uint32_t sequence = mClipboard->GetSequenceNumber();
    EXPECT_EQ(mClipboard->SetText(row.mSet), row.mTaken);
    EXPECT_TRUE(Paste() == row.mFoundElsewhere);
    mClipboard->Look();
    EXPECT_EQ(mClipboard->HasText(), row.mTaken);
    EXPECT_EQ(mClipboard->HasPrivate(), !row.mTaken);
    EXPECT_TRUE(mClipboard->GetText() == row.mFoundElsewhere);
    EXPECT_EQ(mClipboard->GetSequenceNumber(), sequence);
    EXPECT_EQ(CountLosses(), 0U);
  }
}

TEST_F(ClipboardTest, WhatIsNoTextIsNothingToOtherPrograms) {
  ASSERT_TRUE(mClipboard->SetText("before"));
  const std::uint32_t sequence = mClipboard->GetSequenceNumber();
  EXPECT_TRUE(mClipboard->SetPrivate());
  EXPECT_EQ(Paste(), "");
  mClipboard->Look();
  EXPECT_TRUE(mClipboard->HasPrivate());
  EXPECT_FALSE(mClipboard->HasText());
  EXPECT_EQ(mClipboard->GetSequenceNumber(), sequence);
}

TEST_F(ClipboardTest, TellsOnceWhenAnotherProgramTakesIt) {
  for (const bool isText : {true, false}) {
    mRecorder.Clear();
    ASSERT_TRUE(isText ? mClipboard->SetText("mine") : mClipboard->SetPrivate());
    const std::uint32_t sequence = mClipboard->GetSequenceNumber();
    const std::string theirs = isText ? "theirs" : "theirs again";
    CopyElsewhere(theirs);
    EXPECT_TRUE(Until([&] { return CountLosses() > 0; }));
    EXPECT_EQ(mClipboard->GetSequenceNumber(), sequence + 1);
    EXPECT_TRUE(mClipboard->HasText());
    EXPECT_FALSE(mClipboard->HasPrivate());
    EXPECT_EQ(mClipboard->GetText(), theirs);
    // What is no longer this program's own cannot be lost again.
    CopyElsewhere("third");
    EXPECT_TRUE(UntilFound("third"));
    EXPECT_EQ(mClipboard->GetSequenceNumber(), sequence + 2);
    EXPECT_EQ(CountLosses(), 1U);
  }
}

TEST_F(ClipboardTest, CleansWhatIsNoUtf8) {
  CopyElsewhere("a\xFF\xC3z");
  EXPECT_TRUE(UntilFound("a\xEF\xBF\xBD\xEF\xBF\xBDz"));
  // One mark for each byte takes no longer than the text is long.
  CopyElsewhere(std::string(200000, '\xFF') + "end");
  EXPECT_TRUE(Until([&] {
    mClipboard->Look();
    return mClipboard->GetText().ends_with("end");
  }));
  EXPECT_EQ(mClipboard->GetText().size(), 200000U * 3 + 3);
}

// Texts that come in pieces are more than SDL takes.
TEST_F(ClipboardTest, GoesOnBehindATextThatIsTooLargeToComeAtOnce) {
  ASSERT_TRUE(mClipboard->SetText("mine"));
  CopyElsewhere(std::string(8 << 20, 'y'));
  EXPECT_TRUE(Until([&] { return CountLosses() == 1; }));
  // SDL loses patience with a program that still waits for it to take the pieces: not to be asked again.
  CopyElsewhere("small");
  EXPECT_TRUE(Until([&] { return Paste() == "small"; }));
  EXPECT_TRUE(UntilFound("small"));
  EXPECT_TRUE(mClipboard->SetText(kGreeting));
  EXPECT_EQ(Paste(), kGreeting);
}

}  // namespace
}  // namespace Platform
