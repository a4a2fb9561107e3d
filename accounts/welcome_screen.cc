#include "accounts/welcome_screen.h"

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"

namespace tidewell {
namespace {

// The body's frame: a margin column and the text column with its centred table, which has
// no row tag of its own here.
void AppendBodyFrame(Page& page) {
  std::string& out = page.PageBuffer;
  AppendBodyTable(page);
  out += "<tr bgcolor=#ffffff>";
  out += "<td class=dtname align=center valign=top width=50 height=456 nowrap >&nbsp;</td>";
  out += "<td class=text align=left valign=top width=560 height=456>";
  out += "<table align=center valign=middle width=50% height=456 border=0 >";
  out += "<td class=text align=left valign=middle >";
}

void AppendNextForm(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<form action=" +
         LinkTo(page, page.Screen) +
         " method=post name=addmodify>";
  out += "<input type=submit class=text value=Next name=submit>";
  out += "<input type=hidden class=text value=y name=welcome>";
  out += "</form>";
}

}  // namespace

void WelcomeScreen(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- WelcomeScreen  Start -->";
  AppendTitleBar(page, "Welcome to Hollowfen Tidewell.", TitleCell::kPlain);
  AppendBodyFrame(page);
  AppendLogo(page);
  out +=
      "An administration account does not exist. To create an administration account and "
      "start adding users, please click the Next button.";
  AppendNextForm(page);
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "<!-- WelcomeScreen End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/555, /*navigator=*/555, /*opera=*/557));
}

}  // namespace tidewell
