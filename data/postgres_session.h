#pragma once

#include <memory>

#include "data/connection_string.h"
#include "data/session.h"

namespace tidewell::ado {

// The client/server engine: "Provider=PostgreSQL;" followed by libpq's key=value settings
// separated by ";" (host, port, dbname, user, password, sslmode, ...) or a postgresql://
// URI. It speaks the SQL Server dialect (see dialect_translation.h): dates are quoted
// m/d/yyyy text, read month first (DateStyle MDY); flags are smallint columns holding 1 and
// 0 and read back as Booleans; names and LIKE compare without regard to case through the
// citext columns the schema declares. Statements run one at a time through the extended
// protocol, so a statement text can never carry a second statement. A session prepares each
// statement shape once (its values taken out as parameters, see postgres_statement.h) and
// keeps the last 64 of them prepared, for as long as its link to the server lasts.
std::unique_ptr<Session> OpenPostgresSession(const ConnectionSettings& settings);

}  // namespace tidewell::ado
