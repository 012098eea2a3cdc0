#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Tests/EndToEnd/ProgramRun.h"
#include "Tests/Support/ChildProgram.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/XServer.h"

namespace EndToEnd {
namespace {

using TestSupport::Eventually;

// A Wayland display whose screen is a window of 900 by 700 on an X display, in its upper left corner. One
// without any screen has no keyboard and mouse either, which SDL takes for granted.
class WaylandScreen {
 public:
  static constexpr std::int16_t kMiddleX = 450;
  static constexpr std::int16_t kHeight = 700;

  WaylandScreen() {
    setenv("XDG_RUNTIME_DIR", mFolder.Path().c_str(), 1);
    mCompositor.emplace(std::vector<std::string>{"weston", "--backend=x11-backend.so", "--use-pixman",
                                                 "--no-config", "--width=900", "--height=700",
                                                 "--idle-time=0", "--socket=display", "--log=/dev/null"});
  }

  bool IsReady() const {
    return Eventually([this] { return std::filesystem::exists(mFolder.Entry("display")); });
  }
  std::string Folder() const { return mFolder.Path(); }
  // Whether a window that covers the middle shows a line in this colour.
  bool Shows(std::uint32_t color) const {
    return Eventually([&] {
      for (std::int16_t y = 0; y < kHeight; ++y)
        if (mPixels.At(kMiddleX, y) == color) return true;
      return false;
    });
  }

 private:
  const TestSupport::TemporaryFolder mFolder;
  const TestSupport::XServer mServer{"1024x768x24"};
  std::optional<TestSupport::ChildProgram> mCompositor;
  const TestSupport::ScreenPixels mPixels;
};

TEST(GalleryOnWayland, ShowsItselfAndEndsInOrder) {
  constexpr std::uint32_t kAccent = 0x0A626C;
  const WaylandScreen screen;
  ASSERT_TRUE(screen.IsReady());
  ProgramOptions options;
  options.mProgram = "tessel-gallery";
  options.mEnvironment = {{"DISPLAY", ""},
                          {"WAYLAND_DISPLAY", "display"},
                          {"XDG_RUNTIME_DIR", screen.Folder()},
                          {"XDG_CONFIG_HOME", screen.Folder()},
                          // There SDL draws through Mesa, whose drivers leave blocks behind and are unloaded
                          // before the leak checker could name them; on X11 it looks for ours.
                          {"ASAN_OPTIONS", "detect_leaks=0"}};
  ProgramRun run(options);
  ASSERT_TRUE(run.WaitForOutput("ready\n"));
  EXPECT_TRUE(screen.Shows(kAccent));
  run.Signal(SIGTERM);
  EXPECT_EQ(run.Wait(), 0);
  EXPECT_EQ(run.Errors().find("rror:"), std::string::npos) << run.Errors();
}

}  // namespace
}  // namespace EndToEnd
