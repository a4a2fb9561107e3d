// The forms' option lists of users and groups.

#include <gtest/gtest.h>

#include "page/asp_objects.h"
#include "tests/views/view_fixture.h"
#include "views/item_list_statements.h"
#include "views/option_lists.h"

namespace tidewell {
namespace {

using testing::ViewTest;

class OptionLists : public ViewTest {
 protected:
  static constexpr const char* kAnn = "0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a";

  void SetUp() override {
    ViewTest::SetUp();
    data_.AddUser(
        {.key = kAnn, .name = "ann", .group = crew_, .administrator = true, .initials = "AN"});
    empty_ = data_.AddGroup("Empty");
    page_.request = &request_;
  }

  void PostOwner(std::string owner) { request_.Form.Add("ownerkey", std::move(owner)); }

  static std::string User(const char* key, const char* group, const char* name,
                          bool administrator = false, bool selected = false) {
    return std::string(selected ? "<option selected " : "<option ") +
           (administrator ? "class=admin" : "class=text") + " value=" + key + " >" + group + " - " +
           name + "</option>";
  }
  static std::string Group(long id, const char* name, bool selected = false) {
    return std::string(selected ? "<option selected class=text value="
                                : "<option class=text value=") +
           std::to_string(id) + " >" + name + "</option>";
  }
  static std::string SearchGroup(long id, const char* name, bool selected = false) {
    return std::string(selected ? "<option selected class=text value="
                                : "<option class=text value=") +
           std::to_string(id) + " >- Search Group " + name + " -</option>";
  }
  std::string AllUsers(const char* selected_key) const {
    return User(kAnn, "Crew", "ann", true, selected_key == std::string(kAnn)) +
           User(kBob, "Crew", "bob", false, selected_key == std::string(kBob)) +
           User(kCarol, "Crew", "carol", false, selected_key == std::string(kCarol)) +
           User(kDave, "Deck", "dave", false, selected_key == std::string(kDave));
  }

