#include "Platform/Signals.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

// A blocked signal is delivered to the descriptor even if it is ignored, so those that the
// starter wanted ignored must be left out here.
sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    const bool ignored = sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
    if (!ignored) sigaddset(&signals, signal);
  }
  return signals;
}

void IgnoreBrokenPipes() {
  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, nullptr);  // Cannot fail with these arguments.
}

[[noreturn]] void ThrowLastError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

struct SignalWatcher::Mask {
  sigset_t signals;
};

SignalWatcher::SignalWatcher(Callback callback)
    : mCallback(std::move(callback)), mFormerMask(std::make_unique<Mask>()) {
  IgnoreBrokenPipes();
  const sigset_t signals = EndingSignals();
  mSignals.Reset(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!mSignals) ThrowLastError("signalfd");
  pthread_sigmask(SIG_BLOCK, &signals, &mFormerMask->signals);
  if (mStop.IsValid() && mThread.Start([this] { Watch(); })) return;
  pthread_sigmask(SIG_SETMASK, &mFormerMask->signals, nullptr);
  throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again), "signal thread");
}

SignalWatcher::~SignalWatcher() {
  mStop.Set();
  mThread.Join();
  pthread_sigmask(SIG_SETMASK, &mFormerMask->signals, nullptr);
}

void SignalWatcher::Watch() {
  for (;;) {
    std::array<pollfd, 2> waits{pollfd{mStop.GetDescriptor(), POLLIN, 0}, pollfd{mSignals.Get(), POLLIN, 0}};
    if (poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) return;
    if (waits[0].revents != 0) return;
    signalfd_siginfo information{};
    if (read(mSignals.Get(), &information, sizeof(information)) == sizeof(information)) {
      mCallback(static_cast<int>(information.ssi_signo));
    }
  }
}

}  // namespace Platform
