#pragma once

#include "data/connection.h"
#include "data/database_error.h"

namespace tidewell {

// Runs `work` on `connection` in one transaction: all of it or nothing. Whatever `work`
// throws is thrown again after the rollback.
template <typename Work>
void InOneTransaction(ado::Connection& connection, Work work) {
  connection.BeginTrans();
  try {
    work();
    connection.CommitTrans();
  } catch (...) {
    try {
      connection.RollbackTrans();
    } catch (const ado::DatabaseError&) {
      // Closing the connection rolls back as well.
    }
    throw;
  }
}

}  // namespace tidewell
