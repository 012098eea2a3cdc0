#include "Platform/VirtualMidiDriver.h"

#include "Platform/OwnedDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace Platform {
namespace {

constexpr std::string_view kInputEnding = ".in";
constexpr std::string_view kOutputEnding = ".out";
// As little as a device's own buffer holds, so that a device that reads slowly slows its sender.
constexpr int kSendBufferBytes = 4096;
// A device accepts at once; one that is busy for longer is taken.
constexpr timeval kConnectTimeout{1, 0};

bool IsSocket(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

class SocketTransport : public MidiTransport {
 public:
  SocketTransport(OwnedDescriptor socket, std::string path)
      : mSocket(std::move(socket)), mPath(std::move(path)) {}

  int Descriptor() const override { return mSocket.Get(); }

  Moved Read(char* bytes, std::size_t count) override {
    return MoveBytes([&] { return recv(mSocket.Get(), bytes, count, 0); });
  }

  Moved Write(const char* bytes, std::size_t count) override {
    return MoveBytes([&] { return send(mSocket.Get(), bytes, count, MSG_NOSIGNAL); });
  }

  // What the socket has taken is the device's to fetch.
  bool DrainSoon() override { return true; }
  MidiStatus Drain(const EventHandle&) override { return kMidiOk; }
  void Drop() override {}

  bool IsPresent() override {
    pollfd entry{mSocket.Get(), POLLRDHUP, 0};
    int count = 0;
    do {
      count = poll(&entry, 1, 0);
    } while (count < 0 && errno == EINTR);
    return count == 0 && IsSocket(mPath);
  }

 private:
  const OwnedDescriptor mSocket;
  const std::string mPath;
};

// 0 or the error of the first call that failed.
int ConnectTo(const std::string& path, int socket) {
  sockaddr_un address{};
  if (path.size() >= sizeof(address.sun_path)) return ENAMETOOLONG;
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  if (setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kSendBufferBytes, sizeof(kSendBufferBytes)) != 0 ||
      setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &kConnectTimeout, sizeof(kConnectTimeout)) != 0) {
    return errno;
  }
  while (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
    if (errno != EINTR) return errno;
  }
  const int flags = fcntl(socket, F_GETFL);
  return flags < 0 || fcntl(socket, F_SETFL, flags | O_NONBLOCK) != 0 ? errno : 0;
}

std::string ReasonOf(int error, const std::string& path) {
  std::string reason = std::generic_category().message(error) + " (" + path + ")";
  if (error == EACCES) reason += "; this user needs the right to write to the socket";
  if (error == EAGAIN) reason += "; the device does not accept the connection";
  return reason;
}

}  // namespace

VirtualMidiDriver::VirtualMidiDriver(std::string folder) : mFolder(std::move(folder)) {}

std::vector<MidiPortDriver::Device> VirtualMidiDriver::ListDevices(Direction direction) {
  std::vector<Device> devices;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(mFolder.c_str()), &closedir);
  if (!folder) return devices;
  const std::string_view ending = direction == Direction::kInput ? kInputEnding : kOutputEnding;
  while (const dirent* entry = readdir(folder.get())) {
    const std::string_view file = entry->d_name;
    if (file.size() <= ending.size() || !file.ends_with(ending)) continue;
    std::string path = mFolder + '/' + entry->d_name;
    if (!IsSocket(path)) continue;
    devices.push_back({std::move(path), std::string(file.substr(0, file.size() - ending.size()))});
  }
  std::sort(devices.begin(), devices.end(),
            [](const Device& one, const Device& other) { return one.label < other.label; });
  return devices;
}

MidiPortDriver::Connection VirtualMidiDriver::Connect(Direction, const Device& device) {
  OwnedDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int error = !socket ? errno : ConnectTo(device.address, socket.Get());
  if (error != 0) return {MidiStatusOfErrno(error), nullptr, ReasonOf(error, device.address)};
  return {kMidiOk, std::make_unique<SocketTransport>(std::move(socket), device.address), {}};
}

}  // namespace Platform
