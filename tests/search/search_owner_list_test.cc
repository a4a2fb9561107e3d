// The owner list of the search screen through Show, for the administrator ann, bob (who sees
// his whole group) and carol (who sees only herself), on a first visit and after each kind of
// posted owner: the searcher's own key, another user's key, a group id and "all". The
// administrator's "all" entry is never marked selected and the whole-group "all" entry always
// is; the group and user rows are marked when they equal the posted owner.

#include <gtest/gtest.h>

#include <string>

#include "tests/search/search_site.h"

namespace tidewell {
namespace {

class SearchOwnerListTest : public testing::SearchSiteTest {
 protected:
  // The options between "<select class=text name=ownerkey>" and "</select>".
  static std::string OwnerList(const std::string& html) {
    const std::string open = "<select class=text name=ownerkey>";
    const size_t start = html.find(open);
    if (start == std::string::npos) return "(no owner list)";
    const size_t from = start + open.size();
    return html.substr(from, html.find("</select>", from) - from);
  }
  std::string FirstVisitList(const char* key) { return OwnerList(SearchScreen(key).Show()); }
  std::string PostedList(const char* key, const std::string& owner) {
    return OwnerList(Search(key, owner, "Tide").Show());
  }

  static std::string User(const char* key, const char* group, const char* name,
                          const std::string& posted, bool administrator = false) {
    return std::string(key == posted ? "<option selected " : "<option ") +
           (administrator ? "class=admin" : "class=text") + " value=" + key + " >" + group +
           " - " + name + "</option>";
  }
  static std::string Group(long id, const char* name, const std::string& posted) {
    const std::string value = std::to_string(id);
    return std::string(value == posted ? "<option selected class=text value="
                                       : "<option class=text value=") +
           value + " >- Search Group " + name + " -</option>";
  }

  // ann's list when the form posted `posted` ("" on a first visit).
  std::string AdministratorList(const std::string& posted) const {
    return "<option class=text value=all >- Search All Users -</option>" +
           Group(crew_, "Crew", posted) + Group(deck_, "Deck", posted) +
           User(kAnn, "Crew", "ann", posted, /*administrator=*/true) +
           User(kBob, "Crew", "bob", posted) + User(kCarol, "Crew", "carol", posted) +
           User(kDave, "Deck", "dave", posted);
  }
  // bob's list when the form posted `posted`.
  static std::string WholeGroupList(const std::string& posted) {
    return "<option selected class=text value=all >- Search All Group Users -</option>" +
           User(kAnn, "Crew", "ann", posted, /*administrator=*/true) +
           User(kBob, "Crew", "bob", posted) + User(kCarol, "Crew", "carol", posted);
  }
  // carol's list when the form posted `posted`.
  static std::string OwnList(const std::string& posted) {
    return User(kCarol, "Crew", "carol", posted);
  }
};

// --- The administrator ---

TEST_F(SearchOwnerListTest, AdministratorFirstVisitMarksNothing) {
  EXPECT_EQ(FirstVisitList(kAnn), AdministratorList(""));
}

TEST_F(SearchOwnerListTest, AdministratorPostingHisOwnKeyMarksHisRowOnly) {
  EXPECT_EQ(PostedList(kAnn, kAnn), AdministratorList(kAnn));
}

TEST_F(SearchOwnerListTest, AdministratorPostingAnotherUsersKeyMarksThatRowOnly) {
  EXPECT_EQ(PostedList(kAnn, kDave), AdministratorList(kDave));
}

TEST_F(SearchOwnerListTest, AdministratorPostingAGroupIdMarksThatGroupOnly) {
  EXPECT_EQ(PostedList(kAnn, std::to_string(deck_)), AdministratorList(std::to_string(deck_)));
}

TEST_F(SearchOwnerListTest, AdministratorPostingAllLeavesTheAllUsersEntryUnmarked) {
  const std::string list = PostedList(kAnn, "all");
  EXPECT_EQ(list, AdministratorList("all"));
  EXPECT_EQ(list.find("selected"), std::string::npos) << list;
}

// --- A user who sees his whole group ---

TEST_F(SearchOwnerListTest, WholeGroupUserFirstVisitMarksTheAllGroupUsersEntry) {
  EXPECT_EQ(FirstVisitList(kBob), WholeGroupList(""));
}

TEST_F(SearchOwnerListTest, WholeGroupUserPostingHisOwnKeyKeepsTheAllEntryMarkedBesideHisRow) {
  const std::string list = PostedList(kBob, kBob);
  EXPECT_EQ(list, WholeGroupList(kBob));
  EXPECT_TRUE(list.starts_with(
      "<option selected class=text value=all >- Search All Group Users -</option>"))
      << list;
  EXPECT_NE(list.find(std::string("<option selected class=text value=") + kBob +
                      " >Crew - bob</option>"),
            std::string::npos)
      << list;
}

TEST_F(SearchOwnerListTest, WholeGroupUserPostingAMembersKeyKeepsTheAllEntryMarked) {
  EXPECT_EQ(PostedList(kBob, kCarol), WholeGroupList(kCarol));
}

TEST_F(SearchOwnerListTest, WholeGroupUserPostingAKeyOutsideHisGroupMarksOnlyTheAllEntry) {
  EXPECT_EQ(PostedList(kBob, kDave), WholeGroupList(kDave));
}

TEST_F(SearchOwnerListTest, WholeGroupUserPostingAGroupIdMarksOnlyTheAllEntry) {
  EXPECT_EQ(PostedList(kBob, std::to_string(crew_)), WholeGroupList(std::to_string(crew_)));
}

TEST_F(SearchOwnerListTest, WholeGroupUserPostingAllMarksOnlyTheAllEntry) {
  EXPECT_EQ(PostedList(kBob, "all"), WholeGroupList("all"));
}

// --- A user who sees only himself ---

TEST_F(SearchOwnerListTest, OwnCalendarUserFirstVisitMarksNothing) {
  EXPECT_EQ(FirstVisitList(kCarol), OwnList(""));
}

TEST_F(SearchOwnerListTest, OwnCalendarUserPostingHerOwnKeyMarksHerRow) {
  EXPECT_EQ(PostedList(kCarol, kCarol), OwnList(kCarol));
}

TEST_F(SearchOwnerListTest, OwnCalendarUserPostingAnotherKeyGroupOrAllMarksNothing) {
  for (const std::string& posted : {std::string(kBob), std::to_string(crew_), std::string("all")}) {
    const std::string list = PostedList(kCarol, posted);
    EXPECT_EQ(list, OwnList(posted)) << posted;
    EXPECT_EQ(list.find("selected"), std::string::npos) << posted;
  }
}

}  // namespace
}  // namespace tidewell
