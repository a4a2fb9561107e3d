#pragma once

namespace tidewell {

struct Page;

// Screen 14: the pending error (ErrorText) in a framed table, followed by the advice for its
// kind: for "DB" how a connection string is written, for "DP" the permissions the database
// needs, for "DS" how DataServer must match the database. Other kinds get no advice. The
// screen clears neither ErrorFlag nor ErrorKind.
void ErrorScreen(Page& page);

}  // namespace tidewell
