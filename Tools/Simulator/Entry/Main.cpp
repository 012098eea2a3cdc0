#include <fmt/format.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tools/Simulator/CommandLine.h"
#include "Tools/Simulator/SimulatorServer.h"
#include "Tools/Support/Descriptor.h"
#include "Tools/Support/FileAccess.h"

namespace {

constexpr int kStatusStopped = 0;
constexpr int kStatusFailed = 1;
constexpr int kStatusBadOptions = 2;

// Readable once one of the signals has come that ask the program to end.
Tools::Descriptor MakeStopDescriptor() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
  if (sigprocmask(SIG_BLOCK, &signals, nullptr) != 0)
    throw std::runtime_error(fmt::format("sigprocmask: {}", std::strerror(errno)));
  Tools::Descriptor stop(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!stop) throw std::runtime_error(fmt::format("signalfd: {}", std::strerror(errno)));
  return stop;
}

void Serve(const Simulator::CommandLine& line) {
  const Tools::Descriptor stop = MakeStopDescriptor();
  Simulator::SimulatorServer server(line.mServer);
  server.Open();
  std::cout << "ready" << std::endl;
  if (!line.mReadyFile.empty()) Tools::ReplaceFile(line.mReadyFile, {});
  server.Run(stop.Get());
  server.Stop();
  if (const std::string failure = server.Failure(); !failure.empty()) throw std::runtime_error(failure);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  try {
    const Simulator::CommandLine line = Simulator::ParseCommandLine(arguments);
    if (line.mHelp) {
      std::cout << Simulator::HelpText() << std::flush;
      return kStatusStopped;
    }
    Serve(line);
    return kStatusStopped;
  } catch (const std::invalid_argument& error) {
    std::cerr << "tessel-simulator: " << error.what() << "\ntessel-simulator --help tells the options\n";
    return kStatusBadOptions;
  } catch (const std::exception& error) {
    std::cerr << "tessel-simulator: " << error.what() << '\n';
    return kStatusFailed;
  }
}
