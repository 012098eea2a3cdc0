// The gallery as a process: from its start to its first pixels beside a bare window with one line of text
// (wanted: at most 1.4 times), and what it costs while nobody touches it (wanted: below 1 % of one core).

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Tests/Support/ChildProgram.h"
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

// A program of the build that tells nobody what it does.
class Program {
 public:
  explicit Program(const std::string& name)
      : mProgram({"sh", "-c", "exec " + PathOf(name) + " >/dev/null"}) {}

  bool IsRunning() { return mProgram.IsRunning(); }
  // Clock ticks of the processor so far.
  long ProcessorTime() const {
    std::ifstream file("/proc/" + std::to_string(mProgram.GetId()) + "/stat");
    std::string word;
    constexpr int kUserTime = 14;
    for (int i = 1; i < kUserTime; ++i) file >> word;
    long user = 0;
    long system = 0;
    file >> user >> system;
    return user + system;
  }

 private:
  static std::string PathOf(const std::string& name) {
    return (std::filesystem::canonical("/proc/self/exe").parent_path() / name).string();
  }

  TestSupport::ChildProgram mProgram;
};

using Clock = std::chrono::steady_clock;

// Throws runtime_error when the program ends instead.
void WaitForPixels(const Screen& screen, Program& program) {
  while (screen.IsDark()) {
    if (!program.IsRunning()) throw std::runtime_error("the program shows nothing");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void StartToFirstFrame(benchmark::State& state, const char* name) {
  const Screen screen;
  for (auto _ : state) {
    const auto start = Clock::now();
    {
      Program program(name);
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
  Program program("tessel-gallery");
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
