#include "views/option_lists.h"

#include <functional>
#include <string>

#include "data/recordset.h"
#include "data/statement.h"
#include "frame/markup.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "views/item_list_statements.h"
#include "views/list_reading.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// Every user the statement reads, the one whose key is `selected_key` preselected.
std::string UserOptions(Page& page, const Statement& statement, std::string_view selected_key) {
  std::string options;
  Recordset rs;
  rs.Open(statement, *page.Connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string key = CStrOrBlank(rs.Fields("OwnerKey").Value());
    const Variant& administrator = rs.Fields("Administrator").Value();
    options += key == selected_key ? "<option selected " : "<option ";
    options += !administrator.IsNull() && CBool(administrator) ? "class=admin" : "class=text";
    options += " value=" + EscapeHtml(key) + " >" +
               EscapeHtml(CStrOrBlank(rs.Fields("GroupName").Value())) + " - " +
               EscapeHtml(CStrOrBlank(rs.Fields("Username").Value())) + "</option>";
  }
  rs.Close();
  return options;
}

bool HasMembers(Page& page, long group_id) {
  Recordset rs;
  rs.Open(GroupMembersStatement(group_id), *page.Connection);
  return !rs.Eof();
}

// Every group, `selected_id` preselected; with `only_empty`, only the groups without members.
std::string GroupOptions(Page& page, long selected_id, bool only_empty) {
  std::string options;
  Recordset rs;
  rs.Open(GroupsStatement(), *page.Connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    const long id = CLng(rs.Fields("GroupID").Value());
    if (only_empty && HasMembers(page, id)) continue;
    options += TextOption(std::to_string(id), EscapeHtml(CStrOrBlank(rs.Fields("GroupName").Value())),
                          !only_empty && id == selected_id);
  }
  rs.Close();
  return options;
}

// "- Search Group <name> -" for every group, for an administrator's search.
std::string SearchGroupOptions(Page& page, std::string_view posted_owner) {
  std::string options;
  Recordset rs;
  rs.Open(SearchGroupsStatement(), *page.Connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string id = std::to_string(CLng(rs.Fields("GroupID").Value()));
    options += TextOption(
        id, "- Search Group " + EscapeHtml(CStrOrBlank(rs.Fields("GroupName").Value())) + " -",
        id == posted_owner);
  }
  rs.Close();
  return options;
}

// The search form's owners, the group of a whole-group user being `group_id`.
std::string SearchOwnerOptions(Page& page, long group_id) {
  const std::string posted = page.FormValue("ownerkey");
  // The two "all" entries are fixed texts: the administrator's is never marked selected and
  // the whole-group user's always is, whatever the form posted. Only the group and user rows
  // follow the posted owner, so a whole-group user who posted a member's key gets two
  // selected entries; a browser shows the later one.
  if (!page.AdminKey.empty()) {
    return "<option class=text value=all >- Search All Users -</option>" +
           SearchGroupOptions(page, posted) + UserOptions(page, AllUsersStatement(), posted);
  }
  if (page.User.ShowAllGroupUsers && group_id != 0) {
    return "<option selected class=text value=all >- Search All Group Users -</option>" +
           UserOptions(page, GroupUsersStatement(group_id), posted);
  }
  return UserOptions(page, OneUserStatement(page.UserKey), posted);
}

// A list as the select boxes take it: read under the lists' error trap, "&nbsp;" when empty.
std::string FormList(Page& page, const std::function<std::string()>& read) {
  const std::string list = TrapListFailure(page, [&] {
    ListConnection(page);  // fails the list the same way when there is no connection
    return read();
  });
  return list.empty() ? "&nbsp;" : list;
}

}  // namespace

std::string ItemOwnerList(Page& page) {
  return FormList(page, [&] {
    if (page.AdminKey.empty()) {
      return UserOptions(page, OneUserStatement(page.UserKey), page.UserKey);
    }
    return UserOptions(page, AllUsersStatement(), page.UserKey);
  });
}

std::string UserList(Page& page) {
  return FormList(page,
                  [&] { return UserOptions(page, AdministeredUsersStatement(), page.UserKey); });
}

std::string GroupList(Page& page, long selected_group) {
  return FormList(page, [&] { return GroupOptions(page, selected_group, /*only_empty=*/false); });
}

std::string UnassignedGroupList(Page& page) {
  return FormList(page, [&] { return GroupOptions(page, 0, /*only_empty=*/true); });
}

std::string SearchOwnerList(Page& page) {
  return FormList(page, [&] { return SearchOwnerOptions(page, ListGroupScope(page)); });
}

}  // namespace tidewell
