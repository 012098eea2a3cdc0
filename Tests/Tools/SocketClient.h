#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "Tools/Simulator/MessageStream.h"
#include "Tools/Support/Descriptor.h"

namespace ToolsTest {

// One connection of a computer to a socket of a virtual port.
class SocketClient {
 public:
  static constexpr std::chrono::seconds kLimit{30};  // For every wait.

  // The test fails when nobody listens there.
  explicit SocketClient(const std::string& path);

  void Send(const std::vector<std::uint8_t>& bytes);

  // The next count bytes; fewer when the other end goes first or the time is over.
  std::vector<std::uint8_t> ReadBytes(std::size_t count);

  // The next system-exclusive message; empty when the other end goes first or the time is over.
  std::vector<std::uint8_t> ReadMessage();

  // Whether the other end goes, all it sent being read.
  bool ReadsEnd();

 private:
  bool ReadMore(std::vector<std::uint8_t>& bytes, std::size_t most);

  Tools::Descriptor mSocket;
  Simulator::MessageStream mStream;
  std::vector<std::vector<std::uint8_t>> mMessages;
};

// A computer that is connected to both sockets of a port.
struct Computer {
  Computer(const std::string& directory, const std::string& name);
  std::vector<std::uint8_t> Ask(const std::vector<std::uint8_t>& message);

  SocketClient mIn;
  SocketClient mOut;
};

}  // namespace ToolsTest
