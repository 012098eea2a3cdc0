#include "Tests/Tools/SocketClient.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace ToolsTest {

namespace {

constexpr std::size_t kReadSize = 65536;  // Bytes.

// Nothing when nobody listens there.
Tools::Descriptor ConnectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path)) return {};
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  Tools::Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto* const general = reinterpret_cast<const sockaddr*>(&address);
  if (!made || connect(made.Get(), general, sizeof(address)) != 0) return {};
  return made;
}

}  // namespace

SocketClient::SocketClient(const std::string& path) : mSocket(ConnectTo(path)) {
  EXPECT_TRUE(mSocket) << path << ": " << std::strerror(errno);
}

void SocketClient::Send(const std::vector<std::uint8_t>& bytes) {
  ASSERT_EQ(send(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(bytes.size()));
}

std::vector<std::uint8_t> SocketClient::ReadBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes;
  while (bytes.size() < count && ReadMore(bytes, count - bytes.size())) {
  }
  return bytes;
}

std::vector<std::uint8_t> SocketClient::ReadMessage() {
  std::vector<std::uint8_t> bytes;
  while (mMessages.empty() && ReadMore(bytes, kReadSize)) {
    mMessages = mStream.Feed(bytes);
    bytes.clear();
  }
  if (mMessages.empty()) return {};
  std::vector<std::uint8_t> message = std::move(mMessages.front());
  mMessages.erase(mMessages.begin());
  return message;
}

bool SocketClient::ReadsEnd() {
  std::vector<std::uint8_t> bytes;
  while (ReadMore(bytes, kReadSize)) {
  }
  pollfd descriptor{mSocket.Get(), POLLIN, 0};
  return poll(&descriptor, 1, 0) == 1;
}

bool SocketClient::ReadMore(std::vector<std::uint8_t>& bytes, std::size_t most) {
  pollfd descriptor{mSocket.Get(), POLLIN, 0};
  const std::chrono::milliseconds limit = kLimit;
  if (poll(&descriptor, 1, static_cast<int>(limit.count())) != 1) return false;
  std::array<std::uint8_t, kReadSize> buffer;
  const ssize_t count = recv(mSocket.Get(), buffer.data(), std::min(most, buffer.size()), 0);
  if (count <= 0) return false;
  bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + count);
  return true;
}

Computer::Computer(const std::string& directory, const std::string& name)
    : mIn(directory + "/" + name + ".in"), mOut(directory + "/" + name + ".out") {}

std::vector<std::uint8_t> Computer::Ask(const std::vector<std::uint8_t>& message) {
  mOut.Send(message);
  return mIn.ReadMessage();
}

}  // namespace ToolsTest
