#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tidewell::ado {

class Session;
class Statement;

// ADO's object states.
enum ObjectState { adStateClosed = 0, adStateOpen = 1 };

// ADO's Connection: one conversation with the database, opened with a connection string
// whose Provider names the engine (see sqlite_session.h and postgres_session.h). Open takes
// a session from the connection string's pool and Close gives it back, so a connection per
// request costs no reconnect. Every failure throws DatabaseError.
class Connection {
 public:
  Connection();
  ~Connection();  // closes, as releasing the object did
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Open(ConnectionString, "", "", -1): no user name or password beyond the string's own.
  void Open(std::string_view connection_string);
  // Runs a statement that returns no rows (a delete, an insert, a table's creation) and
  // answers the number of rows it touched.
  long Execute(const Statement& statement);
  // Gives the session back to the pool; a transaction still open is rolled back. Closing a
  // closed connection does nothing.
  void Close();
  ObjectState State() const { return session_ ? adStateOpen : adStateClosed; }

  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();

  // Whether the database has a table of that name (ADO's OpenSchema, reduced to that).
  bool TableExists(std::string_view table);
  // How many statements the engine ran for this object, over every Open and Close so far:
  // the page's reads and writes, and a transaction's BEGIN and COMMIT.
  long long StatementsRun() const;

  // The provider as registered: "SQLite" or "PostgreSQL".
  const std::string& Provider() const { return provider_; }

  // The open session, for the Recordset. Throws DatabaseError when the connection is closed.
  Session& session();

 private:
  std::string connection_string_;
  std::string provider_;
  std::unique_ptr<Session> session_;
  bool in_transaction_ = false;
  long long statements_before_ = 0;  // the session's count when it was handed to us
  long long statements_run_ = 0;     // what sessions since closed ran for us
};

}  // namespace tidewell::ado
