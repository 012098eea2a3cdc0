#include "Platform/EventHandle.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <vector>

namespace Platform {

namespace {

// The rest of a wait, asked for again after each wake-up that brought nothing.
class WaitLimit {
 public:
  explicit WaitLimit(std::uint32_t milliseconds) : mMilliseconds(milliseconds) {
    if (IsTimed()) mEnd = Clock::now() + std::chrono::milliseconds(milliseconds);
  }

  // As poll takes it: -1 without a limit, rounded up so that no wait ends early.
  int Rest() const {
    if (mMilliseconds == kWaitForever) return -1;
    if (mMilliseconds == 0) return 0;
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(mEnd - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(rest, 0, INT_MAX));
  }

 private:
  using Clock = std::chrono::steady_clock;

  bool IsTimed() const { return mMilliseconds != 0 && mMilliseconds != kWaitForever; }

  const std::uint32_t mMilliseconds;
  Clock::time_point mEnd{};
};

// Few enough for the stack; longer lists go to the heap.
constexpr std::size_t kInlineDescriptors = 16;

// Reasons for which the same call may succeed the next time.
bool IsPassing(int error) {
  return error == EINTR || error == EAGAIN || error == ENOMEM;
}

// kSignalled when at least one entry has something to report.
WaitStatus Poll(std::span<pollfd> entries, const WaitLimit& limit) {
  for (;;) {
    const int rest = limit.Rest();
    const int ready = poll(entries.data(), entries.size(), rest);
    if (ready > 0) return WaitStatus::kSignalled;
    if (ready < 0 && !IsPassing(errno)) return WaitStatus::kFailed;
    if (ready == 0 && limit.Rest() == 0) return WaitStatus::kTimeout;
  }
}

enum class ReadResult { kConsumed, kNothing, kFailed };

ReadResult Consume(int descriptor) {
  std::uint64_t count = 0;
  while (read(descriptor, &count, sizeof count) < 0) {
    if (errno == EAGAIN) return ReadResult::kNothing;
    if (errno != EINTR) return ReadResult::kFailed;
  }
  return ReadResult::kConsumed;
}

bool IsReadable(const pollfd& entry) {
  return (entry.revents & POLLIN) != 0;
}

WaitStatus WaitForAny(std::span<pollfd> entries, const WaitLimit& limit, std::size_t& index) {
  for (;;) {
    const WaitStatus status = Poll(entries, limit);
    if (status != WaitStatus::kSignalled) return status;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (entries[i].revents == 0) continue;
      if (!IsReadable(entries[i])) return WaitStatus::kFailed;
      const ReadResult result = Consume(entries[i].fd);
      if (result == ReadResult::kFailed) return WaitStatus::kFailed;
      if (result == ReadResult::kNothing) continue;  // Another waiter was faster.
      index = i;
      return WaitStatus::kSignalled;
    }
  }
}

}  // namespace

EventHandle::EventHandle(bool autoReset)
    : mDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), mAutoReset(autoReset) {}

EventHandle::~EventHandle() {
  if (IsValid()) close(mDescriptor);
}

bool EventHandle::Set() {
  if (!IsValid()) return false;
  // A waiter that only polls takes over the memory of the setter through this counter.
  mSetCount.fetch_add(1, std::memory_order_release);
  const std::uint64_t one = 1;
  while (write(mDescriptor, &one, sizeof one) < 0) {
    if (errno == EAGAIN) return true;  // The counter is full: signalled it is.
    if (errno != EINTR) return false;
  }
  return true;
}

bool EventHandle::Reset() {
  return IsValid() && Consume(mDescriptor) != ReadResult::kFailed;
}

WaitStatus EventHandle::Wait(std::uint32_t milliseconds) {
  if (!IsValid()) return WaitStatus::kFailed;
  const WaitStatus status = TryPass(milliseconds);
  if (status == WaitStatus::kSignalled) (void)mSetCount.load(std::memory_order_acquire);
  return status;
}

WaitStatus EventHandle::TryPass(std::uint32_t milliseconds) {
  pollfd entry{.fd = mDescriptor, .events = POLLIN, .revents = 0};
  const WaitLimit limit(milliseconds);
  if (mAutoReset) {
    const ReadResult first = Consume(mDescriptor);
    if (first != ReadResult::kNothing)
      return first == ReadResult::kConsumed ? WaitStatus::kSignalled : WaitStatus::kFailed;
    if (milliseconds == 0) return WaitStatus::kTimeout;
    std::size_t index = 0;
    return WaitForAny({&entry, 1}, limit, index);
  }
  const WaitStatus status = Poll({&entry, 1}, limit);
  return status == WaitStatus::kSignalled && !IsReadable(entry) ? WaitStatus::kFailed : status;
}

WaitStatus WaitForAnyEvent(std::span<const int> descriptors, std::uint32_t milliseconds, std::size_t& index) {
  if (descriptors.empty()) return WaitStatus::kFailed;
  std::array<pollfd, kInlineDescriptors> few;
  std::vector<pollfd> many;
  std::span<pollfd> entries(few.data(), std::min(descriptors.size(), few.size()));
  if (descriptors.size() > few.size()) {
    many.resize(descriptors.size());
    entries = many;
  }
  std::transform(descriptors.begin(), descriptors.end(), entries.begin(),
                 [](int descriptor) { return pollfd{.fd = descriptor, .events = POLLIN, .revents = 0}; });
  return WaitForAny(entries, WaitLimit(milliseconds), index);
}

}  // namespace Platform
