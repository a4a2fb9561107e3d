#include "accounts/stored_passwords.h"

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"

namespace tidewell {

int HashPasswordsKeptAsTyped(const std::string& connection_string) {
  ado::Connection connection;
  connection.Open(connection_string);
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT OwnerKey, Password FROM Users"), connection, ado::adOpenDynamic,
          ado::adLockOptimistic);
  int hashed = 0;
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string stored = CStrOrBlank(rs.Fields("Password").Value());
    if (IsPasswordHash(stored)) continue;
    rs.Fields("Password").SetValue(HashPassword(stored));
    rs.Update();
    ++hashed;
  }
  return hashed;
}

}  // namespace tidewell
