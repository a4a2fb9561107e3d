#include "host/client_address.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

TEST(ClientAddress, AnUntrustedPeerIsTheClientWhateverItForwards) {
  EXPECT_EQ(ClientAddress("198.51.100.1", "203.0.113.9", ParseNetworks("10.0.0.0/8")),
            "198.51.100.1");
  EXPECT_EQ(ClientAddress("198.51.100.1", "203.0.113.9", {}), "198.51.100.1");
}

TEST(ClientAddress, BehindATrustedProxyTheRightmostUntrustedEntryIsTheClient) {
  std::vector<IpNetwork> proxies = ParseNetworks("10.0.0.0/8");
  EXPECT_EQ(ClientAddress("10.0.0.2", "203.0.113.9", proxies), "203.0.113.9");
  // The client wrote the first entry itself; the proxies appended the rest.
  EXPECT_EQ(ClientAddress("10.0.0.2", "1.2.3.4, 203.0.113.9, 10.0.0.5", proxies), "203.0.113.9");
  EXPECT_EQ(ClientAddress("10.0.0.2", " 2001:db8::7 ", proxies), "2001:db8::7");
}

TEST(ClientAddress, NoForwardedForOrOnlyProxiesLeavesTheLastHopKnown) {
  std::vector<IpNetwork> proxies = ParseNetworks("10.0.0.0/8");
  EXPECT_EQ(ClientAddress("10.0.0.2", "", proxies), "10.0.0.2");
  EXPECT_EQ(ClientAddress("10.0.0.2", "10.0.0.9, 10.0.0.5", proxies), "10.0.0.9");
}

TEST(ClientAddress, AnEntryThatIsNoAddressEndsTheWalk) {
  std::vector<IpNetwork> proxies = ParseNetworks("10.0.0.0/8");
  EXPECT_EQ(ClientAddress("10.0.0.2", "203.0.113.9, unknown", proxies), "10.0.0.2");
  EXPECT_EQ(ClientAddress("10.0.0.2", "forged\n, 10.0.0.5", proxies), "10.0.0.5");
}

TEST(ClientAddress, AnIpv4PeerSeenAsIpv6IsWrittenAsIpv4) {
  EXPECT_EQ(ClientAddress("::ffff:127.0.0.1", "", {}), "127.0.0.1");
  EXPECT_EQ(ClientAddress("::ffff:127.0.0.1", "203.0.113.9", ParseNetworks("127.0.0.1")),
            "203.0.113.9");
}

}  // namespace
}  // namespace tidewell
