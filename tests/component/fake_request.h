#pragma once

#include <memory>
#include <string>

#include "component/asp_tidewell.h"
#include "page/asp_objects.h"
#include "page/link_codec.h"

namespace tidewell::testing {

// One request through the component as a host page would make it: bind, set, show.
struct FakeVisit {
  AspRequest request;
  BufferedResponse response;
  ScriptingContext context{&request, &response};
  ASPTidewell component;

  explicit FakeVisit(std::string url = "/cal/default.asp") {
    request.ServerVariables.Add("URL", std::move(url));
    // Show opens the database on every request; an empty in-memory one opens without error.
    component.SetConnectionString("Provider=SQLite;Data Source=:memory:");
  }
  // Sets the "WS" parameter to the hex form of `payload`.
  FakeVisit& Link(std::string_view payload) {
    request.QueryString.Add("WS", EncodeQueryString(payload, true));
    return *this;
  }
  FakeVisit& Agent(std::string agent) {
    request.ServerVariables.Add("HTTP_USER_AGENT", std::move(agent));
    return *this;
  }
  ASPTidewell& Start() {
    component.OnStartPage(context);
    return component;
  }
};

}  // namespace tidewell::testing
