#pragma once

#include <string>

#include "page/asp_objects.h"
#include "page/page.h"
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
  bool Visible() const { return page_.props.Visible; }
  void SetVisible(bool v) { page_.props.Visible = v; }
  const std::string& Position() const { return page_.props.Position; }
  void SetPosition(std::string v) { page_.props.Position = std::move(v); }
  bool HexQueryString() const { return page_.props.HexQueryString; }
  void SetHexQueryString(bool v) { page_.props.HexQueryString = v; }
  ASPDataServer DataServer() const { return page_.props.DataServer; }
  void SetDataServer(ASPDataServer v) { page_.props.DataServer = v; }
  const std::string& ConnectionString() const { return page_.props.ConnectionString; }
  void SetConnectionString(std::string v) { page_.props.ConnectionString = std::move(v); }
  bool AllowUserOwnDefaults() const { return page_.props.AllowUserOwnDefaults; }
  void SetAllowUserOwnDefaults(bool v) { page_.props.AllowUserOwnDefaults = v; }
  long DefaultStartHour() const { return page_.props.DefaultStartHour; }
  void SetDefaultStartHour(long v) { page_.props.DefaultStartHour = v; }
  bool Show12HourDay() const { return page_.props.Show12HourDay; }
  void SetShow12HourDay(bool v) { page_.props.Show12HourDay = v; }
  bool HighlightDeltaDays() const { return page_.props.HighlightDeltaDays; }
  void SetHighlightDeltaDays(bool v) { page_.props.HighlightDeltaDays = v; }
  bool HighlightTodaysDate() const { return page_.props.HighlightTodaysDate; }
  void SetHighlightTodaysDate(bool v) { page_.props.HighlightTodaysDate = v; }
  bool HighlightTodaysTime() const { return page_.props.HighlightTodaysTime; }
  void SetHighlightTodaysTime(bool v) { page_.props.HighlightTodaysTime = v; }
  const std::string& HighlightDeltaDaysColor() const { return page_.props.HighlightDeltaDaysColor; }
  void SetHighlightDeltaDaysColor(std::string v) {
    page_.props.HighlightDeltaDaysColor = std::move(v);
  }
  const std::string& HighlightTodaysDateColor() const {
    return page_.props.HighlightTodaysDateColor;
  }
  void SetHighlightTodaysDateColor(std::string v) {
    page_.props.HighlightTodaysDateColor = std::move(v);
  }
  const std::string& HighlightTodaysTimeColor() const {
    return page_.props.HighlightTodaysTimeColor;
  }
  void SetHighlightTodaysTimeColor(std::string v) {
    page_.props.HighlightTodaysTimeColor = std::move(v);
  }
  const std::string& TimeViewHeadingColor() const { return page_.props.TimeViewHeadingColor; }
  void SetTimeViewHeadingColor(std::string v) { page_.props.TimeViewHeadingColor = std::move(v); }
  const std::string& TimeViewDescriptionColor() const {
    return page_.props.TimeViewDescriptionColor;
  }
  void SetTimeViewDescriptionColor(std::string v) {
    page_.props.TimeViewDescriptionColor = std::move(v);
  }
  const std::string& TimeViewSelectedItemColor() const {
    return page_.props.TimeViewSelectedItemColor;
  }
  void SetTimeViewSelectedItemColor(std::string v) {
    page_.props.TimeViewSelectedItemColor = std::move(v);
  }
  const std::string& TimeViewColumnColor() const { return page_.props.TimeViewColumnColor; }
  void SetTimeViewColumnColor(std::string v) { page_.props.TimeViewColumnColor = std::move(v); }
  const std::string& CompletedItemColor() const { return page_.props.CompletedItemColor; }
  void SetCompletedItemColor(std::string v) { page_.props.CompletedItemColor = std::move(v); }
  bool CompletedItemCrossOut() const { return page_.props.CompletedItemCrossOut; }
  void SetCompletedItemCrossOut(bool v) { page_.props.CompletedItemCrossOut = v; }
  const std::string& TidewellColor() const { return page_.props.TidewellColor; }
  void SetTidewellColor(std::string v) { page_.props.TidewellColor = std::move(v); }
  const std::string& ImagePath() const { return page_.props.ImagePath; }
  void SetImagePath(std::string v);

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
