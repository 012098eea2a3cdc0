#include "Tests/Support/Portal/SessionBus.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace TestSupport {

namespace {

constexpr int kStartLimitMs = 60000;

constexpr const char* kConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

std::string ReadLine(int pipe) {
  std::string line;
  while (line.empty() || line.back() != '\n') {
    pollfd wait{pipe, POLLIN, 0};
    const int ready = poll(&wait, 1, kStartLimitMs);
    if (ready < 0 && errno == EINTR) continue;
    char character = 0;
    if (ready <= 0 || read(pipe, &character, 1) != 1) return {};
    line.push_back(character);
  }
  line.pop_back();
  return line;
}

}  // namespace

SessionBus::SessionBus() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the session bus");
  const std::string configuration = mFolder.WriteFile("bus.conf", kConfiguration).string();
  const std::vector<std::string> arguments{"dbus-daemon", "--nofork", "--nosyslog",
                                           "--config-file=" + configuration,
                                           "--print-address=" + std::to_string(ends[1])};
  mProgram.emplace(arguments, ends[1]);
  close(ends[1]);
  mAddress = ReadLine(ends[0]);
  close(ends[0]);
  if (mAddress.empty()) throw std::runtime_error("the session bus does not start");
  setenv("DBUS_SESSION_BUS_ADDRESS", mAddress.c_str(), 1);
}

SessionBus::~SessionBus() {
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

}  // namespace TestSupport
