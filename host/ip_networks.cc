#include "host/ip_networks.h"

#include <arpa/inet.h>

#include <boost/asio/ip/address.hpp>
#include <stdexcept>

#include "runtime/strings.h"

namespace tidewell {
namespace {

namespace ip = boost::asio::ip;

std::optional<ip::address> ReadAddress(std::string_view text) {
  boost::system::error_code ec;
  ip::address address = ip::make_address(std::string(text), ec);
  if (ec) return std::nullopt;
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    return ip::address(ip::make_address_v4(ip::v4_mapped, address.to_v6()));
  }
  return address;
}

bool PrefixMatches(const IpNetwork& network, const IpNetwork& address) {
  if (network.v4 != address.v4) return false;
  int bits = network.prefix;
  for (size_t i = 0; bits > 0; ++i, bits -= 8) {
    const uint8_t mask = bits >= 8 ? 0xff : static_cast<uint8_t>(0xff << (8 - bits));
    if ((network.bytes[i] & mask) != (address.bytes[i] & mask)) return false;
  }
  return true;
}

IpNetwork ParseNetwork(const std::string& entry) {
  const size_t slash = entry.find('/');
  std::optional<IpNetwork> network = ParseAddress(entry.substr(0, slash));
  if (!network) throw std::invalid_argument(entry + " is not an IP address or network");
  if (slash == std::string::npos) return *network;
  const std::string bits = entry.substr(slash + 1);
  const int most = network->v4 ? 32 : 128;
  if (bits.empty() || bits.size() > 3 || bits.find_first_not_of("0123456789") != std::string::npos ||
      std::stoi(bits) > most) {
    throw std::invalid_argument(entry + ": the prefix length is a number from 0 to " +
                                std::to_string(most));
  }
  network->prefix = std::stoi(bits);
  return *network;
}

}  // namespace

std::optional<IpNetwork> ParseAddress(std::string_view text) {
  std::optional<ip::address> address = ReadAddress(text);
  if (!address) return std::nullopt;
  IpNetwork network;
  network.v4 = address->is_v4();
  if (network.v4) {
    const auto bytes = address->to_v4().to_bytes();
    std::copy(bytes.begin(), bytes.end(), network.bytes.begin());
    network.prefix = 32;
  } else {
    network.bytes = address->to_v6().to_bytes();
    network.prefix = 128;
  }
  return network;
}

std::vector<IpNetwork> ParseNetworks(std::string_view list) {
  std::string spaced(list);
  for (char& c : spaced) {
    if (c == ',' || c == '\t') c = ' ';
  }
  std::vector<IpNetwork> networks;
  for (const std::string& entry : Split(spaced, ' ')) {
    if (!entry.empty()) networks.push_back(ParseNetwork(entry));
  }
  if (networks.empty()) throw std::invalid_argument("expected at least one address or network");
  return networks;
}

bool NetworksContain(const std::vector<IpNetwork>& networks, std::string_view address) {
  std::optional<IpNetwork> parsed = ParseAddress(address);
  if (!parsed) return false;
  for (const IpNetwork& network : networks) {
    if (PrefixMatches(network, *parsed)) return true;
  }
  return false;
}

bool IsLoopback(std::string_view address) {
  std::optional<ip::address> parsed = ReadAddress(address);
  return parsed && parsed->is_loopback();
}

std::string NormalAddress(std::string_view text) {
  std::optional<ip::address> parsed = ReadAddress(text);
  return parsed ? parsed->to_string() : "";
}

std::string NetworkText(const IpNetwork& network) {
  char text[INET6_ADDRSTRLEN] = {};
  inet_ntop(network.v4 ? AF_INET : AF_INET6, network.bytes.data(), text, sizeof text);
  return std::string(text) + "/" + std::to_string(network.prefix);
}

}  // namespace tidewell
