#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>

// A whole status run without a device beside a bare program that links the same libraries.

namespace {

// Runs a program of the build to its end and gives its peak memory in KiB.
long RunProgram(const std::string& name, const char* argument, int wantedStatus) {
  const std::string path = (std::filesystem::canonical("/proc/self/exe").parent_path() / name).string();
  char* const arguments[] = {const_cast<char*>(path.c_str()), const_cast<char*>(argument), nullptr};
  pid_t process = 0;
  if (posix_spawn(&process, path.c_str(), nullptr, nullptr, arguments, environ) != 0) {
    throw std::runtime_error("cannot start " + path);
  }
  int status = 0;
  rusage usage{};
  wait4(process, &status, 0, &usage);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != wantedStatus) throw std::runtime_error(path + " failed");
  return usage.ru_maxrss;
}

void RunRepeatedly(benchmark::State& state, const char* program, const char* argument, int wantedStatus) {
  long peak = 0;
  for (auto _ : state) peak = std::max(peak, RunProgram(program, argument, wantedStatus));
  state.counters["peak_MiB"] = static_cast<double>(peak) / 1024.0;
}

void SettledRun(benchmark::State& state) {
  setenv("TESSEL_MIDI", "virtual:/nowhere", 1);
  RunRepeatedly(state, "tessel-firmware-updater", "-RETURN_UPDATE_MODE_STATUS", 1);
}
BENCHMARK(SettledRun)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BareProgram(benchmark::State& state) {
  RunRepeatedly(state, "bare-program", nullptr, 0);
}
BENCHMARK(BareProgram)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
