#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/ip_networks.h"

namespace tidewell {

// The client's address as the logs, the metrics' access check and the component's
// REMOTE_ADDR see it. When the socket's peer is one of the trusted proxies, X-Forwarded-For
// (every such header, in order, joined by commas) is read from the right: each proxy appends
// the address it heard from, so the first entry that is not itself a trusted proxy is the
// client. Entries left of it were written by the client and are not believed. An entry that is
// no address ends the walk at the last hop known. An untrusted peer's X-Forwarded-For is
// ignored: the peer is the client.
std::string ClientAddress(std::string_view peer, std::string_view forwarded_for,
                          const std::vector<IpNetwork>& trusted_proxies);

}  // namespace tidewell
