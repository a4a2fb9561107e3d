#include "data/connection.h"

#include "data/database_error.h"
#include "data/session.h"
#include "data/statement.h"

namespace tidewell::ado {

Connection::Connection() = default;

Connection::~Connection() {
  Close();
}

void Connection::Open(std::string_view connection_string) {
  if (session_) {
    throw DatabaseError(error_numbers::kObjectOpen,
                        "Operation is not allowed when the object is open.");
  }
  std::string text(connection_string);
  std::string provider;
  session_ = AcquireSession(text, &provider);
  statements_before_ = session_->Counts().run;
  connection_string_ = std::move(text);
  provider_ = std::move(provider);
}

long Connection::Execute(const Statement& statement) {
  const std::string& text = statement.CheckedText();
  return session().Run(text).affected;
}

void Connection::Close() {
  if (!session_) return;
  if (in_transaction_) {
    in_transaction_ = false;
    try {
      session_->Run("ROLLBACK");
    } catch (const DatabaseError&) {
      statements_run_ = StatementsRun();
      session_.reset();  // a session in an unknown state is not pooled
    }
  }
  statements_run_ = StatementsRun();
  ReleaseSession(connection_string_, std::move(session_));
  session_.reset();
}

void Connection::BeginTrans() {
  session().Run("BEGIN");
  in_transaction_ = true;
}

void Connection::CommitTrans() {
  session().Run("COMMIT");
  in_transaction_ = false;
}

void Connection::RollbackTrans() {
  session().Run("ROLLBACK");
  in_transaction_ = false;
}

bool Connection::TableExists(std::string_view table) {
  return session().TableExists(table);
}

long long Connection::StatementsRun() const {
  return statements_run_ + (session_ ? session_->Counts().run - statements_before_ : 0);
}

Session& Connection::session() {
  if (!session_) {
    throw DatabaseError(error_numbers::kObjectClosed,
                        "Operation is not allowed when the object is closed.");
  }
  return *session_;
}

}  // namespace tidewell::ado
