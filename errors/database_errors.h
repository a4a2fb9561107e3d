#pragma once

#include "data/database_error.h"

namespace tidewell {

struct Page;

// The screens' side of the data layer's failures: a DatabaseError (its number and the engine's
// text) becomes the request's pending error (page.Error), whose text is the error screen's
// red heading, the number and the escaped description, and the request goes to the error
// screen.

// Opens the request's connection with the page's ConnectionString (step 8 of Show). When the
// open fails, the failure becomes the request's pending error instead of an exception:
// kDatabaseRefused when the engine was reached but refused (a missing file, permissions, a
// server that is down, a refused login), kCannotConnect for anything else (no or an unknown
// provider, a connection string that cannot be read).
void OpenDatabase(Page& page);

// Closes the request's connection after the page is assembled; failures are ignored.
void CloseDatabase(Page& page);

// What the request's other reads and writes (the login, the current user, the updates) do
// with a failed statement: the same pending error as a failed open.
void TrapDatabaseError(Page& page, const ado::DatabaseError& error);

// What the updating actions (item, account and group updates) do with a failed statement:
// the same pending error and heading, always kDatabaseRefused (the database was reached but
// could not be written, whatever the number says).
void TrapUpdateError(Page& page, const ado::DatabaseError& error);

// What a reader that gathers a screen's data (the item lists) does with a failed statement:
// kDataRead, under the heading of a failed read. The dispatcher then draws the error screen
// after the part of the screen drawn so far.
void TrapListError(Page& page, const ado::DatabaseError& error);

}  // namespace tidewell
