#include "host/ip_networks.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/service_endpoints.h"

namespace tidewell {
namespace {

TEST(IpNetworks, ListsTakeAddressesAndNetworksOfBothFamilies) {
  std::vector<IpNetwork> networks = ParseNetworks("10.0.0.0/8, 192.0.2.7 2001:db8::/32,::1");
  ASSERT_EQ(networks.size(), 4u);
  EXPECT_TRUE(NetworksContain(networks, "10.200.3.4"));
  EXPECT_FALSE(NetworksContain(networks, "11.0.0.1"));
  EXPECT_TRUE(NetworksContain(networks, "192.0.2.7"));
  EXPECT_FALSE(NetworksContain(networks, "192.0.2.8"));
  EXPECT_TRUE(NetworksContain(networks, "2001:db8:ffff::1"));
  EXPECT_FALSE(NetworksContain(networks, "2001:db9::1"));
  EXPECT_TRUE(NetworksContain(networks, "::1"));
  EXPECT_FALSE(NetworksContain(networks, "not an address"));
}

TEST(IpNetworks, PrefixesThatAreNotWholeBytesCount) {
  std::vector<IpNetwork> networks = ParseNetworks("172.16.0.0/12");
  EXPECT_TRUE(NetworksContain(networks, "172.31.255.255"));
  EXPECT_FALSE(NetworksContain(networks, "172.32.0.0"));
  EXPECT_TRUE(NetworksContain(ParseNetworks("0.0.0.0/0"), "8.8.8.8"));
  EXPECT_FALSE(NetworksContain(ParseNetworks("0.0.0.0/0"), "2001:db8::1"));
}

TEST(IpNetworks, AnIpv4AddressSeenAsIpv6IsReadAsIpv4) {
  EXPECT_TRUE(NetworksContain(ParseNetworks("10.0.0.0/8"), "::ffff:10.1.2.3"));
  EXPECT_EQ(NormalAddress("::ffff:10.1.2.3"), "10.1.2.3");
  EXPECT_TRUE(IsLoopback("::ffff:127.0.0.1"));
}

TEST(IpNetworks, BadEntriesAreRefusedByName) {
  for (const char* bad : {"", " , ", "10.0.0.0/33", "::/129", "10.0.0.0/", "10.0.0.0/x",
                          "example.com", "10.0.0.0/8, 300.1.1.1"}) {
    EXPECT_THROW(ParseNetworks(bad), std::invalid_argument) << bad;
  }
  try {
    ParseNetworks("10.0.0.0/8, 10.0.0.256");
    ADD_FAILURE();
  } catch (const std::invalid_argument& e) {
    EXPECT_NE(std::string(e.what()).find("10.0.0.256"), std::string::npos) << e.what();
  }
}

TEST(MetricsAccess, LoopbackAndTheListedNetworksOnly) {
  std::vector<IpNetwork> allowed = ParseNetworks("203.0.113.0/24, 2001:db8::/32");
  EXPECT_TRUE(MetricsAllowed("127.0.0.1", {}));
  EXPECT_TRUE(MetricsAllowed("127.8.9.10", {}));
  EXPECT_TRUE(MetricsAllowed("::1", {}));
  EXPECT_FALSE(MetricsAllowed("203.0.113.9", {}));
  EXPECT_TRUE(MetricsAllowed("203.0.113.9", allowed));
  EXPECT_TRUE(MetricsAllowed("2001:db8::9", allowed));
  EXPECT_FALSE(MetricsAllowed("198.51.100.1", allowed));
  EXPECT_FALSE(MetricsAllowed("", allowed));
}

}  // namespace
}  // namespace tidewell
