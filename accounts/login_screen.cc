#include "accounts/login_screen.h"

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"

namespace tidewell {
namespace {

// The body's frame: a white margin column and the text column.
void AppendBodyFrame(Page& page) {
  std::string& out = page.PageBuffer;
  AppendBodyTable(page);
  out += "<tr bgcolor=#ffffff>";
  out +=
      "<td bgcolor=#ffffff class=dtname align=center valign=top width=50 height=456 "
      "nowrap>&nbsp;</td>";
  out += "<td class=text align=left valign=top width=560 height=456>";
}

void AppendLoginForm(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<form action=" +
         LinkTo(page, page.Screen) +
         " method=post name=addmodify onsubmit=\"return validator(this)\" >";
  out += "Username:<br>";
  out += "<input maxlength=15 type=text class=text name=username size=20 ><br>";
  out += "Password:<br>";
  out += "<input maxlength=15 type=password class=text name=password size=20 ><br><br>";
  out += "<input type=submit class=text value=Login name=submit>";
  out += "<input type=hidden class=text value=y name=login>";
  out += "</form>";
}

}  // namespace

void LoginScreen(Page& page) {
  std::string& out = page.PageBuffer;
  AppendValidator(page, {{"username", "Username"}, {"password", "Password"}});
  out += "<!-- LoginScreen  Start -->";
  AppendTitleBar(page, "Hollowfen Tidewell Login Screen.", TitleCell::kSpaced);
  AppendBodyFrame(page);
  out += "<table align=center valign=middle width=50% height=456 border=0 >";
  out += "<tr>";
  out += "<td class=text align=left valign=middle height=456>";
  AppendLogo(page);
  if (page.Error.Kind == ErrorKind::kLoginRefused) out += page.Error.Text;
  out += "Please login with a Username and Password.";
  if (page.BrowserKind == browsers::kNetscape) out += "<br>&nbsp;";
  AppendLoginForm(page);
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "<!-- LoginScreen End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/558, /*navigator=*/557, /*opera=*/561));
}

}  // namespace tidewell
