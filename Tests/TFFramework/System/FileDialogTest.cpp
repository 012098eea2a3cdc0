#include "TFFramework/System/FileDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "Platform/Desktop.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/Portal/SessionBus.h"
#include "Tests/Support/Portal/StandInPortal.h"
#include "Tests/Support/TestScreen.h"
#include "Tests/TFFramework/System/WindowFixture.h"

namespace TF {
namespace {

using Platform::FileChoice;
using Platform::FileFilter;
using Outcome = FileChoice::Outcome;
using TestSupport::StandInPortal;

TEST(FileFilters, AreReadAsADialogNeedsThem) {
  struct Case {
    const char16_t* mText;
    std::vector<FileFilter> mFilters;
  };
  const Case cases[] = {
      {u"Firmware Files (*.bin)|*.bin|All files (*.*)|*.*\"",
       {{u"Firmware Files (*.bin)", {u"*.bin"}}, {u"All files (*.*)", {u"*"}}}},
      {u"Two|*.a;*.*;\"*.b\"", {{u"Two", {u"*.a", u"*", u"*.b"}}}},
      {u"Name|*.x*.*", {{u"Name", {u"*.x*.*"}}}},
      {u"", {}},
      {u"No pattern", {}},
      {u"No pattern|", {}},
      {u"Empty|;\";|Next|?", {{u"Next", {u"?"}}}},
      {u"Odd|*.a|rest", {{u"Odd", {u"*.a"}}}},
      {u"|*.a", {{u"", {u"*.a"}}}},
  };
  for (const Case& row : cases) EXPECT_EQ(ReadFileFilters(row.mText), row.mFilters) << ToUtf8(row.mText);
}

class FileDialogTest : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    for (const char* const name : {"a.bin", "b.bin", "line\nbreak.bin"}) mFolder.WriteFile(name, name);
  }

  TFRESULT Show(bool multiSelect = false) {
    return mDialog->Show(u"Firmware|*.bin", u"bin", u"Choose", multiSelect);
  }
  TFRESULT Show(Outcome outcome, const std::vector<std::string>& names, bool multiSelect = false) {
    FileChoice choice{outcome, {}, {}};
    for (const std::string& name : names) choice.mPaths.push_back(mFolder.InnerEntry(name));
    mSystem.mFileChooser.mAnswer = choice;
    return Show(multiSelect);
  }
  std::vector<String> Paths() {
    std::vector<String> paths;
    for (std::int32_t index = 0; index < mDialog->GetPaths().GetCount(); ++index)
      paths.push_back(mDialog->GetPaths().GetAt(index));
    return paths;
  }
  String Inner(const char* name) { return String(mFolder.InnerEntry(name)); }
  const Platform::FileRequest& LastRequest() { return mSystem.mFileChooser.mRequests.back(); }

  const RCPtr<LFileDialog> mDialog = MakeRC<LFileDialog>(u"\\start");
};

TEST_F(FileDialogTest, AsksForWhatItIsToldAboveTheActiveWindow) {
  Show(Outcome::kCancelled, {}, true);
  EXPECT_EQ(LastRequest().mTitle, u"Choose");
  EXPECT_EQ(LastRequest().mFolder, u"\\start");
  EXPECT_EQ(LastRequest().mFilters, (std::vector<FileFilter>{{u"Firmware", {u"*.bin"}}}));
  EXPECT_TRUE(LastRequest().mMultiple);
  EXPECT_EQ(LastRequest().mParentHandle, 77U);
  Window().mHasFocus = false;
  Show(Outcome::kCancelled, {});
  EXPECT_FALSE(LastRequest().mMultiple);
  EXPECT_EQ(LastRequest().mParentHandle, 0U);
}

TEST_F(FileDialogTest, OpensNextWhereTheLastFileWas) {
  EXPECT_EQ(Show(Outcome::kChosen, {"a.bin"}), kSuccess);
  EXPECT_EQ(mDialog->GetPath(), Inner("a.bin"));
  EXPECT_EQ(mDialog->GetFolder(), String(mFolder.InnerPath()));
  EXPECT_EQ(Paths(), std::vector<String>());
  Show(Outcome::kCancelled, {});
  EXPECT_EQ(LastRequest().mFolder, mFolder.InnerPath());
}