  AspRequest request_;
  long empty_ = 0;
};

TEST(OptionListStatements, ReadWordForWord) {
  EXPECT_EQ(OneUserStatement("k1").CheckedText(),
            "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM "
            "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE Users.OwnerKey = "
            "'k1' ORDER BY GroupName, Username ASC");
  EXPECT_EQ(AllUsersStatement().CheckedText(),
            "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM "
            "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID ORDER BY GroupName, "
            "Username ASC");
  EXPECT_EQ(GroupUsersStatement(4).CheckedText(),
            "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM "
            "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE Users.GroupID = 4 "
            "ORDER BY GroupName, Username ASC");
  EXPECT_EQ(AdministeredUsersStatement().CheckedText(),
            "SELECT Users.OwnerKey, Users.Administrator, Users.UserName, Groups.GroupName FROM "
            "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID ORDER BY Groups.GroupName, "
            "Users.UserName ASC");
  EXPECT_EQ(GroupsStatement().CheckedText(), "SELECT * FROM Groups ORDER BY GroupName ASC");
  EXPECT_EQ(GroupMembersStatement(4).CheckedText(), "SELECT GroupID FROM Users WHERE GroupID = 4");
  EXPECT_EQ(SearchGroupsStatement().CheckedText(), "SELECT * FROM Groups ORDER BY GroupName");
}

// --- The item form's owners ---

TEST_F(OptionLists, ItemOwnersOfAUserWorkingAloneAreHimselfPreselected) {
  EXPECT_EQ(ItemOwnerList(page_), User(kBob, "Crew", "bob", false, true));
}

TEST_F(OptionLists, ItemOwnersUnderAnAdministratorKeyAreEveryUserTheCurrentOnePreselected) {
  page_.AdminKey = kAnn;
  EXPECT_EQ(ItemOwnerList(page_), AllUsers(kBob));
}

TEST_F(OptionLists, ItemOwnersEscapeNamesAndGroups) {
  long lab = data_.AddGroup("R&D <lab>");
  data_.AddUser({.key = "0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e",
                 .name = "eve \"x\"",
                 .group = lab,
                 .initials = "EV"});
  page_.UserKey = "0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e";
  EXPECT_EQ(ItemOwnerList(page_),
            "<option selected class=text value=0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e >R&amp;D "
            "&lt;lab&gt; - eve &quot;x&quot;</option>");
}

// --- The administrator's lists ---

TEST_F(OptionLists, UsersListsEveryUserByGroupAndName) {
  EXPECT_EQ(UserList(page_), AllUsers(kBob));
}

TEST_F(OptionLists, GroupsListsEveryGroupTheUsersOwnPreselected) {
  EXPECT_EQ(GroupList(page_, page_.UserGroupId),
            Group(crew_, "Crew", true) + Group(deck_, "Deck") + Group(empty_, "Empty"));
}

TEST_F(OptionLists, RedundantGroupsListsTheGroupsNobodyBelongsTo) {
  long spare = data_.AddGroup("Attic");
  EXPECT_EQ(UnassignedGroupList(page_),
            Group(spare, "Attic") + Group(empty_, "Empty"));
}

TEST_F(OptionLists, RedundantGroupsWhenEveryGroupHasMembersIsANonBreakingSpace) {
  data_.AddUser({.name = "erin", .group = empty_, .initials = "ER"});
  EXPECT_EQ(UnassignedGroupList(page_), "&nbsp;");
}

TEST_F(OptionLists, GroupsListMarksTheGroupItIsGivenAndLeavesThePageAlone) {
  const long user_group = page_.UserGroupId;
  EXPECT_EQ(GroupList(page_, deck_), Group(crew_, "Crew") + Group(deck_, "Deck", true) +
                                         Group(empty_, "Empty"));
  EXPECT_EQ(page_.UserGroupId, user_group);
  EXPECT_FALSE(page_.Error.Raised());
}

// --- Whose calendars a search covers ---

TEST_F(OptionLists, AnAdministratorSearchesAllUsersAnyGroupOrAnyUser) {
  page_.AdminKey = kBob;
  EXPECT_EQ(SearchOwnerList(page_),
            "<option class=text value=all >- Search All Users -</option>" +
                SearchGroup(crew_, "Crew") + SearchGroup(deck_, "Deck") +
                SearchGroup(empty_, "Empty") + AllUsers(""));
}

TEST_F(OptionLists, AnAdministratorsPostedOwnerStaysPreselected) {
  page_.AdminKey = kBob;
  PostOwner(kDave);
  EXPECT_EQ(SearchOwnerList(page_),
            "<option class=text value=all >- Search All Users -</option>" +
                SearchGroup(crew_, "Crew") + SearchGroup(deck_, "Deck") +
                SearchGroup(empty_, "Empty") + AllUsers(kDave));
}

TEST_F(OptionLists, AnAdministratorsPostedGroupStaysPreselected) {
  page_.AdminKey = kBob;
  PostOwner(std::to_string(deck_));
  EXPECT_EQ(SearchOwnerList(page_),
            "<option class=text value=all >- Search All Users -</option>" +
                SearchGroup(crew_, "Crew") + SearchGroup(deck_, "Deck", true) +
                SearchGroup(empty_, "Empty") + AllUsers(""));
}

TEST_F(OptionLists, AnAdministratorsAllUsersEntryIsNeverMarkedSelectedEvenWhenPosted) {
  page_.AdminKey = kBob;
  PostOwner("all");
  EXPECT_EQ(SearchOwnerList(page_),
            "<option class=text value=all >- Search All Users -</option>" +
                SearchGroup(crew_, "Crew") + SearchGroup(deck_, "Deck") +
                SearchGroup(empty_, "Empty") + AllUsers(""));
}

TEST_F(OptionLists, AUserWhoSeesTheWholeGroupSearchesItOrOneOfItsUsers) {
  page_.User.ShowAllGroupUsers = true;
  EXPECT_EQ(SearchOwnerList(page_),
            "<option selected class=text value=all >- Search All Group Users -</option>" +
                User(kAnn, "Crew", "ann", true) + User(kBob, "Crew", "bob") +
                User(kCarol, "Crew", "carol"));
}

TEST_F(OptionLists, AWholeGroupUsersAllEntryStaysSelectedBesideThePostedMember) {
  page_.User.ShowAllGroupUsers = true;
  PostOwner(kCarol);
  EXPECT_EQ(SearchOwnerList(page_),
            "<option selected class=text value=all >- Search All Group Users -</option>" +
                User(kAnn, "Crew", "ann", true) + User(kBob, "Crew", "bob") +
                User(kCarol, "Crew", "carol", false, true));
}

TEST_F(OptionLists, AnyOtherUserSearchesOnlyHimself) {
  EXPECT_EQ(SearchOwnerList(page_), User(kBob, "Crew", "bob"));
  PostOwner(kBob);
  EXPECT_EQ(SearchOwnerList(page_), User(kBob, "Crew", "bob", false, true));
}

TEST_F(OptionLists, AFailingListBecomesTheDataServerError) {
  page_.UserKey = "it's";
  EXPECT_EQ(ItemOwnerList(page_), "&nbsp;");
  EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead);
}

}  // namespace
}  // namespace tidewell
