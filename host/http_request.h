#pragma once

#include <string_view>

#include "component/asp_objects.h"

namespace httplib {
struct Request;
}

namespace tidewell {

// The Request object of one HTTP request: the query string, a form post's fields, cookies, and
// the server variables the component reads ("URL", "HTTP_USER_AGENT") with a few more.
AspRequest ToAspRequest(const httplib::Request& http);

// "a=b; c=d" of a Cookie header.
AspCollection ParseCookies(std::string_view header);

}  // namespace tidewell
