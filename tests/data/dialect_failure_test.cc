// A statement in the other engine's dialect fails on each engine, and the page then shows the
// error screen with the DataServer advice after what the screen had drawn.

#include <gtest/gtest.h>

#include "component/screen_dispatch.h"
#include "data/recordset.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using ado::Statement;

constexpr const char* kMonthStart = "<!-- MonthView  Start -->";

// Stands in for a calendar view until the views are built: it draws its opening, then reads
// one day's list the way the list builder does, with the dialect the page's DataServer
// names, and traps a failing read as the list builder must.
void MonthViewWithOneList(Page& page) {
  page.PageBuffer += kMonthStart;
  try {
    ado::Recordset rs;
    rs.Open(Statement(
                "SELECT TOP 6 ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete "
                "FROM Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ")
                .DateValue(DateSerial(2026, 11, 3), page.props.DataServer)
                .Add(" AND Items.OwnerKey = ")
                .Text("k1")
                .Add(" ORDER BY TimeStamp ASC"),
            *page.Connection, ado::adOpenStatic, ado::adLockReadOnly);
    for (; !rs.Eof(); rs.MoveNext()) page.PageBuffer += CStr(rs.Fields("Heading").Value());
    rs.Close();
  } catch (const ado::DatabaseError& error) {
    TrapListError(page, error);
  }
}

template <class Engine>
class WrongDialect : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
  }

  // Draws the month screen through the dispatcher, with the real error screen in its table.
  Page DrawMonth(ASPDataServer dialect) {
    Page page;
    page.props.ConnectionString = engine_.connection_string;
    page.props.DataServer = dialect;
    page.Screen = screens::kMonthView;
    OpenDatabase(page);
    EXPECT_FALSE(page.Error.Raised()) << page.Error.Text;
    ScreenTable table = Screens();
    table[screens::kMonthView] = MonthViewWithOneList;
    DispatchScreen(page, table);
    CloseDatabase(page);
    return page;
  }

  Engine engine_;
};

TYPED_TEST_SUITE(WrongDialect, testing::Engines, testing::EngineNames);

TYPED_TEST(WrongDialect, RightDialectDrawsTheListWithoutError) {
  Page page = this->DrawMonth(TypeParam::kDialect);
  EXPECT_FALSE(page.Error.Raised()) << page.Error.Text;
  EXPECT_EQ(page.PageBuffer, kMonthStart);
}

TYPED_TEST(WrongDialect, OtherDialectShowsTheDataServerAdviceAfterThePartDrawn) {
  Page page = this->DrawMonth(TypeParam::kOtherDialect);
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDataRead);
  EXPECT_EQ(page.Screen, screens::kErrorScreen);
  if (TypeParam::kDialect == ASPDataServer::Access) {
    // Jet's own words for a date column compared with quoted text.
    EXPECT_TRUE(testing::MatchesGolden(page.PageBuffer.substr(std::string(kMonthStart).size()),
                                       "error_screen_ds.html"));
  } else {
    EXPECT_EQ(
        page.Error.Text,
        "<font color=#b22222><b>The following error was presented while attempting to retrieve "
        "data.</b></font><br><br>Error Number: -2147217900<br>syntax error at or near "
        "&quot;#&quot;");
    std::string golden = testing::ReadGolden("error_screen_ds.html");
    std::string expected_text = page.Error.Text;
    size_t from = golden.find("<font color=#b22222>");
    size_t to = golden.find("<span class=help>");
    golden.replace(from, to - from, expected_text);
    EXPECT_EQ(page.PageBuffer, kMonthStart + golden);
  }
}

}  // namespace
}  // namespace tidewell
