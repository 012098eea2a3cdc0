#include "Tools/Simulator/VirtualPort.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Simulator {
namespace {

constexpr int kBacklog = 64;                       // Connections that wait to be let in.
constexpr std::size_t kReadSize = 65536;           // Bytes taken from one connection at a time.
constexpr std::string_view kFreshSuffix = ".new";  // Of a socket that does not listen yet.

[[noreturn]] void Fail(const std::string& path, const char* action, int error) {
  throw std::runtime_error(fmt::format("{}: cannot {}: {}", path, action, std::strerror(error)));
}

sockaddr_un AddressOf(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof(address.sun_path))
    throw std::runtime_error(
        fmt::format("{}: the path of a socket has at most {} bytes", path, sizeof(address.sun_path) - 1));
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

Tools::Descriptor MakeSocket(const std::string& path) {
  Tools::Descriptor made(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!made) Fail(path, "make a socket", errno);
  return made;
}

// A socket that a simulator left behind when it was killed refuses connections.
void RefuseTaken(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) return;
    Fail(path, "examine", errno);
  }
  if (!S_ISSOCK(status.st_mode)) throw std::runtime_error(path + ": is there and is no socket");
  const sockaddr_un address = AddressOf(path);
  const Tools::Descriptor probe = MakeSocket(path);
  if (connect(probe.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ||
      errno == EAGAIN)
    throw std::runtime_error(path + ": another device serves this port");
  if (errno != ECONNREFUSED && errno != ENOENT) Fail(path, "examine", errno);
}

pollfd Awaited(int descriptor, bool alsoWritable) {
  return {descriptor, static_cast<short>(alsoWritable ? POLLIN | POLLOUT : POLLIN), 0};
}

bool IsTransient(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

}  // namespace

VirtualPort::VirtualPort(std::string directory, std::string name)
    : mDirectory(std::move(directory)), mName(std::move(name)) {
  mIn.mPath = mDirectory + "/" + mName + ".in";
  mOut.mPath = mDirectory + "/" + mName + ".out";
}

void VirtualPort::Open() {
  if (IsOpen()) return;
  if (mName.empty() || mName.front() == '.' || mName.find('/') != std::string::npos)
    throw std::invalid_argument(fmt::format("\"{}\" cannot be the name of a port", mName));
  std::error_code error;
  std::filesystem::create_directories(mDirectory, error);
  if (error) throw std::runtime_error(fmt::format("{}: cannot make: {}", mDirectory, error.message()));
  RefuseTaken(mIn.mPath);
  RefuseTaken(mOut.mPath);
  try {
    Listen(mOut);
    Listen(mIn);
  } catch (...) {
    Close();
    throw;
  }
}

void VirtualPort::Close() {
  Shut(mIn);
  Shut(mOut);
}

// The name appears by renaming, so that nobody finds a socket that does not listen yet.
void VirtualPort::Listen(Road& road) {
  const std::string fresh = road.mPath + std::string(kFreshSuffix);
  const sockaddr_un address = AddressOf(fresh);
  Tools::Descriptor listener = MakeSocket(fresh);
  if (unlink(fresh.c_str()) != 0 && errno != ENOENT) Fail(fresh, "remove", errno);
  if (bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
    Fail(fresh, "bind a socket", errno);
  if (listen(listener.Get(), kBacklog) != 0 || std::rename(fresh.c_str(), road.mPath.c_str()) != 0) {
    const int error = errno;
    unlink(fresh.c_str());
    Fail(road.mPath, "listen", error);
  }
  road.mListener = std::move(listener);
}

void VirtualPort::Shut(Road& road) {
  if (road.mListener) unlink(road.mPath.c_str());
  road.mListener.Close();
  road.mConnections.clear();
}

void VirtualPort::AppendTo(std::vector<pollfd>& descriptors) const {
  if (!IsOpen()) return;
  for (const Road* road : {&mIn, &mOut}) {
    descriptors.push_back(Awaited(road->mListener.Get(), false));
    for (const Connection& connection : road->mConnections) {
      descriptors.push_back(Awaited(connection.mSocket.Get(), !connection.mUnsent.empty()));
    }
  }
}

// Reading comes before letting in on NAME.in: a byte that was read may come from a computer whose
// connection to NAME.in still waits, and the answer must reach it.
std::vector<std::uint8_t> VirtualPort::Receive() {
  std::vector<std::uint8_t> bytes;
  if (!IsOpen()) return bytes;
  Accept(mOut);
  std::erase_if(mOut.mConnections, [&](Connection& connection) { return !ReadFrom(connection, bytes); });
  Accept(mIn);
  std::vector<std::uint8_t> ignored;
  std::erase_if(mIn.mConnections,
                [&](Connection& connection) { return !ReadFrom(connection, ignored) || !Flush(connection); });
  return bytes;
}

void VirtualPort::Send(std::span<const std::uint8_t> bytes) {
  std::erase_if(mIn.mConnections, [&](Connection& connection) {
    connection.mUnsent.insert(connection.mUnsent.end(), bytes.begin(), bytes.end());
    return !Flush(connection) || connection.mUnsent.size() > kMaxUnread;
  });
}

void VirtualPort::Accept(Road& road) {
  while (true) {
    Tools::Descriptor accepted(accept4(road.mListener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (accepted) {
      road.mConnections.push_back({std::move(accepted), {}});
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      return;
    } else if (errno != EINTR && errno != ECONNABORTED) {
      Fail(road.mPath, "accept a connection", errno);
    }
  }
}

// False when the other end has gone.
bool VirtualPort::ReadFrom(Connection& connection, std::vector<std::uint8_t>& bytes) {
  std::array<std::uint8_t, kReadSize> buffer;
  const ssize_t count = recv(connection.mSocket.Get(), buffer.data(), buffer.size(), 0);
  if (count > 0) bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + count);
  return count > 0 || (count < 0 && IsTransient(errno));
}

// False when the other end has gone.
bool VirtualPort::Flush(Connection& connection) {
  std::vector<std::uint8_t>& unsent = connection.mUnsent;
  std::size_t sent = 0;
  bool alive = true;
  while (sent < unsent.size()) {
    const ssize_t count =
        send(connection.mSocket.Get(), unsent.data() + sent, unsent.size() - sent, MSG_NOSIGNAL);
    if (count >= 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      alive = IsTransient(errno);
      break;
    }
  }
  unsent.erase(unsent.begin(), unsent.begin() + static_cast<std::ptrdiff_t>(sent));
  return alive;
}

}  // namespace Simulator
