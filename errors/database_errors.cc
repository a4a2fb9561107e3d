#include "errors/database_errors.h"

#include <memory>
#include <string>

#include "data/connection.h"
#include "frame/markup.h"
#include "page/page.h"

namespace tidewell {
namespace {

constexpr const char* kConnectHeading =
    "The following error was presented when trying to connect to the database.";
constexpr const char* kReadHeading =
    "The following error was presented while attempting to retrieve data.";

// The error screen's text: the heading in red, then the error's number and description.
void RaiseDatabaseError(Page& page, ErrorKind kind, const char* heading,
                        const ado::DatabaseError& error) {
  page.Error.Raise(kind, std::string("<font color=#b22222><b>") + heading +
                             "</b></font><br><br>Error Number: " +
                             std::to_string(error.number()) + "<br>" +
                             // The engine's message may quote a value a visitor typed.
                             EscapeHtml(error.description()));
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

void CloseDatabase(Page& page) {
  if (page.Connection) {
    page.Connection->Close();  // Close never throws
    page.StatementsRun += page.Connection->StatementsRun();
  }
  page.Connection.reset();
}

void TrapDatabaseError(Page& page, const ado::DatabaseError& error) {
  RaiseDatabaseError(page,
                     error.engine_refused() ? ErrorKind::kDatabaseRefused
                                            : ErrorKind::kCannotConnect,
                     kConnectHeading, error);
}

void TrapUpdateError(Page& page, const ado::DatabaseError& error) {
  RaiseDatabaseError(page, ErrorKind::kDatabaseRefused, kConnectHeading, error);
}

void TrapListError(Page& page, const ado::DatabaseError& error) {
  RaiseDatabaseError(page, ErrorKind::kDataRead, kReadHeading, error);
}

}  // namespace tidewell
