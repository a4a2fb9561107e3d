#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

// An IPv4 or IPv6 network: an address and how many of its leading bits count. An IPv4
// address seen as IPv6 (::ffff:10.0.0.1, as a dual-stack socket reports it) is read as IPv4.
struct IpNetwork {
  bool v4 = true;
  std::array<uint8_t, 16> bytes{};  // IPv4 uses the first four
  int prefix = 32;
};

// "10.0.0.0/8, 192.0.2.7, ::1, 2001:db8::/32": addresses and CIDR networks separated by commas
// (and blanks). Throws std::invalid_argument naming the entry that is neither.
std::vector<IpNetwork> ParseNetworks(std::string_view list);

// The address as a network of itself, or nothing when the text is not an IP address.
std::optional<IpNetwork> ParseAddress(std::string_view text);

// Whether one of the networks holds the address (false for text that is no address).
bool NetworksContain(const std::vector<IpNetwork>& networks, std::string_view address);

// 127.0.0.0/8 and ::1.
bool IsLoopback(std::string_view address);

// "10.0.0.0/8", "2001:db8::/32": the network as a list names it.
std::string NetworkText(const IpNetwork& network);

// The address written the usual way ("::ffff:10.0.0.1" becomes "10.0.0.1"), or "" when the
// text is not an IP address.
std::string NormalAddress(std::string_view text);

}  // namespace tidewell
