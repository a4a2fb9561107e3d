#include "frame/navigation_bar.h"

#include <string>

#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

// One step link: the same screen on `target`, stepping back or on.
void AppendStep(Page& page, const char* title, Step step, Date target,
                const char* image) {
  std::string link = LinkTo(page, ScreenSteppingTo(page.Screen, step), {.date = target});
  page.PageBuffer += "<a title=\"" + std::string(title) + "\" href=" + link +
                     " ><img src=" + page.props.ImagePath + image;
}

void AppendBannerRow(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<tr bgcolor=#ffffff>";
  out += "<td bgcolor=#ffffff class=text><img src=" + page.props.ImagePath +
         "icon_topright.gif valign=absmiddle width=24 height=20 border=0 ></td>";
  out += "<td bgcolor=#ffffff class=text align=right valign=middle width=100% height=20>" +
         page.UserBanner + "</td>";
  out += "</tr>";
}

void AppendMonthRow(Page& page) {
  const Date date = page.CurrentDate;
  std::string& out = page.PageBuffer;
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  out += "<td colspan=2 align=right valign=bottom width=100% height=30>";
  out += "<table align=right width=90% height=30 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr>";
  out += "<td align=center valign=bottom width=85 >";
  AppendStep(page, "Previous Year", Step::kBack, DateAdd("yyyy", -1, date),
             "nav_prev_year.gif width=40 height=25 align=absmiddle border=0></a>");
  AppendStep(page, "Previous Month", Step::kBack, DateAdd("m", -1, date),
             "nav_prev_month.gif width=40 height=25 align=absmiddle border=0></a>");
  out += "</td><td class=mwdname align=center valign=bottom >";
  out += "<b>" + MonthName(Month(date)) + " " + std::to_string(Year(date)) + "</b>";
  out += "</td><td align=center valign=bottom width=85 >";
  AppendStep(page, "Next Month", Step::kOn, DateAdd("m", 1, date),
             "nav_next_month.gif width=40 height=25 align=absmiddle border=0></a>");
  AppendStep(page, "Next Year", Step::kOn, DateAdd("yyyy", 1, date),
             "nav_next_year.gif width=40 height=25 align=absmiddle border=0></a>&nbsp;");
  out += "</td>";
  out += "</tr>";
  out += "</table>";
}

// Explorer draws a rule; the others a line image, always from "images/" whatever ImagePath
// says, as the header has always named it.
void AppendSeparatorRow(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<tr>";
  if (page.BrowserKind == browsers::kExplorer) {
    out += "<td colspan=2><hr size=1 width=98% color=#ffffff></td>";
  } else {
    out += "<td bgcolor=" + page.props.TidewellColor +
           " height=15 valign=middle align=center colspan=2>"
           "<img src=images/nav_line.gif width=600 height=1 border=0 align=absbottom></td>";
  }
  out += "</tr>";
}

}  // namespace

void AppendNavigationBar(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- Navigation Section Start -->";
  out += "<td align=right width=341 nowrap>";
  out += "<table align=center width=100% height=50 cellpadding=0 cellspacing=0 border=0>";
  AppendBannerRow(page);
  AppendMonthRow(page);
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "</td>";
  out += "<!-- Navigation Section End -->";
  AppendSeparatorRow(page);
  out += "</table>";
  out += "<!-- Header Section End -->";
}

}  // namespace tidewell
