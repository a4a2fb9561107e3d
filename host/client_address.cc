#include "host/client_address.h"

#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {

std::string ClientAddress(std::string_view peer, std::string_view forwarded_for,
                          const std::vector<IpNetwork>& trusted_proxies) {
  std::string hop = NormalAddress(peer);
  if (hop.empty()) hop = std::string(peer);
  if (forwarded_for.empty() || !NetworksContain(trusted_proxies, hop)) return hop;
  std::vector<std::string> entries = Split(forwarded_for, ',');
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    std::string address = NormalAddress(Trim(*entry));
    if (address.empty()) return hop;
    hop = address;
    if (!NetworksContain(trusted_proxies, hop)) return hop;
  }
  return hop;  // every entry a trusted proxy: the farthest one
}

}  // namespace tidewell
