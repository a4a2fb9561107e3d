#pragma once

#include <string_view>

#include "host/http_server.h"
#include "page/asp_objects.h"

namespace tidewell {

// The Request object of one HTTP request: the query string, a form post's fields, cookies, and
// the server variables the component reads ("URL", "HTTP_USER_AGENT", "REMOTE_ADDR": the peer's
// IP address) with a few more.
AspRequest ToAspRequest(const HttpRequest& http);

// "a=b; c=d" of a Cookie header.
AspCollection ParseCookies(std::string_view header);

}  // namespace tidewell
