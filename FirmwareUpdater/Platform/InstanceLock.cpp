#include "Platform/InstanceLock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "Platform/Clock.h"

namespace Platform {

namespace {

constexpr std::uint32_t kRequestMilliseconds = 2'000;    // A client sends at once what it has.
constexpr std::uint32_t kAnswerMilliseconds = 5'000;     // Leaves a client behind others its turn.
constexpr std::uint32_t kRetryMilliseconds = 100;        // Until a full descriptor table may have room.
constexpr std::uint32_t kLongestCommandLine = 4u << 20;  // Twice what the system lets a program start with.
constexpr int kBacklog = 8;
constexpr int kShareTries = 100;  // One a millisecond; the first one needs microseconds.
constexpr mode_t kUserOnly = S_IRUSR | S_IWUSR;
constexpr char kTakenOver = 1;
constexpr char kNoWindow = 0;

// The folder counts only when nobody else can put files into it.
std::string RuntimeFolder() {
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  struct stat status;
  if (folder == nullptr || folder[0] != '/' || stat(folder, &status) != 0) return {};
  const bool ours = S_ISDIR(status.st_mode) && status.st_uid == geteuid();
  return ours && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 ? folder : "";
}

// Locks of the open file: they end with the descriptor and change their kind in one step.
bool SetLock(int file, short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  return fcntl(file, F_OFD_SETLK, &lock) == 0;
}

int OpenLockFile(const std::string& path) {
  return open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kUserOnly);
}

bool MakeAddress(const std::string& path, sockaddr_un& address) {
  address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) return false;
  std::copy(path.begin(), path.end(), address.sun_path);
  return true;
}

