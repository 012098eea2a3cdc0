#pragma once

#include <cstdint>
#include <string>

#include "Platform/OwnedDescriptor.h"

namespace TestSupport {

// A UDP socket on the loopback address that collects datagrams.
class UdpReceiver {
 public:
  // Throws system_error when there is no socket to have.
  UdpReceiver();

  std::uint16_t Port() const { return mPort; }
  // The next datagram; the test fails when none comes in time.
  std::string Receive();
  // The same datagrams as Receive gives, up to and without one with this text that the call
  // sends itself: an empty result proves that nothing was under way.
  std::string ReceiveAllBefore(const std::string& mark);

 private:
  Platform::OwnedDescriptor mSocket;
  std::uint16_t mPort = 0;
};

}  // namespace TestSupport
