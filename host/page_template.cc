#include "host/page_template.h"

namespace tidewell {

std::string DefaultPageTemplate() {
  return "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">\n"
         "<html>\n"
         "<head>\n"
         "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">\n"
         "<title>Tidewell</title>\n"
         "<link rel=\"stylesheet\" type=\"text/css\" href=\"tidewell.css\">\n"
         "<link rel=\"icon\" type=\"image/gif\" href=\"images/icon_tidewell.gif\">\n"
         "</head>\n"
         "<body>\n"
         "{{tidewell}}\n"
         "</body>\n"
         "</html>\n";
}

bool IsPageTemplate(std::string_view text) {
  size_t first = text.find(kComponentMarker);
  return first != std::string_view::npos &&
         text.find(kComponentMarker, first + 1) == std::string_view::npos;
}

std::string FillPageTemplate(std::string_view page_template, std::string_view component_output) {
  size_t at = page_template.find(kComponentMarker);
  if (at == std::string_view::npos) return std::string(component_output);
  std::string page;
  page.reserve(page_template.size() + component_output.size());
  page += page_template.substr(0, at);
  page += component_output;
  page += page_template.substr(at + kComponentMarker.size());
  return page;
}

}  // namespace tidewell
