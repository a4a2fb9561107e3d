#include "host/access_log.h"

#include <gtest/gtest.h>

#include "host/password_masking.h"

namespace tidewell {
namespace {

AccessRecord MonthView() {
  AccessRecord record;
  record.time = "2026-11-21 09:30:00";
  record.remote = "127.0.0.1";
  record.method = "GET";
  record.path = "/";
  record.version = "HTTP/1.1";
  record.status = 200;
  record.bytes = 5120;
  record.screen = "0";
  record.statements = "3";
  record.duration_ms = 4.25;
  return record;
}

TEST(AccessLog, TextLineKeepsItsWords) {
  EXPECT_EQ(AccessLine(MonthView(), LogFormat::kText),
            "2026-11-21 09:30:00 127.0.0.1 \"GET / HTTP/1.1\" 200 5120 screen=0 statements=3 "
            "4.2ms\n");
}

TEST(AccessLog, JsonLineHasEveryFieldWithNumbersAsNumbers) {
  EXPECT_EQ(AccessLine(MonthView(), LogFormat::kJson),
            "{\"time\":\"2026-11-21 09:30:00\",\"remote\":\"127.0.0.1\",\"method\":\"GET\","
            "\"path\":\"/\",\"status\":200,\"bytes\":5120,\"screen\":\"0\",\"statements\":3,"
            "\"duration_ms\":4.2}\n");
  AccessRecord file = MonthView();
  file.screen = "-";
  file.statements = "-";
  EXPECT_NE(AccessLine(file, LogFormat::kJson).find("\"screen\":\"-\",\"statements\":null,"),
            std::string::npos);
}

TEST(AccessLog, JsonEscapesQuotesBackslashesControlsAndBadUtf8) {
  EXPECT_EQ(JsonEscaped("a\"b\\c\nd\x01"), "a\\\"b\\\\c\\u000ad\\u0001");
  EXPECT_EQ(JsonEscaped("caf\xc3\xa9"), "caf\xc3\xa9");           // valid UTF-8 stays
  EXPECT_EQ(JsonEscaped("x\xff\xc3"), "x\\ufffd\\ufffd");         // a stray and a cut one
  EXPECT_EQ(JsonEscaped("\xed\xa0\x80"), "\\ufffd\\ufffd\\ufffd");  // a surrogate
  EXPECT_EQ(JsonEscaped(std::string(300, 'a')), std::string(256, 'a') + "...");
}

TEST(AccessLog, AJsonLineCannotBeSplitByThePath) {
  AccessRecord record = MonthView();
  record.path = "/x\n{\"forged\":1}";
  std::string line = AccessLine(record, LogFormat::kJson);
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_NE(line.find("\"path\":\"/x\\u000a{\\\"forged\\\":1}\""), std::string::npos) << line;
}

TEST(ReadinessReason, NeverQuotesTheConnectionStringsPassword) {
  EXPECT_EQ(WithoutPasswords("auth failed for hunter2 at host",
                             "Provider=PostgreSQL;host=h;Password=hunter2"),
            "auth failed for *** at host");
  EXPECT_EQ(WithoutPasswords("no pw9 here", "Provider=PostgreSQL;Pwd=pw9"), "no *** here");
  EXPECT_EQ(WithoutPasswords("postgresql://u:s3cret@h/db refused",
                             "Provider=PostgreSQL;postgresql://u:s3cret@h/db"),
            "postgresql://u:***@h/db refused");
}

}  // namespace
}  // namespace tidewell

namespace tidewell {
namespace {

TEST(AccessLog, AFeedAddressShowsNoToken) {
  EXPECT_EQ(LoggedPath("/feed/0123456789abcdef0123456789abcdef.ics"), "/feed/...");
  EXPECT_EQ(LoggedPath("/cal/feed/anything/else"), "/cal/feed/...");
  EXPECT_EQ(LoggedPath("/feed/"), "/feed/");
  EXPECT_EQ(LoggedPath("/"), "/");
  EXPECT_EQ(LoggedPath("/feeder/x"), "/feeder/x");
}

}  // namespace
}  // namespace tidewell
