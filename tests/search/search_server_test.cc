// Searching through the real server, with the forms posted as a browser posts them: an
// administrator, a user who sees his whole group and a user who sees only himself search the
// same calendar data, and owner values forged into the post reach only the searcher's own
// calendar.

#include <gtest/gtest.h>
#include <httplib.h>

#include <fstream>
#include <memory>

#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"
#include "tests/search/search_site.h"

namespace tidewell {
namespace {

using testing::FormAction;
using testing::FoundHeadings;
using testing::LinkFields;
using testing::LinkTitled;
using testing::ServerProcess;
using testing::UserHeadings;
using Strings = std::vector<std::string>;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

class SearchOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    crew_ = database_.AddGroup("Crew");
    deck_ = database_.AddGroup("Deck");
    ann_ = database_.AddUser(
        {.name = "ann", .password = "pw-ann", .group = crew_, .administrator = true});
    bob_ = database_.AddUser(
        {.name = "bob", .password = "pw-bob", .group = crew_, .options = "1+8+0+0+0"});
    carol_ = database_.AddUser({.name = "carol", .password = "pw-carol", .group = crew_});
    dave_ = database_.AddUser({.name = "dave", .password = "pw-dave", .group = deck_});
    AddItem(ann_, 2, 8, "Tide table ann");
    AddItem(bob_, 3, 9, "Tide table bob");
    AddItem(carol_, 4, 10, "Tide table carol");
    AddItem(dave_, 5, 11, "Tide table dave");
    AddItem(dave_, 5, 12, "Galley dave");

    std::string config = database_.folder() + "/site.conf";
    std::ofstream(config) << "Visible = True\nImagePath = images/\nDefaultStartHour = 8\n"
                          << "ConnectionString = Provider=SQLite;Data Source=" << database_.folder()
                          << "/calendar.db\n"
                          << "LinkSecret = search-test-secret-0123456789\n";
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server_->WaitForPort();
  }

  // An item on a day of November 2026 at a full hour.
  void AddItem(const std::string& owner, int day, long hour, const char* heading) {
    database_.AddItem({.owner = owner,
                       .date = DateSerial(2026, 11, day),
                       .hour = hour,
                       .time_text = FormatTwoDigits(hour) + ":00",
                       .heading = heading,
                       .description = std::nullopt});
  }

  std::string Get(const std::string& link) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Get(("/" + link).c_str());
    EXPECT_TRUE(res && res->status == 200) << link;
    return res && res->status == 200 ? res->body : "";
  }
  std::string PostForm(const std::string& action, const std::string& body) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Post(("/" + action).c_str(), body, "application/x-www-form-urlencoded");
    EXPECT_TRUE(res && res->status == 200) << action;
    return res && res->status == 200 ? res->body : "";
  }

  // Signs in with the login form and opens the search screen with the header's button.
  std::string SearchScreenOf(const std::string& name) {
    std::string login = Get("");
    std::string first = PostForm(
        FormAction(login), "username=" + name + "&password=pw-" + name + "&submit=Login&login=y");
    EXPECT_NE(first.find("<b>User:</b> " + name), std::string::npos) << first;
    std::string screen = Get(LinkTitled(first, "Search for Items"));
    EXPECT_NE(screen.find("<!-- SearchScreenView  Start -->"), std::string::npos);
    return screen;
  }

  // Posts the search form of `screen` with `owner` for "Tide" in November 2026.
  std::string SearchFrom(const std::string& screen, const std::string& owner) {
    return PostForm(FormAction(screen), "ownerkey=" + owner +
                                            "&startdate=11%2F1%2F2026&enddate=11%2F30%2F2026"
                                            "&search=Tide&submit=Search&action=u");
  }
  Strings Found(const std::string& name, const std::string& owner) {
    return FoundHeadings(SearchFrom(SearchScreenOf(name), owner));
  }

  testing::SeededDatabase database_;
  long crew_ = 0, deck_ = 0;
  std::string ann_, bob_, carol_, dave_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
};

