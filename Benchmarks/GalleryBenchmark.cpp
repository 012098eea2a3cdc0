// The gallery as a process: from its start to its first pixels beside a bare window with one line of text
// (wanted: at most 1.4 times), and what it costs while nobody touches it (wanted: below 1 % of one core).

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Tests/Support/ScreenPixels.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/XServer.h"

namespace {

constexpr std::int16_t kMiddleX = 512;
constexpr std::int16_t kMiddleY = 384;

// A screen of 1024 by 768 for the programs that are measured.
class Screen {
 public:
  Screen() {
    for (const char* const folder : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
      setenv(folder, mFolder.Path().c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
  }
  bool IsDark() const { return mPixels.At(kMiddleX, kMiddleY) == 0; }

 private:
  const TestSupport::TemporaryFolder mFolder;
  const TestSupport::XServer mServer{"1024x768x24"};
  const TestSupport::ScreenPixels mPixels;
};

class Program {
 public:
  explicit Program(const std::string& name) {
    const std::string path = (std::filesystem::canonical("/proc/self/exe").parent_path() / name).string();
    char* const arguments[] = {const_cast<char*>(path.c_str()), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const int result = posix_spawn(&mProcess, path.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0) throw std::runtime_error("cannot start " + path);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() {
    kill(mProcess, SIGKILL);
    waitpid(mProcess, nullptr, 0);
  }
  bool HasEnded() const { return waitpid(mProcess, nullptr, WNOHANG) != 0; }
  // Clock ticks of the processor so far.
  long ProcessorTime() const {
    std::ifstream file("/proc/" + std::to_string(mProcess) + "/stat");
    std::string word;
    constexpr int kUserTime = 14;
    for (int i = 1; i < kUserTime; ++i) file >> word;
    long user = 0;
    long system = 0;
    file >> user >> system;
    return user + system;
  }

 private:
  pid_t mProcess = 0;
};

using Clock = std::chrono::steady_clock;

// Throws runtime_error when the program ends instead.
void WaitForPixels(const Screen& screen, const Program& program) {
  while (screen.IsDark()) {
    if (program.HasEnded()) throw std::runtime_error("the program shows nothing");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void StartToFirstFrame(benchmark::State& state, const char* name) {
  const Screen screen;
  for (auto _ : state) {
    const auto start = Clock::now();
    {
      const Program program(name);
      WaitForPixels(screen, program);
      state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
    // Its window goes with it.
    while (!screen.IsDark()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}
BENCHMARK_CAPTURE(StartToFirstFrame, Gallery, "tessel-gallery")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK_CAPTURE(StartToFirstFrame, BareWindow, "bare-window")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

void GalleryAtRest(benchmark::State& state) {
  constexpr auto kRest = std::chrono::seconds(5);
  const Screen screen;
  const Program program("tessel-gallery");
  WaitForPixels(screen, program);
  std::this_thread::sleep_for(std::chrono::seconds(1));
  for (auto _ : state) {
    const long before = program.ProcessorTime();
    std::this_thread::sleep_for(kRest);
    const auto ticks = static_cast<double>(program.ProcessorTime() - before);
    state.counters["core_percent"] =
        100 * ticks / static_cast<double>(sysconf(_SC_CLK_TCK)) / static_cast<double>(kRest.count());
  }
}
BENCHMARK(GalleryAtRest)->Iterations(1)->UseRealTime();

}  // namespace
