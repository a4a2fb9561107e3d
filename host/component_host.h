#pragma once

#include <optional>
#include <string>

#include "host/config.h"
#include "page/asp_objects.h"
#include "page/link_keys.h"
#include "page/page.h"

namespace tidewell {

// What a host answers for one request.
struct HostAnswer {
  int status = 200;
  std::string content_type = "text/html; charset=utf-8";
  std::string body;
  // The screen the component drew ("6" for the login form), for the access log; "-" when the
  // request ended before a screen was drawn.
  std::string screen = "-";
  // The statements the page ran on the database, for the access log.
  long long statements = 0;
  // For the metrics: the kind of pending error the page ended with, the link keys it refused,
  // and why a login form was refused.
  ErrorKind error_kind = ErrorKind::kNone;
  int link_keys_refused = 0;
  LoginRefusal login_refused = LoginRefusal::kNone;
};

// Runs the component for one request the way an ASP page did: create it, OnStartPage with the
// request and a response, set the page's properties in file order, AutoLogin when configured,
// Show, and wrap what it wrote in the page template. A run-time error that ends the request
// becomes a 400 with a short plain page naming the error.
// `feed_address_start` is where the page's feed addresses start while the site serves feeds
// (host/feed_endpoint.h FeedAddressStart), nothing otherwise.
// The page the site sends for the component's output: its frame height settled
// (frame/markup.h SettleFrameHeight) and the page's template around it. `serve` and `render`
// both send this.
std::string ServedPage(const PageConfig& page, std::string component_output);

HostAnswer RunComponent(const PageConfig& page, const LinkSigning& signing,
                        const AspRequest& request,
                        const std::optional<std::string>& feed_address_start = std::nullopt);

// The same, returning only the component's own text (ViewSource). Run-time errors pass
// through as AutomationError.
std::string ViewComponentSource(const PageConfig& page, const LinkSigning& signing,
                                const AspRequest& request,
                                const std::optional<std::string>& feed_address_start = std::nullopt);

}  // namespace tidewell
