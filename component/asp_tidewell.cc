#include "component/asp_tidewell.h"

#include "component/page_driver.h"
#include "runtime/automation_error.h"

namespace tidewell {

namespace {
// E_POINTER: what the object model answered when the context had no such object.
constexpr long kNoObject = -2147467261;
}  // namespace

ASPTidewell::ASPTidewell() {
  ResetPropertyDefaults(page_.props);
}

void ASPTidewell::OnStartPage(const ScriptingContext& context) {
  context_ = &context;
  if (context.Request == nullptr || context.Response == nullptr) {
    throw AutomationError(kNoObject, "The scripting context holds no Request or Response object");
  }
  page_.request = context.Request;
  page_.response = context.Response;
  ResetPropertyDefaults(page_.props);
}

void ASPTidewell::OnEndPage() {
  page_.request = nullptr;
  page_.response = nullptr;
  context_ = nullptr;
}

std::string ASPTidewell::AutoLogin(std::string user_name, std::string password, bool read_only) {
  page_.AutoLoginUserName = std::move(user_name);
  page_.AutoLoginPassword = std::move(password);
  page_.AutoLoginReadOnly = read_only;
  page_.AutoLoginEnabled = true;
  return "";
}

std::string ASPTidewell::ViewSource() {
  page_.ViewSourceMode = true;
  Show();
  return page_.PageBuffer;
}

Variant ASPTidewell::Show() {
  RunPageDriver(page_);
  return Variant();
}

Variant ASPTidewell::RunWithinCOM(const AspRequest* request, AspResponse* response) {
  page_.request = request;
  page_.response = response;
  return Variant();
}

}  // namespace tidewell
