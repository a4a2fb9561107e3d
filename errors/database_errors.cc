#include "errors/database_errors.h"

#include <memory>
#include <string>

#include "page/page.h"
#include "data/connection.h"
#include "frame/markup.h"

namespace tidewell {
namespace {

void SetPendingError(Page& page, const char* kind, const char* heading,
                     const ado::DatabaseError& error) {
  page.ErrorFlag = true;
  page.ErrorText = std::string("<font color=#b22222><b>") + heading +
                   "</b></font><br><br>Error Number: " + std::to_string(error.number()) + "<br>" +
                   // The engine's message may quote a value a visitor typed.
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
  if (page.Connection) {
    page.Connection->Close();  // Close never throws
    page.StatementsRun += page.Connection->StatementsRun();
  }
  page.Connection.reset();
}

void TrapListError(Page& page, const ado::DatabaseError& error) {
  SetPendingError(page, "DS",
                  "The following error was presented while attempting to retrieve data.", error);
}

}  // namespace tidewell
