#include "host/metrics.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

TEST(Metrics, CountsRequestsByScreenAndStatusWithKnownLabelsOnly) {
  Metrics metrics;
  metrics.CountAnswer("0", 200, 0.003);
  metrics.CountAnswer("0", 200, 0.2);
  metrics.CountAnswer("-", 404, 0.001);
  metrics.CountAnswer("123456", 200, 0.001);  // a hand-written link's screen
  metrics.CountAnswer("6", 418, 20);
  std::string text = metrics.Exposition({});
  EXPECT_NE(text.find("tidewell_requests_total{screen=\"0\",status=\"200\"} 2\n"),
            std::string::npos) << text;
  EXPECT_NE(text.find("tidewell_requests_total{screen=\"-\",status=\"404\"} 1\n"),
            std::string::npos);
  EXPECT_NE(text.find("tidewell_requests_total{screen=\"other\",status=\"200\"} 1\n"),
            std::string::npos);
  EXPECT_NE(text.find("tidewell_requests_total{screen=\"6\",status=\"other\"} 1\n"),
            std::string::npos);
  EXPECT_EQ(text.find("123456"), std::string::npos);
}

TEST(Metrics, TheHistogramIsCumulativeAndCountsEveryAnswer) {
  Metrics metrics;
  metrics.CountAnswer("0", 200, 0.003);
  metrics.CountAnswer("0", 200, 0.2);
  metrics.CountAnswer("0", 200, 20);
  std::string text = metrics.Exposition({});
  EXPECT_NE(text.find("tidewell_request_duration_seconds_bucket{le=\"0.005\"} 1\n"),
            std::string::npos) << text;
  EXPECT_NE(text.find("tidewell_request_duration_seconds_bucket{le=\"0.25\"} 2\n"),
            std::string::npos);
  EXPECT_NE(text.find("tidewell_request_duration_seconds_bucket{le=\"10\"} 2\n"),
            std::string::npos);
  EXPECT_NE(text.find("tidewell_request_duration_seconds_bucket{le=\"+Inf\"} 3\n"),
            std::string::npos);
  EXPECT_NE(text.find("tidewell_request_duration_seconds_count 3\n"), std::string::npos);
  EXPECT_NE(text.find("tidewell_request_duration_seconds_sum 20.203\n"), std::string::npos);
}

TEST(Metrics, CountsWhatPagesSawAndThePools) {
  Metrics metrics;
  metrics.CountPage(3, ErrorKind::kNone, 0, LoginRefusal::kNone);
  metrics.CountPage(2, ErrorKind::kLoginRefused, 0, LoginRefusal::kCredentials);
  metrics.CountPage(0, ErrorKind::kDatabaseRefused, 2, LoginRefusal::kNone);
  metrics.CountPage(1, ErrorKind::kDataRead, 0, LoginRefusal::kThrottled);
  // A posted date that reads as no date is the visitor's error, not the database's.
  metrics.CountPage(0, ErrorKind::kInvalidDate, 0, LoginRefusal::kNone);
  metrics.CountEscapedDatabaseError();
  std::string text = metrics.Exposition({.in_use = 2, .idle = 5, .waiting = 1});
  for (const char* line :
       {"tidewell_statements_total 6\n", "tidewell_database_errors_total{kind=\"DP\"} 1\n",
        "tidewell_database_errors_total{kind=\"DS\"} 1\n",
        "tidewell_database_errors_total{kind=\"DB\"} 0\n",
        "tidewell_database_errors_total{kind=\"D\"} 1\n", "tidewell_link_keys_refused_total 2\n",
        "tidewell_logins_refused_total{reason=\"credentials\"} 1\n",
        "tidewell_logins_refused_total{reason=\"throttled\"} 1\n",
        "tidewell_pool_sessions_in_use 2\n", "tidewell_pool_sessions_idle 5\n",
        "tidewell_pool_requests_waiting 1\n",
        "# TYPE tidewell_request_duration_seconds histogram\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
  }
}

}  // namespace
}  // namespace tidewell
