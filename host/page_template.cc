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

std::string FillPageTemplate(std::string_view page_template, std::string component_output) {
  size_t at = page_template.find(kComponentMarker);
  if (at == std::string_view::npos) return component_output;
  // The template's few hundred bytes go around the output in its own buffer, which has room to
  // spare after a view: the page moves along once there rather than into a new string.
  component_output.insert(0, page_template.substr(0, at));
  component_output += page_template.substr(at + kComponentMarker.size());
  return component_output;
}

}  // namespace tidewell
