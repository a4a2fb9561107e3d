// The real binary on a database of another schema version, on both engines: serve refuses to
// start on an older or a newer one, migrate brings an older one up to date (once), and the
// migrated database is served with its accounts and items.

#include <gtest/gtest.h>

#include <fstream>

#include "data/connection.h"
#include "data/statement.h"
#include "tests/data/engines.h"
#include "tests/data/version_one_schema.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::CommandResult;
using testing::RunTidewell;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

template <class Engine>
class SchemaVersionServer : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_.Open(engine_.connection_string);
    config_ = folder_.path() + "/site.conf";
    std::ofstream(config_) << "Visible = True\nImagePath = images/\n"
                           << "ConnectionString = " << engine_.connection_string << "\n"
                           << "LinkSecret = schema-test-secret-0123456789\n"
                           << (Engine::kDialect == ASPDataServer::SQLServer ? "DataServer = 1\n" : "");
  }

  void Run(const char* statement) { connection_.Execute(ado::Statement(statement)); }

  // A site as a tidewell before versions left it: one account with its password as typed
  // (the server hashes it at start) and one item.
  void MakeVersionOneSite() {
    testing::RemakeAsVersionOne(connection_);
    Run("INSERT INTO Groups (GroupName) VALUES ('Crew')");
    Run("INSERT INTO Users (OwnerKey, Username, Password, Initials, DefaultView, Options, "
        "GroupID) VALUES ('k1', 'bob', 'secret', 'BB', 0, '0+8+0+0+0', 1)");
    Run("INSERT INTO Items (OwnerKey, DateStamp, TimeStamp, TimeText, Heading, Description) "
        "VALUES ('k1', '2026-11-24', 9, '09:00', 'Spring tide', '')");
    connection_.Close();
  }

  std::unique_ptr<ServerProcess> Serve() {
    return std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config_, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
  }

  // Starts serve and expects it to stop by itself, exit 1, before listening; its log.
  std::string ServeExpectingRefusal() {
    auto server = Serve();
    EXPECT_EQ(server->WaitForPort(), 0) << "it listened";
    EXPECT_EQ(server->Stop(SIGTERM), 1);
    return server->Log();
  }

  testing::TempFolder folder_;
  Engine engine_;
  ado::Connection connection_;
  std::string config_;
};

TYPED_TEST_SUITE(SchemaVersionServer, testing::Engines, testing::EngineNames);

TYPED_TEST(SchemaVersionServer, ServeRefusesAnOlderDatabaseAndNamesTheMigration) {
  this->MakeVersionOneSite();
  const std::string log = this->ServeExpectingRefusal();
  EXPECT_NE(log.find("tidewell serve: the database has schema version 1, this tidewell needs 5: "
                     "run `tidewell migrate --config " +
                     this->config_ + "`\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(log.find("serving http"), std::string::npos) << log;
}

TYPED_TEST(SchemaVersionServer, ServeAndRenderRefuseADatabaseANewerTidewellUpgraded) {
  this->Run("UPDATE TidewellSettings SET Value = '6' WHERE Name = 'SchemaVersion'");
  const std::string log = this->ServeExpectingRefusal();
  EXPECT_NE(log.find("tidewell serve: the database was upgraded by a newer tidewell (version 6); "
                     "this one knows up to 5: run the newer tidewell\n"),
            std::string::npos)
      << log;
  CommandResult render = RunTidewell("render --config " + this->config_);
  EXPECT_EQ(render.status, 1);
  EXPECT_NE(render.out.find("upgraded by a newer tidewell (version 6)"), std::string::npos)
      << render.out;
}

TYPED_TEST(SchemaVersionServer, MigrateOnceThenTheSiteIsServedWithItsAccountsAndItems) {
  this->MakeVersionOneSite();
  CommandResult migrate = RunTidewell("migrate --config " + this->config_);
  EXPECT_EQ(migrate.status, 0) << migrate.out;
  EXPECT_EQ(migrate.out,
            "tidewell migrate: schema version 1 → 2: the database records its schema version in "
            "TidewellSettings\n"
            "tidewell migrate: schema version 2 → 3: added TidewellFeedTokens (each account's "
            "private feed address) and TidewellImportedEvents (the events `tidewell import` "
            "made items of)\n"
            "tidewell migrate: schema version 3 → 4: the items' index on their owner also holds "
            "their date (Items_OwnerKey_DateStamp)\n"
            "tidewell migrate: schema version 4 → 5: on SQLite, the items' index on owner and "
            "date also holds what the day lists show (Items_OwnerKey_DateStamp_Lists)\n");
  CommandResult again = RunTidewell("migrate --config " + this->config_);
  EXPECT_EQ(again.status, 0) << again.out;
  EXPECT_EQ(again.out,
            "tidewell migrate: the database is at schema version 5 already; nothing to do\n");

  auto server = this->Serve();
  const int port = server->WaitForPort();
  ASSERT_NE(port, 0) << server->Log();
  const std::string month = testing::SiteClient(port).LogIn("bob", "secret");
  EXPECT_NE(month.find("<b>User:</b> bob"), std::string::npos) << month;
  EXPECT_NE(month.find("Spring tide"), std::string::npos);
  EXPECT_EQ(server->Stop(SIGTERM), 0) << server->Log();
}

}  // namespace
}  // namespace tidewell
