#pragma once

#include <string>
#include <utility>

#include "page/asp_objects.h"
#include "page/page.h"
#include "page/properties.h"
#include "runtime/variant.h"

namespace tidewell {

// The calendar component. A host creates one per request, binds it to the request and the
// response (OnStartPage or RunWithinCOM), sets properties, optionally calls AutoLogin, and
// calls Show once; Show reads the request, works on the database and writes the whole page
// with one Response.Write. The object keeps all its state in one Page and shares nothing
// with other requests, so hosts may run any number of them on separate threads.
class ASPTidewell {
 public:
  ASPTidewell();  // Class_Initialize

  // --- Properties (Let and Get pairs) ---
  // One pair per line of page/property_list.h, e.g. Visible() and SetVisible(bool),
  // TidewellColor() returning const std::string& and SetTidewellColor(std::string). A setter
  // stores through its kind's rule, so SetImagePath keeps the folder ending in "/" just as
  // the property set by name does.
#define TIDEWELL_PROPERTY(kind, Name, default_value, at_start)                 \
  PropertyRead<property_kind::kind> Name() const { return page_.props.Name; } \
  void Set##Name(property_kind::kind::Value v) {                              \
    page_.props.Name = property_kind::kind::Stored(std::move(v));             \
  }
#include "page/property_list.h"
#undef TIDEWELL_PROPERTY

  // --- Methods ---
  // Binds the context's Request and Response and sets the defaults again, so that only what
  // the page sets afterwards wins. A context without both objects raises an AutomationError.
  void OnStartPage(const ScriptingContext& context);
  void OnEndPage();
  // Remembers a user to log in during Show instead of the login form; returns "".
  std::string AutoLogin(std::string user_name, std::string password, bool read_only);
  // Show without the Response.Write: returns the page text.
  std::string ViewSource();
  // Builds the page and writes it to the Response. Returns an Empty variant.
  Variant Show();
  // For hosts without OnStartPage: binds the objects, resets nothing.
  Variant RunWithinCOM(const AspRequest* request, AspResponse* response);

  // --- Host settings that are not properties ---
  void SetLinkSigning(LinkSigning signing) { page_.signing = std::move(signing); }
  // Where feed addresses start while the host serves feeds; unset, no screen shows one.
  void SetFeedAddressStart(std::optional<std::string> start) {
    page_.FeedAddressStart = std::move(start);
  }

  // The properties as one struct, for the name-based table (property_table.h).
  Properties& properties() { return page_.props; }

  // The request's state, for hosts and tests that look inside.
  const Page& page() const { return page_; }

 private:
  Page page_;
  const ScriptingContext* context_ = nullptr;
};

}  // namespace tidewell
