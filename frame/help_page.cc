#include "frame/help_page.h"

#include "frame/markup.h"
#include "page/page.h"

namespace tidewell {

void AppendHelpOpening(Page& page, std::string_view start_comment, std::string_view title) {
  std::string& out = page.PageBuffer;
  out += start_comment;
  AppendTitleBar(page, title, TitleCell::kPlain);
  AppendBodyTable(page);
  out += "<tr bgcolor=#ffffff>";
  out += "<td class=dtname align=center valign=top width=50 height=456 nowrap><img src=" +
         page.props.ImagePath + "icon_help.gif width=30 height=30 border=0 align=absmiddle ></td>";
  out += "<td class=text align=left valign=top width=560 height=456>";
  out += "<table align=center valign=top width=100% border=0 >";
  out += "<td class=help align=left valign=top >";
}

void AppendHelpEntry(Page& page, std::string_view heading, std::string_view explanation) {
  std::string& out = page.PageBuffer;
  out += "<b>";
  out += heading;
  out += "</b><br>";
  out += "<font color=#006400 >";
  out += explanation;
  out += "</font>";
}

void AppendHelpRule(Page& page) {
  page.PageBuffer += "<hr size=1 color=#c0c0c0 >";
}

void AppendHelpClosing(Page& page, std::string_view end_comment) {
  std::string& out = page.PageBuffer;
  for (int i = 0; i < 2; ++i) {
    out += "</td>";
    out += "</tr>";
    out += "</table>";
  }
  out += end_comment;
}

}  // namespace tidewell
