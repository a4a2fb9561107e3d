#include "data/site_settings.h"

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

ado::Statement StoreIfMissingStatement(std::string_view name, std::string_view value) {
  return ado::Statement("INSERT INTO TidewellSettings (Name, Value) VALUES (")
      .Text(name)
      .Add(", ")
      .Text(value)
      .Add(") ON CONFLICT DO NOTHING");
}

ado::Statement SettingStatement(std::string_view name) {
  return ado::Statement("SELECT Value FROM TidewellSettings WHERE Name = ").Text(name);
}

}  // namespace

std::string ReadOrStoreSetting(const std::string& connection_string, std::string_view name,
                               std::string_view value_if_missing) {
  ado::Connection connection;
  connection.Open(connection_string);
  return ReadOrStoreSetting(connection, name, value_if_missing);
}

std::string ReadOrStoreSetting(ado::Connection& connection, std::string_view name,
                               std::string_view value_if_missing) {
  connection.Execute(StoreIfMissingStatement(name, value_if_missing));
  ado::Recordset rs;
  rs.Open(SettingStatement(name), connection);
  return CStrOrBlank(rs.Fields("Value").Value());
}

}  // namespace tidewell
