#include "Tests/Support/XServer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

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

XServer::XServer(const std::string& screen) : mParent(getpid()) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the X server");
  const std::string descriptor = std::to_string(ends[1]);
  mProcess = fork();
  if (mProcess == 0) {
    // It must not outlive a test that crashes.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != mParent || fcntl(ends[1], F_SETFD, 0) != 0) _exit(127);
    execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", screen.c_str(), "-nolisten",
           "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(ends[1]);
  const std::string number = mProcess > 0 ? ReadNumber(ends[0]) : std::string();
  close(ends[0]);
  if (number.empty()) {
    End();
    throw std::runtime_error("the X server does not start");
  }
  mDisplay = ":" + number;
  setenv("DISPLAY", mDisplay.c_str(), 1);
}

XServer::~XServer() {
  unsetenv("DISPLAY");
  End();
}

void XServer::End() {
  if (mProcess <= 0) return;
  kill(mProcess, SIGTERM);
  waitpid(mProcess, nullptr, 0);
}

}  // namespace TestSupport
