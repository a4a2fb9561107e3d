#include "data/open_database.h"

#include <memory>
#include <string>

#include "component/page.h"
#include "data/connection.h"

namespace tidewell {
namespace {

// The engine's message is shown as received, but it may quote a value a visitor typed: it
// is escaped like every other text that did not come from us.
std::string EscapeHtml(const std::string& text) {
  std::string escaped;
  for (char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

void SetPendingError(Page& page, const char* kind, const char* heading,
                     const ado::DatabaseError& error) {
  page.ErrorFlag = true;
  page.ErrorText = std::string("<font color=#b22222><b>") + heading +
                   "</b></font><br><br>Error Number: " + std::to_string(error.number()) + "<br>" +
                   EscapeHtml(error.description());
  page.ErrorKind = kind;
  page.Screen = screens::kErrorScreen;
}

}  // namespace

void OpenDatabase(Page& page) {
  page.Connection = std::make_shared<ado::Connection>();
  try {
    page.Connection->Open(page.props.ConnectionString);
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
  }
}

void TrapDatabaseError(Page& page, const ado::DatabaseError& error) {
  const bool engine_refused = error.number() == ado::error_numbers::kFail;
  SetPendingError(page, engine_refused ? "DP" : "DB",
                  "The following error was presented when trying to connect to the database.",
                  error);
}

void TrapUpdateError(Page& page, const ado::DatabaseError& error) {
  SetPendingError(page, "DP",
                  "The following error was presented when trying to connect to the database.",
                  error);
}

void CloseDatabase(Page& page) {
  if (page.Connection) page.Connection->Close();  // Close never throws
  page.Connection.reset();
}

void TrapListError(Page& page, const ado::DatabaseError& error) {
  SetPendingError(page, "DS",
                  "The following error was presented while attempting to retrieve data.", error);
}

}  // namespace tidewell
