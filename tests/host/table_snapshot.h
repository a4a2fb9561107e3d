#pragma once

#include <string>
#include <vector>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"

namespace tidewell::testing {

// Every column of every row the `queries` read (each with its ORDER BY), one line a row and
// "--" after each query: what "nothing changed" compares before and after a command.
inline std::string TableSnapshot(const std::string& connection_string,
                                 const std::vector<const char*>& queries) {
  ado::Connection connection;
  connection.Open(connection_string);
  std::string text;
  for (const char* query : queries) {
    ado::Recordset rs;
    rs.Open(ado::Statement(query), connection);
    for (; !rs.Eof(); rs.MoveNext()) {
      for (size_t i = 0; i < rs.FieldCount(); ++i) text += CStrOrBlank(rs.Fields(i).Value()) + "|";
      text += "\n";
    }
    text += "--\n";
  }
  return text;
}

}  // namespace tidewell::testing