TEST_F(SearchOverHttp, ThreeSearchersSeeWhatTheyMaySee) {
  ASSERT_NE(port_, 0) << server_->Log();

  // The administrator is offered everyone, every group and every user, and finds everything.
  std::string ann_screen = SearchScreenOf("ann");
  EXPECT_NE(ann_screen.find("<option class=text value=all >- Search All Users -</option>"),
            std::string::npos);
  EXPECT_NE(ann_screen.find(" >- Search Group Deck -</option>"), std::string::npos);
  EXPECT_NE(ann_screen.find(">Deck - dave</option>"), std::string::npos);
  std::string ann_found = SearchFrom(ann_screen, "all");
  EXPECT_EQ(FoundHeadings(ann_found),
            (Strings{"Tide table ann", "Tide table bob", "Tide table carol", "Tide table dave"}));
  EXPECT_EQ(UserHeadings(ann_found),
            (Strings{"Crew - ann", "Crew - bob", "Crew - carol", "Deck - dave"}));
  // After posting "all" the administrator's "all" entry is still not marked selected.
  EXPECT_NE(ann_found.find("<select class=text name=ownerkey>"
                           "<option class=text value=all >- Search All Users -</option>"),
            std::string::npos)
      << ann_found;
  EXPECT_EQ(ann_found.find("<option selected"), std::string::npos);

  // bob sees his group: offered it and its members, finds its items.
  std::string bob_screen = SearchScreenOf("bob");
  EXPECT_NE(bob_screen.find("<option selected class=text value=all >- Search All Group Users "
                            "-</option>"),
            std::string::npos);
  EXPECT_NE(bob_screen.find(">Crew - carol</option>"), std::string::npos);
  EXPECT_EQ(bob_screen.find("dave"), std::string::npos);
  EXPECT_EQ(bob_screen.find("Search Group"), std::string::npos);
  EXPECT_EQ(FoundHeadings(SearchFrom(bob_screen, "all")),
            (Strings{"Tide table ann", "Tide table bob", "Tide table carol"}));
  std::string bob_found = SearchFrom(bob_screen, carol_);
  EXPECT_EQ(FoundHeadings(bob_found), (Strings{"Tide table carol"}));
  // His "all" entry stays marked selected beside the member he posted.
  EXPECT_NE(bob_found.find("<option selected class=text value=all >- Search All Group Users "
                           "-</option>"),
            std::string::npos)
      << bob_found;
  EXPECT_NE(bob_found.find("<option selected class=text value=" + carol_ + " >Crew - carol"),
            std::string::npos);

  // dave sees himself only.
  std::string dave_screen = SearchScreenOf("dave");
  EXPECT_NE(dave_screen.find("<select class=text name=ownerkey><option class=text value=" + dave_ +
                             " >Deck - dave</option></select>"),
            std::string::npos);
  EXPECT_EQ(FoundHeadings(SearchFrom(dave_screen, dave_)), (Strings{"Tide table dave"}));
}

TEST_F(SearchOverHttp, ForgedOwnersReachOnlyTheSearchersOwnCalendar) {
  ASSERT_NE(port_, 0) << server_->Log();
  // "all" without the show-all option.
  EXPECT_EQ(Found("carol", "all"), (Strings{"Tide table carol"}));
  EXPECT_EQ(Found("dave", "all"), (Strings{"Tide table dave"}));
  // Another group's user, for a user who sees his group and for one who does not.
  EXPECT_EQ(Found("bob", dave_), (Strings{"Tide table bob"}));
  EXPECT_EQ(Found("dave", ann_), (Strings{"Tide table dave"}));
  // A member of one's own group without the show-all option.
  EXPECT_EQ(Found("carol", bob_), (Strings{"Tide table carol"}));
  // A numeric group id from a user who is no administrator, his own group's or another's.
  EXPECT_EQ(Found("bob", std::to_string(deck_)), (Strings{"Tide table bob"}));
  EXPECT_EQ(Found("bob", std::to_string(crew_)), (Strings{"Tide table bob"}));
  EXPECT_EQ(Found("dave", std::to_string(crew_)), (Strings{"Tide table dave"}));
  // Text that is no key, with a quote in it.
  EXPECT_EQ(Found("carol", "x%27+OR+%271%27%3D%271"), (Strings{"Tide table carol"}));
}

TEST_F(SearchOverHttp, AResultLeadsToTheTimeViewOfTheItemsHour) {
  ASSERT_NE(port_, 0) << server_->Log();
  std::string found = SearchFrom(SearchScreenOf("bob"), carol_);
  const std::string open = "<a class=search href=";
  const size_t at = found.find(open);
  ASSERT_NE(at, std::string::npos) << found;
  const std::string link =
      found.substr(at + open.size(), found.find(' ', at + open.size()) - at - open.size());
  std::vector<std::string> fields = LinkFields(link, /*hex=*/true);
  ASSERT_EQ(fields.size(), 9u);
  EXPECT_EQ(fields[1], "3/n");
  EXPECT_EQ(fields[2], "11/4/2026");
  EXPECT_EQ(fields[3], "10");

  std::string time = Get(link);
  EXPECT_NE(time.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(time.find("<b>User:</b> bob"), std::string::npos);
  EXPECT_NE(time.find("<td class=text width=375 align=left >Tide table carol</td>"),
            std::string::npos);
}

TEST_F(SearchOverHttp, AnInvalidDateComesBackAsTheFormWithTheTypedValues) {
  ASSERT_NE(port_, 0) << server_->Log();
  std::string screen = SearchScreenOf("carol");
  std::string again = PostForm(FormAction(screen),
                               "ownerkey=all&startdate=11%2F1%2F2026&enddate=11%2F31%2F2026"
                               "&search=%3CTide%3E&submit=Search&action=u");
  EXPECT_NE(again.find("<font color=#b22222><b>You have entered an invalid end date, please "
                       "choose another date.</b></font><br><br>"),
            std::string::npos);
  EXPECT_NE(again.find("name=enddate value=\"11/31/2026\" size=15 >"), std::string::npos);
  EXPECT_NE(again.find("name=search value=\"&lt;Tide&gt;\" size=50 >"), std::string::npos);
  EXPECT_TRUE(FoundHeadings(again).empty());
}

}  // namespace
}  // namespace tidewell
