#include "frame/markup.h"

#include "component/page.h"

namespace tidewell {

std::string EscapeHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

void ReplaceHeight(Page& page, long height) {
  static constexpr std::string_view kPlaceholder = "<height></height>";
  const std::string value = std::to_string(height);
  std::string& out = page.PageBuffer;
  for (size_t at = out.find(kPlaceholder); at != std::string::npos;
       at = out.find(kPlaceholder, at + value.size())) {
    out.replace(at, kPlaceholder.size(), value);
  }
}

long ByBrowser(const Page& page, long standard, long navigator, long opera) {
  if (page.BrowserKind == browsers::kNavigator) return navigator;
  if (page.BrowserKind == browsers::kOpera) return opera;
  return standard;
}

void AppendTitleBar(Page& page, std::string_view title, TitleCell first_cell) {
  std::string& out = page.PageBuffer;
  out += "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  out += first_cell == TitleCell::kSpaced ? "<td align=center valign=middle width=60 >"
                                          : "<td align=center valign=middle width=60>";
  out += "&nbsp;";
  out += "</td>";
  out += "<td class=mwdname align=left valign=middle width=550>";
  out += "&nbsp;<b>";
  out += title;
  out += "</b>";
  out += "<td>";
  out += "</tr>";
  out += "</table>";
}

void AppendLogo(Page& page) {
  page.PageBuffer += "<img src=" + page.props.ImagePath +
                     "logo_tidewell.gif border=0 width=270 height=103 align=absmiddle ><hr "
                     "size=1 color=#c0c0c0 >";
}

void AppendValidator(Page& page, std::initializer_list<RequiredField> fields) {
  std::string& out = page.PageBuffer;
  auto line = [&out](std::string_view text) {
    out += text;
    out += "\r\n";
  };
  out += "\r\n";
  line("<script language=javascript>");
  line("<!--");
  line("function validator(theForm)");
  line("{");
  for (const RequiredField& field : fields) {
    line("if (theForm." + std::string(field.name) + ".value == \"\")");
    line("{");
    line("alert('Please enter a value in the " + std::string(field.label) + " field.');");
    line("theForm." + std::string(field.name) + ".focus();");
    line("return (false);");
    line("}");
  }
  line("return (true);");
  line("}");
  line("//-->");
  line("</script>");
}

}  // namespace tidewell
