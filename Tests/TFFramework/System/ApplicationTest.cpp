#include "TFFramework/System/ApplicationBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <thread>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/Application/ApplicationFolders.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/System/MFCFrameworkApp.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using TF::kFailure;
using TF::kSuccess;
using TF::RCPtr;
using TF::String;
using Texts = std::vector<std::string>;

// What the last application did, in order.
Texts gSteps;

class LTestApp : public TF::LApplicationBase<LTestApp> {
 public:
  static inline TFRESULT gInitializeResult = kSuccess;
  static inline bool gThrowInLoop = false;
  static inline std::atomic<bool> gExitAllowed = true;
  static inline std::function<void()> gOnAsked;
  static inline int gPosts = 0;

  LTestApp(const RCPtr<TF::LControlFactory>& factory, const String& commandLine)
      : LApplicationBase<LTestApp>(factory, commandLine) {
    Note("made");
  }
  ~LTestApp() override { Note("gone"); }

  void OnStartup(const String&) override { Note("startup"); }
  void OnStarted(const String&) override { Note("started"); }
  TFRESULT Initialize() override {
    Note("initialize");
    const TFRESULT result = LApplicationBase<LTestApp>::Initialize();
    return TF::Failed(result) ? result : gInitializeResult;
  }
  void StartDisplay() override {}
  TFRESULT OpenScreen() override {
    Note("screen");
    return kSuccess;
  }
  void OnBeforeMessageLoop() override {
    Note("before loop");
    for (int i = 0; i < gPosts; ++i) PostExit();
  }
  std::int32_t RunMessageLoop() override {
    Note("loop");
    if (gThrowInLoop) {
      gThrowInLoop = false;
      throw std::runtime_error("in the loop");
    }
    return LApplicationBase<LTestApp>::RunMessageLoop();
  }
  TFRESULT Shutdown() override {
    Note("shutdown");
    return LApplicationBase<LTestApp>::Shutdown();
  }
  bool IsExitAllowed() override {
    Note("asked");
    const bool allowed = gExitAllowed;
    if (gOnAsked) std::exchange(gOnAsked, nullptr)();
    return allowed;
  }
  String GetCompanyName() override { return u"Company"; }
  String GetProductName() override { return u"Product"; }
  String GetProductVersion() override { return u"1.0"; }
  std::uint32_t GetLanguage() override { return 0x0409; }
  void RequestExit() { PostExit(); }

  void PostExit() { GetApplicationCenter()->Post(TF::LNotification::Create(TF::kAppExitRequest, nullptr)); }

 private:
  static void Note(const char* step) { gSteps.push_back(step); }
};

class Application : public testing::Test {
 protected:
  void SetUp() override {
    gSteps.clear();
    LTestApp::gInitializeResult = kSuccess;
    LTestApp::gThrowInLoop = false;
    LTestApp::gExitAllowed = true;
    LTestApp::gPosts = 0;
    LTestApp::gOnAsked = nullptr;
    TF::LNotificationCenterManager::GetInstance()->GetCenter(TF::kApplicationCenterName)->Discard();
    RegisterProgramResources();
    ASSERT_TRUE(mApp.InitApplication());
  }
  TF::MFCFrameworkApp<LTestApp> mApp{String(u"program -OPTION")};
};

TEST_F(Application, RunsItsStepsInOrderAndEndsOnRequest) {
  LTestApp::gPosts = 1;
  mApp.Run();
  EXPECT_EQ(gSteps, Texts({"made", "startup", "initialize", "started", "screen", "before loop", "asked",
                           "loop", "shutdown", "gone"}));
  EXPECT_EQ(TF::LFrameworkApp::GetInstance(), nullptr);
}

TEST_F(Application, SettledRunEndsWithoutAScreen) {
  for (const TFRESULT settled : {TF::kRunSettled, TF::kStartupEnded0, TF::kStartupEnded16}) {
    gSteps.clear();
    LTestApp::gInitializeResult = settled;
    mApp.Run();
    EXPECT_EQ(gSteps, Texts({"made", "startup", "initialize", "shutdown", "gone"}));
  }
}

TEST_F(Application, FailedStartIsReportedAndEndsInOrder) {
  LTestApp::gInitializeResult = kFailure;
  testing::internal::CaptureStderr();
  mApp.Run();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: The application encountered problems during startup and will now close.\n");
  EXPECT_EQ(gSteps, Texts({"made", "startup", "initialize", "shutdown", "gone"}));
}

// What goes on, such as an update, goes on in the loop until the program may end.
TEST_F(Application, ExceptionInTheLoopIsReportedAndAsksForTheExit) {
  LTestApp::gThrowInLoop = true;
  testing::internal::CaptureStderr();
  mApp.Run();
  EXPECT_NE(testing::internal::GetCapturedStderr().find("Error: "), std::string::npos);
  EXPECT_EQ(gSteps, Texts({"made", "startup", "initialize", "started", "screen", "before loop", "loop",
                           "loop", "asked", "shutdown", "gone"}));
}

TEST_F(Application, RequestsBeforeTheStartLeaveNothingToRun) {
  mApp.RequestExit();
  mApp.Run();
  EXPECT_EQ(gSteps, Texts());
}

// A request that comes while it is not allowed is dropped; a later one counts.
TEST_F(Application, ExitIsDroppedWhileItIsNotAllowed) {
  LTestApp::gExitAllowed = false;
  LTestApp::gPosts = 1;
  LTestApp::gOnAsked = [] {
    LTestApp::gExitAllowed = true;
    dynamic_cast<LTestApp*>(TF::LFrameworkApp::GetInstance())->PostExit();
  };
  mApp.Run();
  EXPECT_EQ(std::count(gSteps.begin(), gSteps.end(), "asked"), 2);
  EXPECT_EQ(gSteps.back(), "gone");
}

TEST(ApplicationFolders, AreMadeBelowTheUsersFolders) {
  const TestSupport::TemporaryFolder folder;
  const char* before = std::getenv("XDG_CONFIG_HOME");
  const std::string saved = before ? before : "";
  setenv("XDG_CONFIG_HOME", folder.Entry("config").c_str(), 1);
  const String local = TF::GetApplicationFolder(TF::kLocalFolderId, u"Comp/any", u"Prod:uct");
  EXPECT_EQ(TF::ToUtf8(local), TF::ToUtf8(folder.InnerEntry("config") + u"\\Comp_any\\Prod_uct"));
  EXPECT_TRUE(std::filesystem::is_directory(folder.Entry("config") / "Comp_any" / "Prod_uct"));
  if (before)
    setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
  else
    unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(TF::GetApplicationFolder(TF::kResourceFolderId), u"::");
  EXPECT_FALSE(TF::GetApplicationFolder(TF::kProgramFolderId).IsEmpty());
  try {
    TF::GetApplicationFolder(5);
    FAIL();
  } catch (const TF::Exception<std::out_of_range>& exception) {
    EXPECT_EQ(
        std::string(exception.what())
            .rfind("Out of Range : Unknown Path ID. : TF::MFCFrameworkApp<class LApplication>::GetFolder : ",
                   0),
        0u);
  }
}

}  // namespace
