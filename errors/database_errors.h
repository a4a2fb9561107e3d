#pragma once

#include "data/database_error.h"

namespace tidewell {

struct Page;

// Opens the request's connection with the page's ConnectionString (step 8 of Show). When the
// open fails, the failure becomes the request's pending error instead of an exception:
// ErrorFlag, the error's number and description in ErrorText, ErrorKind "DP" for E_FAIL (the
// engine was reached but refused: a missing file, permissions, a server that is down, a
// refused login) and "DB" for anything else (no or an unknown provider, a connection string
// that cannot be read), and Screen 14.
void OpenDatabase(Page& page);

// Closes the request's connection after the page is assembled; failures are ignored.
void CloseDatabase(Page& page);

// What the request's other reads and writes (the login, the current user, the updates) do
// with a failed statement: the same pending error as a failed open, with its heading, "DP"
// for E_FAIL and "DB" otherwise, and Screen 14.
void TrapDatabaseError(Page& page, const ado::DatabaseError& error);

// What the updating actions (item, account and group updates) do with a failed statement:
// the same pending error and heading, always of kind "DP" (the database was reached but could
// not be written, whatever the number says), and Screen 14.
void TrapUpdateError(Page& page, const ado::DatabaseError& error);

// What a reader that gathers a screen's data (the item lists) does with a failed statement:
// ErrorFlag, ErrorKind "DS", the error in ErrorText, Screen 14. The dispatcher then draws the
// error screen after the part of the screen drawn so far.
void TrapListError(Page& page, const ado::DatabaseError& error);

}  // namespace tidewell
