#include "search/search_scope.h"

#include "data/recordset.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "views/item_list_statements.h"

namespace tidewell {
namespace {

using ado::Recordset;

// Whether `owner_key` names an account of the searcher's group. Text that is no key never
// reaches the statement.
bool IsGroupMember(Page& page, std::string_view owner_key) {
  if (!IsOwnerKey(owner_key)) return false;
  Recordset rs;
  rs.Open(GroupScopeStatement(owner_key), *page.Connection);
  const bool member = !rs.Eof() && !rs.Fields("GroupID").Value().IsNull() &&
                      CLng(rs.Fields("GroupID").Value()) == page.UserGroupId;
  rs.Close();
  return member;
}

SearchOwner AdministratorScope(std::string_view posted) {
  if (posted == "all") return {SearchOwner::Kind::kEveryone, ""};
  if (IsNumeric(std::string(posted))) return {SearchOwner::Kind::kGroup, std::string(posted)};
  return {SearchOwner::Kind::kUser, std::string(posted)};
}

SearchOwner WholeGroupScope(Page& page, std::string_view posted) {
  if (posted == "all") return {SearchOwner::Kind::kGroup, std::to_string(page.UserGroupId)};
  if (posted == page.UserKey || IsGroupMember(page, posted)) {
    return {SearchOwner::Kind::kUser, std::string(posted)};
  }
  return {SearchOwner::Kind::kUser, page.UserKey};
}

}  // namespace

SearchOwner SearchScope(Page& page, std::string_view posted) {
  if (!page.AdminKey.empty()) return AdministratorScope(posted);
  if (page.User.ShowAllGroupUsers) return WholeGroupScope(page, posted);
  return {SearchOwner::Kind::kUser, page.UserKey};
}

}  // namespace tidewell
