#include "Tests/Support/MidiSockets.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace TestSupport {
namespace {

constexpr int kWaitMilliseconds = 20000;

int Checked(int result, const char* call) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), call);
  return result;
}

bool WaitFor(int descriptor, short events) {
  pollfd entry{descriptor, events, 0};
  int count = 0;
  do {
    count = poll(&entry, 1, kWaitMilliseconds);
  } while (count < 0 && errno == EINTR);
  if (count != 1) ADD_FAILURE() << "nothing happened on a MIDI socket";
  return count == 1;
}

}  // namespace

void MidiConnection::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!WaitFor(mSocket.Get(), POLLOUT)) return;
    const ssize_t count = send(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (count < 0) {
      ADD_FAILURE() << "the port does not take the device's bytes: " << std::strerror(errno);
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string MidiConnection::Receive(std::size_t wanted) {
  std::string bytes;
  std::array<char, 4096> piece;
  while (bytes.size() < wanted && WaitFor(mSocket.Get(), POLLIN)) {
    const ssize_t count = recv(mSocket.Get(), piece.data(), std::min(piece.size(), wanted - bytes.size()), 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    bytes.append(piece.data(), static_cast<std::size_t>(count));
  }
  return bytes;
}

std::string MidiConnection::ReceiveToEnd() {
  return Receive(std::string::npos);
}

bool MidiConnection::WaitForHangUp() {
  return WaitFor(mSocket.Get(), POLLRDHUP);
}

MidiSocket::MidiSocket(const std::filesystem::path& path, int backlog)
    : mPath(path), mSocket(Checked(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof(address.sun_path)) throw std::system_error(ENAMETOOLONG, std::generic_category());
  std::memcpy(address.sun_path, text.c_str(), text.size() + 1);
  Checked(bind(mSocket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), "bind");
  Checked(listen(mSocket.Get(), backlog), "listen");
}

MidiSocket::~MidiSocket() {
  RemoveFile();
}

MidiConnection MidiSocket::Accept() {
  WaitFor(mSocket.Get(), POLLIN);
  return MidiConnection(
      Platform::OwnedDescriptor(Checked(accept4(mSocket.Get(), nullptr, nullptr, SOCK_CLOEXEC), "accept")));
}

void MidiSocket::RemoveFile() {
  std::error_code ignored;  // A test may have removed it before.
  std::filesystem::remove(mPath, ignored);
}

}  // namespace TestSupport
