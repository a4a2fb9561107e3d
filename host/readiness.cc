#include "host/readiness.h"

#include <memory>
#include <thread>
#include <vector>

#include "data/connection.h"
#include "data/database_error.h"
#include "data/statement.h"
#include "host/password_masking.h"

namespace tidewell {
namespace {

Readiness AskDatabase(const std::string& connection_string) {
  try {
    ado::Connection connection;
    connection.Open(connection_string);
    connection.Execute(ado::Statement("SELECT 1"));
    connection.Close();
    return {true, ""};
  } catch (const ado::DatabaseError& error) {
    return {false, "the database refused: " +
                       WithoutPasswords(error.description(), connection_string) + "\n"};
  } catch (const std::exception& error) {
    return {false, "the database check failed: " +
                       WithoutPasswords(error.what(), connection_string) + "\n"};
  }
}

}  // namespace

ReadinessCheck::ReadinessCheck(std::string connection_string, std::chrono::milliseconds bound)
    : connection_string_(std::move(connection_string)), bound_(bound) {}

Readiness ReadinessCheck::Check() {
  std::shared_future<Readiness> check;
  {
    std::lock_guard lock(mutex_);
    const bool idle = !running_.valid() ||
                      running_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    if (idle) {
      auto promise = std::make_shared<std::promise<Readiness>>();
      running_ = promise->get_future().share();
      std::thread([promise, connection_string = connection_string_] {
        promise->set_value(AskDatabase(connection_string));
      }).detach();
    }
    check = running_;
  }
  if (check.wait_for(bound_) != std::future_status::ready) {
    return {false, "the database did not answer within " +
                       std::to_string(bound_.count()) + " ms\n"};
  }
  return check.get();
}

}  // namespace tidewell
