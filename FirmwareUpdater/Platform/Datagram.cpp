#include "Platform/Datagram.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

namespace Platform {

std::string ResolveHost(const std::string& host) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_DGRAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return {};
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, freeaddrinfo);
  std::array<char, NI_MAXHOST> text{};
  const int error =
      getnameinfo(found->ai_addr, found->ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
  return error == 0 ? text.data() : "";
}

std::string LocalHostName() {
  std::array<char, 64> name{};
  // A name that was cut may come without its end.
  if (gethostname(name.data(), name.size() - 1) != 0 && errno != ENAMETOOLONG) return {};
  return name.data();
}

bool DatagramSocket::Open(const std::string& address, std::uint16_t port) {
  if (IsOpen()) return true;
  in_addr target{};
  if (inet_pton(AF_INET, address.c_str(), &target) != 1) return false;
  mAddress = target.s_addr;
  mPort = htons(port);
  mSocket.Reset(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP));
  return IsOpen();
}

bool DatagramSocket::Send(std::string_view bytes) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_addr.s_addr = mAddress;
  target.sin_port = mPort;
  ssize_t sent;
  do {
    sent = sendto(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL,
                  reinterpret_cast<const sockaddr*>(&target), sizeof(target));
  } while (sent == -1 && errno == EINTR);
  return sent == static_cast<ssize_t>(bytes.size());
}

}  // namespace Platform
