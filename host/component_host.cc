#include "host/component_host.h"

#include "component/asp_tidewell.h"
#include "frame/markup.h"
#include "host/page_template.h"
#include "page/property_table.h"
#include "runtime/automation_error.h"

namespace tidewell {
namespace {

// OnStartPage, then the page's settings as its script would have made them.
void PrepareComponent(ASPTidewell& component, const ScriptingContext& context,
                      const PageConfig& page, const LinkSigning& signing,
                      const std::optional<std::string>& feed_address_start) {
  component.OnStartPage(context);
  component.SetLinkSigning(signing);
  component.SetFeedAddressStart(feed_address_start);
  for (const PropertySetting& setting : page.properties) {
    LetProperty(component.properties(), setting.name, setting.value);
  }
  if (page.auto_login) {
    component.AutoLogin(page.auto_login->user, page.auto_login->password,
                        page.auto_login->read_only);
  }
}

// The answer's page facts: what the access log and the metrics count.
HostAnswer WithPageFacts(HostAnswer answer, const Page& page) {
  answer.statements = page.StatementsRun;
  answer.error_kind = page.Error.Kind;
  answer.link_keys_refused = page.LinkKeysRefused;
  answer.login_refused = page.LoginRefused;
  return answer;
}

}  // namespace

std::string ServedPage(const PageConfig& page, std::string component_output) {
  return FillPageTemplate(page.page_template, SettleFrameHeight(std::move(component_output)));
}

HostAnswer RunComponent(const PageConfig& page, const LinkSigning& signing,
                        const AspRequest& request,
                        const std::optional<std::string>& feed_address_start) {
  BufferedResponse response;
  ScriptingContext context{&request, &response};
  ASPTidewell component;
  try {
    PrepareComponent(component, context, page, signing, feed_address_start);
    component.Show();
    component.OnEndPage();
  } catch (const AutomationError& e) {
    HostAnswer refused;
    refused.status = 400;
    refused.content_type = "text/plain; charset=utf-8";
    refused.body =
        "Bad request: run-time error " + std::to_string(e.number()) + ", " + e.what() + ".\n";
    return WithPageFacts(std::move(refused), component.page());
  }
  HostAnswer answer;
  answer.body = ServedPage(page, response.TakeBody());
  answer.screen = std::to_string(component.page().Screen);
  return WithPageFacts(std::move(answer), component.page());
}

std::string ViewComponentSource(const PageConfig& page, const LinkSigning& signing,
                                const AspRequest& request,
                                const std::optional<std::string>& feed_address_start) {
  BufferedResponse response;
  ScriptingContext context{&request, &response};
  ASPTidewell component;
  PrepareComponent(component, context, page, signing, feed_address_start);
  std::string html = component.ViewSource();
  component.OnEndPage();
  return html;
}

}  // namespace tidewell
