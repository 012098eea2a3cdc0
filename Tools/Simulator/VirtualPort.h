#pragma once

#include <cstddef>
#include <string>

#include "Tools/Simulator/DevicePort.h"
#include "Tools/Support/Descriptor.h"

namespace Simulator {

// The device's end of a virtual MIDI port: two listening Unix stream sockets, NAME.in from which
// computers capture and NAME.out to which they render. Any number of them may be connected; what
// is sent goes to each one on NAME.in. The sockets' names are there exactly while the port is open.
class VirtualPort : public DevicePort {
 public:
  // Bytes that a computer may leave unread before it is disconnected.
  static constexpr std::size_t kMaxUnread = std::size_t{32} * 1024 * 1024;

  VirtualPort(std::string directory, std::string name);
  ~VirtualPort() override { VirtualPort::Close(); }
  VirtualPort(const VirtualPort&) = delete;
  VirtualPort& operator=(const VirtualPort&) = delete;

  // Makes the directory when it is missing. Throws std::runtime_error with a sentence, also when
  // another device serves the name; sockets that nobody serves any more are replaced. A name that
  // is empty, begins with a dot or has a slash is std::invalid_argument.
  void Open() override;

  // Removes the names first, then disconnects everybody; what is unsent is lost.
  void Close() override;

  bool IsOpen() const override { return static_cast<bool>(mIn.mListener); }

  void AppendTo(std::vector<pollfd>& descriptors) const override;

  // Lets new computers in, sends what had to wait, and gives the bytes that have come. Whoever
  // sent one of them and was connected to NAME.in by then gets what is sent next.
  std::vector<std::uint8_t> Receive() override;

  // Sends to every computer on NAME.in, at once or as soon as it reads.
  void Send(std::span<const std::uint8_t> bytes) override;

 private:
  struct Connection {
    Tools::Descriptor mSocket;
    std::vector<std::uint8_t> mUnsent;
  };
  struct Road {
    std::string mPath;
    Tools::Descriptor mListener;
    std::vector<Connection> mConnections;
  };

  static void Listen(Road& road);
  static void Shut(Road& road);
  static void Accept(Road& road);
  static bool ReadFrom(Connection& connection, std::vector<std::uint8_t>& bytes);
  static bool Flush(Connection& connection);

  std::string mDirectory;
  std::string mName;
  Road mIn;
  Road mOut;
};

}  // namespace Simulator
