#include "Tests/Support/XServer.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace TestSupport {

namespace {

constexpr int kStartLimitMs = 60000;

// The server writes the number and a line feed once it takes connections.
std::string ReadNumber(int pipe) {
  std::string number;
  while (number.empty() || number.back() != '\n') {
    pollfd wait{pipe, POLLIN, 0};
    const int ready = poll(&wait, 1, kStartLimitMs);
    if (ready < 0 && errno == EINTR) continue;
    char character = 0;
    if (ready <= 0 || read(pipe, &character, 1) != 1) return {};
    number.push_back(character);
  }
  number.pop_back();
  return number;
}

}  // namespace

XServer::XServer(const std::string& screen) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the X server");
  const std::vector<std::string> arguments{
      "Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", screen, "-nolisten", "tcp", "-noreset"};
  mProgram.emplace(arguments, ends[1]);
  close(ends[1]);
  const std::string number = ReadNumber(ends[0]);
  close(ends[0]);
  if (number.empty()) throw std::runtime_error("the X server does not start");
  mDisplay = ":" + number;
  setenv("DISPLAY", mDisplay.c_str(), 1);
  // A display of its own has no session bus; the libraries of windows would try to launch one.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

XServer::~XServer() {
  unsetenv("DISPLAY");
}

}  // namespace TestSupport
