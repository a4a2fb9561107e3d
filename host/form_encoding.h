#pragma once

#include <string>
#include <string_view>

#include "page/asp_objects.h"

namespace tidewell {

// Reads "a=1&b=two+words&c=%7E" (a query string or a form post's body) into a collection,
// in order, with "+" as a blank and %XX as a byte. A malformed escape is kept as written.
AspCollection ParseUrlEncoded(std::string_view text);

// The reverse, for links and test clients: every byte outside A-Z a-z 0-9 - _ . ~ as %XX.
std::string UrlEncode(std::string_view text);

}  // namespace tidewell
