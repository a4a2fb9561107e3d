#pragma once

namespace tidewell {

struct Page;

// Screen 14: the pending error's text in a framed table, followed by the advice for its kind:
// for kCannotConnect how a connection string is written, for kDatabaseRefused the permissions
// the database needs, for kDataRead how DataServer must match the database. Other kinds get no
// advice. The screen leaves the pending error as it is.
void ErrorScreen(Page& page);

}  // namespace tidewell
