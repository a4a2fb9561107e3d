// Adding, editing and deleting an item through the real server, with the forms posted as a
// browser posts them, and the item looked for in the four views after each step.

#include <gtest/gtest.h>
#include <httplib.h>

#include <fstream>

#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"

namespace tidewell {
namespace {

using testing::FormAction;
using testing::LinkFields;
using testing::LinkTitled;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

// The value of the preselected entry of a select list: what a browser posts for it.
std::string SelectedValue(const std::string& html) {
  const std::string before = "<option selected class=text value=";
  size_t at = html.find(before);
  if (at == std::string::npos) return "";
  at += before.size();
  return html.substr(at, html.find(' ', at) - at);
}

class ItemsOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    long crew = database_.AddGroup("Crew");
    database_.AddUser({.name = "admin", .password = "pw", .group = crew, .administrator = true});
    bob_ =
        database_.AddUser({.name = "bob", .password = "secret", .group = crew, .initials = "BB"});
    std::string config = database_.folder() + "/site.conf";
    std::ofstream(config) << "Visible = True\nImagePath = images/\nDefaultStartHour = 8\n"
                          << "ConnectionString = Provider=SQLite;Data Source=" << database_.folder()
                          << "/calendar.db\n"
                          << "LinkSecret = item-test-secret-0123456789\n";
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server_->WaitForPort();
    connection_.Open(database_.connection_string());
  }
  void TearDown() override { connection_.Close(); }

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
  std::string LogIn() {
    std::string first = Get("");
    return PostForm(FormAction(first), "username=bob&password=secret&submit=Login&login=y");
  }

  // The rows of Items as text, "heading|date|hour|time|urgent|complete|owner", in key order.
  std::vector<std::string> StoredItems() {
    std::vector<std::string> rows;
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT * FROM Items ORDER BY ItemID"), connection_);
    for (; !rs.Eof(); rs.MoveNext()) {
      rows.push_back(
          CStr(rs.Fields("Heading").Value()) + "|" + CStr(rs.Fields("DateStamp").Value()) + "|" +
          CStr(rs.Fields("TimeStamp").Value()) + "|" + CStr(rs.Fields("TimeText").Value()) + "|" +
          (CBool(rs.Fields("Urgent").Value()) ? "urgent" : "-") + "|" +
          (CBool(rs.Fields("Complete").Value()) ? "complete" : "-") + "|" +
          (CStr(rs.Fields("OwnerKey").Value()) == bob_ ? "bob" : "other"));
    }
    return rows;
  }

  // The four views of the date `page` shows, through its tabs.
  struct Views {
    std::string month, week, day;
  };
  Views ViewsFrom(const std::string& page) {
    return {Get(LinkTitled(page, "Display MonthView")), Get(LinkTitled(page, "Display WeekView")),
            Get(LinkTitled(page, "Display DayView"))};
  }

  testing::SeededDatabase database_;
  std::string bob_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
  ado::Connection connection_;
};

