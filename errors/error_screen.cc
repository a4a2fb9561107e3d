#include "errors/error_screen.h"

#include <string>

#include "frame/markup.h"
#include "page/page.h"

namespace tidewell {
namespace {

constexpr const char* kAdviceHeading =
    "<span class=help><br><br><b><u>Possible Solutions</u></b><br><br>";

// kCannotConnect: the connection could not be made; the three ways of writing a connection string.
void AppendConnectionStringAdvice(std::string& out) {
  out += kAdviceHeading;
  out +=
      "<font color=#006400 >This error indicates that the ConnectionString Property is not set "
      "correctly. If you are using an ODBC Data Source Name (DSN) then use:</font><br><br>";
  out += "Tidewell.ConnectionString = &quot;DSN=Tidewell&quot;<br><br>";
  out +=
      "<font color=#006400 >If you are using a Microsoft Access Database without a DSN then "
      "use:</font><br><br>";
  out += "Tidewell.ConnectionString = _<br>";
  out += "&quot;Provider=Microsoft.Jet.OLEDB.4.0;&quot; & _<br>";
  out += "&quot;Data Source=C:\\Inetpub\\wwwRoot\\Tidewell\\Data\\&quot; & _<br>";
  out += "&quot;tidewell102.mdb;&quot;<br><br>";
  out +=
      "<font color=#006400 >If you are using a Microsoft SQL Server without a DSN then "
      "use:</font><br><br>";
  out += "&quot;Provider=SQLOLEDB.1;Extended Properties=&quot; & _<br>";
  out += "&quot;'UID=;Password=;WSID=MySQLServerName;&quot; & _<br>";
  out += "&quot;DATABASE=Tidewell;Trusted_Connection=Yes'&quot;</span>";
}

// kDatabaseRefused: the database was found but could not be opened or written; the
// permissions it needs.
void AppendPermissionAdvice(std::string& out) {
  out += kAdviceHeading;
  out += "<b>Access Database:</b><br><br>";
  out +=
      "<font color=#006400 >This error indicates that the database could not be opened. Give "
      "'Everyone' Full Control permissions on the file tidewell102.mdb. If the error remains, "
      "give 'Everyone' Full Control permissions on the folder that holds "
      "tidewell102.mdb.</font><br><br>";
  out +=
      "<font color=#006400 >Also check that the path in Tidewell.ConnectionString matches the "
      "location of the file.</font><br><br>";
  out += "<b>SQL Server Database:</b><br><br>";
  out +=
      "<font color=#006400 >The user IUSR_MachineName must be a user of the database with "
      "select, insert, update and delete permissions on each table.</font>";
  out += "</span>";
}

// kDataRead: a statement failed while a screen's data was read; usually the wrong dialect.
void AppendDataServerAdvice(std::string& out) {
  out += kAdviceHeading;
  out +=
      "<font color=#006400 >This error indicates that the DataServer Property is not set to "
      "the correct database you are using. If you are using an Microsoft Access Database then "
      "use:</font><br><br>";
  out += "Tidewell.DataServer = 0<br><br>";
  out += "<font color=#006400 >If you are using a Microsoft SQL Server then use:</font><br><br>";
  out += "Tidewell.DataServer = 1<br><br>";
  out +=
      "<font color=#006400 >If you are using another ODBC Database, please try setting the "
      "DataSource Property to a different setting than what it is currently:</font><br><br>";
  out += "Tidewell.DataServer = 0<br>";
  out += "-OR-<br>";
  out += "Tidewell.DataServer = 1</span>";
}

void AppendAdvice(ErrorKind kind, std::string& out) {
  switch (kind) {
    case ErrorKind::kCannotConnect:
      AppendConnectionStringAdvice(out);
      break;
    case ErrorKind::kDatabaseRefused:
      AppendPermissionAdvice(out);
      break;
    case ErrorKind::kDataRead:
      AppendDataServerAdvice(out);
      break;
    default:
      break;  // the other kinds show their text alone
  }
}

}  // namespace

void ErrorScreen(Page& page) {
  std::string& out = page.PageBuffer;
  const std::string& color = page.props.TidewellColor;
  out += "<!-- ErrorScreen Start -->";
  out += "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr bgcolor=" + color + ">";
  out += "<td align=center valign=middle width=60>&nbsp;</td>";
  out +=
      "<td class=mwdname align=left valign=middle width=550>&nbsp;<b>Error Information.</b></td>";
  out += "</tr></table>";
  AppendBodyTable(page);
  out += "<tr bgcolor=#ffffff>";
  out += "<td class=dtname align=center valign=top width=50 height=456 nowrap>&nbsp;</td>";
  out += "<td class=text align=left valign=top width=560 height=456>";
  out += "<table align=center valign=top width=100% border=0 >";
  out += "<tr><td class=text align=left valign=top >";
  out += page.Error.Text;
  AppendAdvice(page.Error.Kind, out);
  out += "</td></tr></table>";
  out += "</td></tr></table>";
  out += "<!-- ErrorScreen End -->";
}

}  // namespace tidewell
