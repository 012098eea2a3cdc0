#include "TFFramework/Application/Startup.h"

#include <gtest/gtest.h>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/ControlBase/Clipboard.h"
#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Notification/NotificationCenterManager.h"
#include "TFFramework/Renderer/FontRenderer/Font.h"
#include "TFFramework/System/ApplicationBase.h"
#include "TFFramework/System/MFCFrameworkApp.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PngWriter.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/XServer.h"

namespace {

using TF::RCPtr;
using TF::String;

// Starts, and ends at once: with a screen that it could not show, or without.
class LShortApp : public TF::LApplicationBase<LShortApp> {
 public:
  static inline std::int32_t gSkinIndex = 0;
  static inline bool gSettled = false;
  static inline bool gFailed = false;
  static inline std::function<void(LShortApp&)> gLook;

  using LApplicationBase<LShortApp>::LApplicationBase;

  TFRESULT Initialize() override {
    const TFRESULT result = LApplicationBase<LShortApp>::Initialize();
    if (gSettled) return TF::kRunSettled;
    return gFailed ? TF::kFailure : result;
  }
  void StartDisplay() override {}
  TFRESULT OpenScreen() override {
    if (gLook) gLook(*this);
    return TF::kSuccess;
  }
  void OnBeforeMessageLoop() override { QuitMessageLoop(); }
  std::int32_t GetCurrentSkinIndex() override { return gSkinIndex; }
  void RequestExit() {}
  bool IsExitAllowed() override { return true; }
  String GetCompanyName() override { return u"Company"; }
  String GetProductName() override { return u"Product"; }
  String GetProductVersion() override { return u"1.0"; }
  std::uint32_t GetLanguage() override { return 0x0409; }
};

class TestStartup : public TF::MFCFrameworkApp<LShortApp> {
 public:
  TestStartup() : MFCFrameworkApp<LShortApp>(String(u"program")) {}
  String GetSplashPath() override { return mSplashPath.IsEmpty() ? LStartup::GetSplashPath() : mSplashPath; }

  String mSplashPath;
};

class Startup : public testing::Test {
 protected:
  void SetUp() override {
    RegisterProgramResources();
    setenv("LC_ALL", "C", 1);
  }
  void TearDown() override {
    LShortApp::gLook = nullptr;
    LShortApp::gSkinIndex = 0;
    LShortApp::gSettled = false;
    TF::LNotificationCenterManager::ReleaseInstance();
  }
  // What a failing run says to the user.
  static std::string RunAndFail() {
    TestStartup startup;
    testing::internal::CaptureStderr();
    if (startup.InitApplication()) startup.Run();
    return testing::internal::GetCapturedStderr();
  }
};

constexpr const char* kStartError =
    "Error: The application encountered problems during startup and will now close.\n";

TEST_F(Startup, GivesTheApplicationItsTextsAndTheFontOfAStoredSkin) {
  for (const std::int32_t index : {0, -1, 1, 99, std::numeric_limits<std::int32_t>::min()}) {
    LShortApp::gSkinIndex = index;
    TestStartup startup;
    ASSERT_TRUE(startup.InitApplication());
    int looks = 0;
    LShortApp::gLook = [&](LShortApp& application) {
      ++looks;
      String text;
      EXPECT_TRUE(application.GetStringTable()->GetString(u"STARTUP_ERROR_CAPTION", text));
      EXPECT_EQ(text, u"Error");
      EXPECT_FALSE(TF::GetApplicationString(u"EXIT_APPLICATION_DIALOG_MESSAGE").IsEmpty());
      EXPECT_TRUE(TF::GetApplicationString(u"NO_SUCH_KEY").IsEmpty());
      ASSERT_TRUE(application.GetDefaultFont());
      EXPECT_EQ(application.GetDefaultFont()->GetName(), u"Arial");
      EXPECT_EQ(application.GetDefaultFont()->GetSize(), 8.25F);
      EXPECT_FALSE(application.CreateControl(u"noSuchControl"));
      EXPECT_EQ(application.GetClipboard()->GetRegistrationCount(), 4);
    };
    startup.Run();
    EXPECT_EQ(looks, 1);
    EXPECT_TRUE(TF::GetApplicationString(u"EXIT_APPLICATION_DIALOG_MESSAGE").IsEmpty());
  }
}

TEST_F(Startup, WithoutItsResourcesEndsInTheStartError) {
  TF::SetResources({});
  EXPECT_EQ(RunAndFail(), kStartError);
}

// Only the skin is wrong here: the texts are there.
TEST_F(Startup, ASkinThatCannotBeUsedEndsTheStartInTheUsersLanguage) {
  const auto strings = *TF::FindResource(u"TFXML", u"FRAMEWORK_STRINGS");
  const auto version = *TF::FindResource(u"VERSION", u"1");
  for (const std::string_view skin :
       {"", "<r/>", "<r><Application Name='A'>", "<r><SubControl Class='C'/></r>"}) {
    const TF::Resource resources[] = {
        {u"TFXML", u"FRAMEWORK_STRINGS", strings},
        {u"VERSION", u"1", version},
        {u"TFXML", u"APP_SKINS", {reinterpret_cast<const unsigned char*>(skin.data()), skin.size()}},
    };
    TF::SetResources(resources);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    const std::string text = RunAndFail();
    EXPECT_EQ(text.rfind("Fehler: ", 0), 0U) << text << " with " << skin;
    // Before the documents were read, too.
    LShortApp::gFailed = true;
    EXPECT_EQ(RunAndFail().rfind("Fehler: ", 0), 0U) << skin;
    LShortApp::gFailed = false;
    // A run that shows nothing does not read the skin at all.
    LShortApp::gSettled = true;
    EXPECT_EQ(RunAndFail(), "");
    LShortApp::gSettled = false;
    TF::SetResources({});
  }
}

TEST_F(Startup, WithoutDocumentsThereIsNoSkin) {
  const auto application = TF::MakeRC<LShortApp>(String(u"program"));
  EXPECT_EQ(application->TakeDocuments(), TF::kFailure);
  EXPECT_EQ(application->SetSkin(0), TF::kFailure);
  EXPECT_FALSE(application->CreateControl(u"mainControl"));
}

TEST_F(Startup, ShowsASplashUntilTheScreenIsThere) {
  EXPECT_EQ(TestStartup().GetSplashPath(), u"");
  const TestSupport::XServer server;
  const TestSupport::ScreenPixels screen;
  const TestSupport::TemporaryFolder folder;
  const auto picture = TestSupport::WriteArgbPng(100, 60, std::vector<std::uint32_t>(6000, 0xFF00FF00));
  folder.WriteFile("Splash.png", std::string(picture.begin(), picture.end()));
  TestStartup startup;
  startup.mSplashPath = String(folder.InnerEntry("Splash.png"));
  const auto shown = [&screen] { return screen.At(400, 280) == 0x00FF00; };
  ASSERT_TRUE(startup.InitApplication());
  EXPECT_TRUE(TestSupport::Eventually(shown));
  startup.Run();
  EXPECT_TRUE(TestSupport::Eventually([&] { return !shown(); }));
}

}  // namespace
