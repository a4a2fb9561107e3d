#pragma once

#include <map>
#include <mutex>
#include <string>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/schema.h"
#include "data/statement.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

// What a test sees of a stored password: the password it is a hash of, among those the tests
// type, or "not a hash: " and the stored text, or "hash of another password". Each answer is
// kept, as a verification costs tens of milliseconds.
inline std::string TypedPassword(const std::string& stored) {
  static std::mutex mutex;
  static std::map<std::string, std::string> known;
  std::lock_guard lock(mutex);
  if (auto found = known.find(stored); found != known.end()) return found->second;
  std::string answer = "hash of another password";
  if (!IsPasswordHash(stored)) {
    answer = "not a hash: " + stored;
  } else {
    for (const char* typed : {"pw", "secret", "new", "changed", "dpw", "kept", "n&w", "tide", "y",
                              "password", "wrong", ""}) {
      if (VerifyPassword(stored, typed)) {
        answer = typed;
        break;
      }
    }
  }
  known.emplace(stored, answer);
  return answer;
}

// A SQLite calendar database of its own in a temporary folder, with the tables made by
// CreateSchema, filled by the test through the seeder with the rows it needs. The folder comes
// first, so that it exists before the seeder is handed the database's path.
class SeededDatabase : private TempFolder, public Seeder {
 public:
  SeededDatabase() : Seeder("Provider=SQLite;Data Source=" + TempFolder::path() + "/calendar.db") {
    CreateSchema(connection_string());
  }

  const std::string& folder() const { return TempFolder::path(); }

  // Runs a statement made of fixed text, for a test that changes the data it seeded.
  void Execute(const char* statement) {
    ado::Connection connection;
    connection.Open(connection_string());
    connection.Execute(ado::Statement(statement));
  }
};

}  // namespace tidewell::testing
