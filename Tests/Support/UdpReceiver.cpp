#include "Tests/Support/UdpReceiver.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

#include "Platform/Datagram.h"

namespace TestSupport {

namespace {

constexpr int kPatienceMilliseconds = 20'000;
constexpr std::size_t kLongestDatagram = 65'536;

}  // namespace

UdpReceiver::UdpReceiver() : mSocket(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (!mSocket || bind(mSocket.Get(), generic, size) != 0 ||
      getsockname(mSocket.Get(), generic, &size) != 0) {
    throw std::system_error(errno, std::generic_category(), "UDP socket");
  }
  mPort = ntohs(address.sin_port);
}

std::string UdpReceiver::Receive() {
  pollfd wait{mSocket.Get(), POLLIN, 0};
  int ready;
  do ready = poll(&wait, 1, kPatienceMilliseconds);
  while (ready == -1 && errno == EINTR);
  if (ready != 1) {
    ADD_FAILURE() << "no datagram came";
    return {};
  }
  std::string text(kLongestDatagram, '\0');
  const ssize_t length = recv(mSocket.Get(), text.data(), text.size(), 0);
  text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
  return text;
}

std::string UdpReceiver::ReceiveAllBefore(const std::string& mark) {
  Platform::DatagramSocket sender;
  if (!sender.Open("127.0.0.1", mPort) || !sender.Send(mark)) {
    ADD_FAILURE() << "the mark cannot be sent";
    return {};
  }
  std::string all;
  for (std::string text = Receive(); text != mark && !testing::Test::HasFailure(); text = Receive())
    all += text;
  return all;
}

}  // namespace TestSupport
