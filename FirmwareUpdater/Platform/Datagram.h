#pragma once

#include "Platform/OwnedDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace Platform {

// First IPv4 address of a host as dotted text; empty when it has none or is unknown.
std::string ResolveHost(const std::string& host);

// Name of this machine, cut to what a buffer of 64 bytes holds; empty when there is none.
std::string LocalHostName();

// A UDP socket with one IPv4 target. One thread at a time.
class DatagramSocket {
 public:
  bool IsOpen() const { return static_cast<bool>(mSocket); }
  // address is dotted text. False when it is none or no socket can be made; the next try may
  // succeed.
  bool Open(const std::string& address, std::uint16_t port);
  // One datagram with these bytes; false when the system refused it.
  bool Send(std::string_view bytes);

 private:
  OwnedDescriptor mSocket;
  std::uint32_t mAddress = 0;  // In network order, like the port.
  std::uint16_t mPort = 0;
};

}  // namespace Platform