TEST_F(ItemsOverHttp, AddEditAndDeleteShowInEveryView) {
  ASSERT_NE(port_, 0) << server_->Log();
  std::string month = LogIn();
  ASSERT_NE(month.find("<!-- MonthView  Start -->"), std::string::npos) << month;

  // Add: the form from the header's button, posted with the boxes a browser sends.
  std::string form = Get(LinkTitled(month, "Add New Item"));
  ASSERT_NE(form.find("&nbsp;<b>Add Item to Schedule.</b>"), std::string::npos);
  // The form leaves the frame's height to the host, which gives it the form screens' height.
  EXPECT_NE(form.find("width=620 height=545 cellpadding=0 cellspacing=0 border=0>"),
            std::string::npos);
  EXPECT_EQ(form.find("<height></height>"), std::string::npos);
  EXPECT_EQ(SelectedValue(form), bob_);
  std::string action = FormAction(form);
  EXPECT_EQ(LinkFields(action, true).at(1), "4/0");
  std::string added = PostForm(action, "ownerkey=" + SelectedValue(form) +
                                           "&datestamp=11%2F25%2F2026&timestamp=10&timetext=30"
                                           "&heading=Harbour&description=Bring+the+charts"
                                           "&urgent=on&submit=Add&action=a");
  EXPECT_EQ(StoredItems(), std::vector<std::string>{"Harbour|11/25/2026|10|10:30|urgent|-|bob"});

  // Back in the month view, and in the week, day and time views.
  ASSERT_NE(added.find("<!-- MonthView  Start -->"), std::string::npos);
  const std::string added_title = "10:30 - Harbour (BB) ! ";
  EXPECT_NE(added.find("title=\"" + added_title + "\">Harbour</a>"), std::string::npos);
  Views views = ViewsFrom(added);
  EXPECT_NE(views.week.find(">10:30 - Harbour (BB)</a>"), std::string::npos);
  EXPECT_NE(views.day.find(">10:30 - Harbour (BB)</a>"), std::string::npos);
  std::string time = Get(LinkTitled(views.day, added_title));
  ASSERT_NE(time.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(time.find("<td class=text width=375 align=left >Harbour</td>"), std::string::npos);
  EXPECT_NE(time.find("<td class=text align=left colspan=4 >Bring the charts</td>"),
            std::string::npos);

  // Edit: the time view's [Edit], the form filled in, posted with other values.
  std::string edit_form = Get(LinkTitled(time, "Edit this Item"));
  ASSERT_NE(edit_form.find("&nbsp;<b>Edit Scheduled Item.</b>"), std::string::npos);
  EXPECT_NE(edit_form.find("name=heading size=50 maxlength=50 value=\"Harbour\" >"),
            std::string::npos);
  EXPECT_NE(edit_form.find("<option selected class=text value=10 >10</option>"), std::string::npos);
  EXPECT_NE(edit_form.find("<option selected class=text value=30 >30</option>"), std::string::npos);
  EXPECT_NE(edit_form.find("name=urgent checked >"), std::string::npos);
  std::string updated =
      PostForm(FormAction(edit_form), "ownerkey=" + SelectedValue(edit_form) +
                                          "&datestamp=11%2F25%2F2026&timestamp=11&timetext=45"
                                          "&heading=Harbour+moved&description=Bring+the+charts"
                                          "&complete=on&submit=Update&action=u");
  EXPECT_EQ(StoredItems(),
            std::vector<std::string>{"Harbour moved|11/25/2026|11|11:45|-|complete|bob"});

  // The time view of the new hour, then the other views.
  ASSERT_NE(updated.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(updated.find(">Harbour moved</font></td>"), std::string::npos);
  EXPECT_NE(updated.find(">11:45</font></td>"), std::string::npos);
  views = ViewsFrom(updated);
  const std::string updated_title = "title=\"11:45 - Harbour moved (BB)\">";
  EXPECT_NE(views.month.find(updated_title), std::string::npos);
  EXPECT_EQ(views.month.find("Harbour (BB)"), std::string::npos);
  EXPECT_NE(views.week.find(updated_title), std::string::npos);
  EXPECT_NE(views.day.find(updated_title), std::string::npos);

  // Delete: the time view's [Delete]; the item is gone from the table and every view.
  std::string after_delete = Get(LinkTitled(updated, "Delete this Item"));
  EXPECT_TRUE(StoredItems().empty());
  ASSERT_NE(after_delete.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(after_delete.find("No Items Showing For This Hour."), std::string::npos);
  views = ViewsFrom(after_delete);
  for (const std::string* view : {&views.month, &views.week, &views.day}) {
    EXPECT_NE(view->find("<b>User:</b> bob"), std::string::npos);
    EXPECT_EQ(view->find("Harbour"), std::string::npos);
  }
}

TEST_F(ItemsOverHttp, RefusedDateComesBackAsTheFormWithTheTypedValues) {
  ASSERT_NE(port_, 0) << server_->Log();
  std::string form = Get(LinkTitled(LogIn(), "Add New Item"));
  std::string again =
      PostForm(FormAction(form), "ownerkey=" + SelectedValue(form) +
                                     "&datestamp=31%2F31%2F2026&timestamp=07&timetext=15"
                                     "&heading=%3Cb%3EStorm%3C%2Fb%3E&description=&submit=Add"
                                     "&action=a");
  EXPECT_TRUE(StoredItems().empty());
  EXPECT_NE(again.find("<font color=#b22222><b>You have entered an invalid date, please choose "
                       "another date.</b></font><br><br>"),
            std::string::npos);
  EXPECT_NE(again.find("value=\"&lt;b&gt;Storm&lt;/b&gt;\""), std::string::npos);
  EXPECT_NE(again.find("<option selected class=text value=07 >07</option>"), std::string::npos);

  // Posted again with a good date, it is added.
  PostForm(FormAction(again), "ownerkey=" + SelectedValue(again) +
                                  "&datestamp=11%2F22%2F2026&timestamp=07&timetext=15"
                                  "&heading=Storm&description=&submit=Add&action=a");
  EXPECT_EQ(StoredItems(), std::vector<std::string>{"Storm|11/22/2026|7|07:15|-|-|bob"});
}

}  // namespace
}  // namespace tidewell