int MakeSocket() {
  return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

bool IsSameUser(int connection) {
  ucred peer{};
  socklen_t size = sizeof(peer);
  return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

// Moves whole blocks over a connection until a deadline or until stop is readable.
class Exchange {
 public:
  static constexpr int kNoStop = -1;

  Exchange(int connection, std::uint32_t milliseconds, int stop = kNoStop)
      : mConnection(connection), mStop(stop), mStart(MillisecondTicks()), mLimit(milliseconds) {}

  bool Receive(void* bytes, std::size_t size) {
    auto* at = static_cast<char*>(bytes);
    return Transfer(size, POLLIN, [this, &at](std::size_t left) {
      const ssize_t got = recv(mConnection, at, left, MSG_DONTWAIT);
      if (got > 0) at += got;
      if (got == 0) errno = ECONNRESET;  // The block is not whole.
      return got == 0 ? -1 : got;
    });
  }

  bool Send(const void* bytes, std::size_t size) {
    const auto* at = static_cast<const char*>(bytes);
    return Transfer(size, POLLOUT, [this, &at](std::size_t left) {
      const ssize_t put = send(mConnection, at, left, MSG_DONTWAIT | MSG_NOSIGNAL);
      if (put > 0) at += put;
      return put;
    });
  }

 private:
  template <class Step>
  bool Transfer(std::size_t left, short event, Step step) {
    while (left > 0) {
      const ssize_t moved = step(left);
      if (moved > 0)
        left -= static_cast<std::size_t>(moved);
      else if (errno == EAGAIN && !WaitFor(event))
        return false;
      else if (errno != EAGAIN && errno != EINTR)
        return false;
    }
    return true;
  }

  bool WaitFor(short event) {
    const std::uint32_t passed = MillisecondTicks() - mStart;
    if (passed >= mLimit) return false;
    std::array<pollfd, 2> waits{pollfd{mConnection, event, 0}, pollfd{mStop, POLLIN, 0}};
    const int ready = poll(waits.data(), waits.size(), static_cast<int>(mLimit - passed));
    if (ready < 0) return errno == EINTR;
    return ready > 0 && waits[1].revents == 0;
  }

  int mConnection;
  int mStop;
  std::uint32_t mStart;
  std::uint32_t mLimit;
};

bool ReceiveText(Exchange& exchange, std::string& text) {
  std::uint32_t length = 0;
  if (!exchange.Receive(&length, sizeof(length)) || length > kLongestCommandLine) return false;
  text.resize(length);
  return exchange.Receive(text.data(), length);
}

// Another instance that accepts nothing must not hold this one up for ever.
void LimitConnecting(int connection) {
  const timeval limit{kAnswerMilliseconds / 1000, 0};
  setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
}

}  // namespace

InstanceLock::InstanceLock(std::string_view name) : mBasePath(RuntimeFolder()) {
  if (!mBasePath.empty()) mBasePath.append("/").append(name);
}

InstanceLock::~InstanceLock() {
  StopServing();
}

bool InstanceLock::TryAcquire() {
  if (mBasePath.empty()) return true;
  mPresence.Reset(OpenLockFile(mBasePath + ".lock"));
  if (!mPresence) return true;
  // The first one holds the file alone for a moment and then shares it, so that an instance
  // that started beside it keeps the mark alive when the first one ends.
  const bool first = SetLock(mPresence.Get(), F_WRLCK);
  for (int i = 0; i < kShareTries && !SetLock(mPresence.Get(), F_RDLCK); ++i) SleepMilliseconds(1);
  return first;
}

bool InstanceLock::Serve(CommandLineHandler handler) {
  if (mThreadRuns || mBasePath.empty() || !mStop.IsValid()) return false;
  // Who holds this lock owns the socket's path, so one that is there is left over.
  mWindowLock.Reset(OpenLockFile(mBasePath + ".window.lock"));
  if (!mWindowLock || !SetLock(mWindowLock.Get(), F_WRLCK)) {
    mWindowLock.Reset();
    return false;
  }
  mHandler = std::move(handler);
  mThreadRuns = Listen() && mThread.Start([this] { AnswerUntilStopped(); });
  if (!mThreadRuns) StopListening();
  return mThreadRuns;
}

bool InstanceLock::Listen() {
  sockaddr_un address;
  const std::string path = mBasePath + ".sock";
  if (!MakeAddress(path, address)) return false;
  mListener.Reset(MakeSocket());
  if (!mListener || (unlink(path.c_str()) != 0 && errno != ENOENT)) return false;
  // The file takes its mode from the socket, so it is never open to others.
  return fchmod(mListener.Get(), kUserOnly) == 0 &&
         bind(mListener.Get(), Generic(address), sizeof(address)) == 0 &&
         listen(mListener.Get(), kBacklog) == 0;
}

void InstanceLock::StopServing() {
  if (!mThreadRuns) return;
  mStop.Set();
  mThread.Join();
  mThreadRuns = false;
  StopListening();
}

void InstanceLock::StopListening() {
  if (mListener) unlink((mBasePath + ".sock").c_str());
  mListener.Reset();
  mWindowLock.Reset();
}

void InstanceLock::AnswerUntilStopped() {
  for (;;) {
    std::array<pollfd, 2> waits{pollfd{mStop.GetDescriptor(), POLLIN, 0}, pollfd{mListener.Get(), POLLIN, 0}};
    if (poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) return;
    if (waits[0].revents != 0) return;
    if (waits[1].revents == 0) continue;
    const OwnedDescriptor connection(accept4(mListener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (connection)
      Answer(connection.Get());
    else if (mStop.Wait(kRetryMilliseconds) == WaitStatus::kSignalled)
      return;
  }
}

void InstanceLock::Answer(int connection) {
  if (!IsSameUser(connection)) return;
  Exchange exchange(connection, kRequestMilliseconds, mStop.GetDescriptor());
  std::string text;
  if (!ReceiveText(exchange, text)) return;
  const char answer = mHandler(text) ? kTakenOver : kNoWindow;
  exchange.Send(&answer, sizeof(answer));
}

bool InstanceLock::SendCommandLine(std::string_view text) {
  sockaddr_un address;
  if (mBasePath.empty() || text.size() > kLongestCommandLine) return false;
  if (!MakeAddress(mBasePath + ".sock", address)) return false;
  const OwnedDescriptor connection(MakeSocket());
  if (!connection) return false;
  LimitConnecting(connection.Get());
  if (connect(connection.Get(), Generic(address), sizeof(address)) != 0) return false;
  Exchange exchange(connection.Get(), kAnswerMilliseconds);
  const auto length = static_cast<std::uint32_t>(text.size());
  char answer = kNoWindow;
  return exchange.Send(&length, sizeof(length)) && exchange.Send(text.data(), text.size()) &&
         exchange.Receive(&answer, sizeof(answer)) && answer == kTakenOver;
}

}  // namespace Platform
