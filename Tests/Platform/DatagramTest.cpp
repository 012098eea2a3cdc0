#include "Platform/Datagram.h"

#include <gtest/gtest.h>

#include "Tests/Support/UdpReceiver.h"

namespace Platform {
namespace {

TEST(Datagram, EachSendIsOneDatagram) {
  TestSupport::UdpReceiver receiver;
  DatagramSocket socket;
  ASSERT_TRUE(socket.Open("127.0.0.1", receiver.Port()));
  EXPECT_TRUE(socket.Send("one"));
  EXPECT_TRUE(socket.Send(std::string_view("t\0wo", 4)));
  EXPECT_EQ(receiver.Receive(), "one");
  EXPECT_EQ(receiver.Receive(), std::string("t\0wo", 4));
}

TEST(Datagram, TooLongOneIsRefusedAndDisturbsNothing) {
  TestSupport::UdpReceiver receiver;
  DatagramSocket socket;
  ASSERT_TRUE(socket.Open("127.0.0.1", receiver.Port()));
  EXPECT_FALSE(socket.Send(std::string(70'000, 'x')));
  EXPECT_TRUE(socket.Send("after"));
  EXPECT_EQ(receiver.Receive(), "after");
}

TEST(Datagram, AddressThatIsNoneOpensNothing) {
  DatagramSocket socket;
  for (const char* address : {"", "localhost", "1.2.3", "::1"})
    EXPECT_FALSE(socket.Open(address, 5000)) << address;
  EXPECT_FALSE(socket.IsOpen());
  EXPECT_FALSE(socket.Send("x"));
}

TEST(Datagram, HostsResolveToDottedText) {
  EXPECT_EQ(ResolveHost("127.0.0.1"), "127.0.0.1");
  EXPECT_EQ(ResolveHost("localhost"), "127.0.0.1");
  EXPECT_EQ(ResolveHost("no such host"), "");
}

TEST(Datagram, MachineHasAName) {
  EXPECT_FALSE(LocalHostName().empty());
  EXPECT_LT(LocalHostName().size(), 64u);
}

}  // namespace
}  // namespace Platform