TEST_F(FileDialogTest, GivesAllOfSeveralFiles) {
  EXPECT_EQ(Show(Outcome::kChosen, {"a.bin", "b.bin"}, true), kSuccess);
  EXPECT_TRUE(mDialog->GetPath().IsEmpty());
  EXPECT_EQ(Paths(), (std::vector<String>{Inner("a.bin"), Inner("b.bin")}));
  EXPECT_EQ(mDialog->GetFolder(), String(mFolder.InnerPath()));
  EXPECT_EQ(Show(Outcome::kChosen, {"b.bin"}, true), kSuccess);
  EXPECT_EQ(mDialog->GetPath(), Inner("b.bin"));
  EXPECT_EQ(Paths(), (std::vector<String>{Inner("b.bin")}));
}

TEST_F(FileDialogTest, ChoosesNothingWithoutAnExistingFile) {
  struct Case {
    Outcome mOutcome;
    std::vector<std::string> mNames;
    bool mMultiple;
  };
  const Case cases[] = {{Outcome::kCancelled, {}, false},
                        {Outcome::kFailed, {}, false},
                        {Outcome::kUnavailable, {}, false},
                        {Outcome::kChosen, {}, false},
                        {Outcome::kChosen, {"vanished"}, false},
                        {Outcome::kChosen, {""}, false},
                        {Outcome::kChosen, {"a.bin", "vanished"}, true}};
  for (const Case& row : cases) {
    ASSERT_EQ(Show(Outcome::kChosen, {"b.bin"}, true), kSuccess);
    const String folder = mDialog->GetFolder();
    EXPECT_EQ(Show(row.mOutcome, row.mNames, row.mMultiple), kFailure);
    EXPECT_TRUE(mDialog->GetPath().IsEmpty());
    EXPECT_EQ(Paths(), std::vector<String>());
    EXPECT_EQ(mDialog->GetFolder(), folder);
  }
}

TEST_F(FileDialogTest, SaysInTheDiagnosticsWhatWentWrong) {
  TestSupport::LogCapture log;
  mSystem.mFileChooser.mAnswer = {Outcome::kUnavailable, {}, "nobody to ask"};
  EXPECT_EQ(Show(), kFailure);
  EXPECT_TRUE(log.Contains("file dialog: nobody to ask"));
  Show(Outcome::kChosen, {"vanished"});
  EXPECT_TRUE(log.Contains("vanished"));
}

TEST_F(FileDialogTest, NeedsADisplay) {
  End();
  TestSupport::LogCapture log;
  EXPECT_EQ(Show(), kFailure);
  EXPECT_TRUE(log.Contains("without a display"));
}

// From the desktop's portal to the file that the program opens.
TEST_F(FileDialogTest, TakesFilesFromThePortal) {
  TestSupport::StartTestScreen();
  mSystem.mFileChooser.mReal = &Platform::GetDesktop().GetWindowSystem().GetFileChooser();
  const std::string folder = "file://" + mFolder.Path().string();
  struct Case {
    StandInPortal::Answer mAnswer;
    TFRESULT mResult;
    const char* mName;
  };
  using Conduct = StandInPortal::Conduct;
  const Case cases[] = {{{Conduct::kAnswers, 0, {folder + "/a.bin"}}, kSuccess, "a.bin"},
                        {{Conduct::kAnswers, 0, {folder + "/line%0Abreak.bin"}}, kSuccess, "line\nbreak.bin"},
                        {{Conduct::kAnswers, 0, {folder}}, kFailure, nullptr},
                        {{Conduct::kAnswers, 0, {folder + "/vanished"}}, kFailure, nullptr},
                        {{Conduct::kAnswers, 1, {}}, kFailure, nullptr},
                        {{Conduct::kDies, 0, {}}, kFailure, nullptr}};
  Window().mHasFocus = false;
  for (const Case& row : cases) {
    const TestSupport::SessionBus bus;
    const StandInPortal portal(bus.GetAddress(), row.mAnswer);
    EXPECT_EQ(Show(), row.mResult);
    EXPECT_EQ(mDialog->GetPath(), row.mName ? Inner(row.mName) : String());
  }
}

}  // namespace
}  // namespace TF
