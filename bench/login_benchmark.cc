// How long a login takes to refuse: a wrong password for an account, and a name that has no
// account. The two must cost the same, or the answer's timing tells which names exist. Each
// iteration is a whole request through Show on the embedded database, posted from a new
// address and for a name of its own (a count in it), so the throttle never refuses one before
// its password is checked.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "accounts/password_hash.h"
#include "component/asp_tidewell.h"
#include "data/schema.h"
#include "data/session.h"
#include "page/asp_objects.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

class LoginSite {
 public:
  LoginSite() : connection_string_("Provider=SQLite;Data Source=" + folder_.path() + "/cal.db") {
    CreateSchema(connection_string_);
    testing::Seeder data(connection_string_, testing::PasswordHashing::kOncePerProcess);
    const long crew = data.AddGroup("Crew");
    data.AddUser({.name = "admin", .group = crew, .administrator = true, .initials = "AD"});
    for (int i = 0; i < 1000; ++i)
      data.AddUser({.name = "user" + std::to_string(i), .group = crew, .initials = "U"});
  }
  ~LoginSite() { ado::ClosePooledSessions(); }

  // The login form posted for `name` with a wrong password; answers whether it was refused.
  bool Refused(const std::string& name, long count) const {
    AspRequest request;
    request.ServerVariables.Add("URL", "/default.asp");
    request.ServerVariables.Add("REMOTE_ADDR", "198.51.100." + std::to_string(count % 250));
    request.Form.Add("username", name);
    request.Form.Add("password", "wrong");
    request.Form.Add("login", "y");
    BufferedResponse response;
    ScriptingContext context{&request, &response};
    ASPTidewell component;
    component.OnStartPage(context);
    component.SetConnectionString(connection_string_);
    const std::string html = component.ViewSource();
    return html.find("is invalid.") != std::string::npos;
  }

 private:
  testing::TempFolder folder_;
  std::string connection_string_;
};

const LoginSite& Site() {
  static const LoginSite site;
  return site;
}

void BM_LoginWrongPassword(benchmark::State& state) {
  long count = 0;
  for (auto _ : state) {
    // A different account each time: five failures for one would be throttled.
    if (!Site().Refused("user" + std::to_string(count % 1000), count))
      state.SkipWithError("admitted");
    ++count;
  }
}
BENCHMARK(BM_LoginWrongPassword)->Unit(benchmark::kMillisecond)->MinTime(3);

void BM_LoginUnknownName(benchmark::State& state) {
  long count = 0;
  for (auto _ : state) {
    if (!Site().Refused("nobody" + std::to_string(count), count)) state.SkipWithError("admitted");
    ++count;
  }
}
BENCHMARK(BM_LoginUnknownName)->Unit(benchmark::kMillisecond)->MinTime(3);

}  // namespace
}  // namespace tidewell

BENCHMARK_MAIN();
