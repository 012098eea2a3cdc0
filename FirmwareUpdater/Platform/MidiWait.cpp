#include "Platform/MidiWait.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>

namespace Platform {
namespace {

using Clock = std::chrono::steady_clock;

// Rounded up, so that a wait never ends before its deadline.
int PollTime(const MidiDeadline& deadline) {
  if (!deadline) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
}

Readiness Await(const EventHandle& wake, int descriptor, short events, const MidiDeadline& deadline) {
  std::array<pollfd, 2> polled{pollfd{wake.GetDescriptor(), POLLIN, 0}, pollfd{descriptor, events, 0}};
  while (true) {
    const int count = poll(polled.data(), polled.size(), PollTime(deadline));
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) return Readiness::kGone;
    if (polled[0].revents != 0) return Readiness::kWoken;
    const short found = polled[1].revents;
    // What is left to read counts before the end of the stream; room to write does not.
    if ((found & POLLIN) != 0) return Readiness::kReady;
    if ((found & (POLLERR | POLLHUP | POLLNVAL)) != 0) return Readiness::kGone;
    if (found != 0) return Readiness::kReady;
    if (deadline && Clock::now() >= *deadline) return Readiness::kTimeout;
  }
}

}  // namespace

Readiness AwaitReadable(const EventHandle& wake, int descriptor, MidiDeadline deadline) {
  return Await(wake, descriptor, POLLIN, deadline);
}

Readiness AwaitWritable(const EventHandle& wake, int descriptor, MidiDeadline deadline) {
  return Await(wake, descriptor, POLLOUT, deadline);
}

}  // namespace Platform
