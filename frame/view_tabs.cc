#include "frame/view_tabs.h"

#include <string>

#include "page/page.h"
#include "page/screen_links.h"

namespace tidewell {
namespace {

// A tab opens its view stepping on, so the week view seen from a tab starts as from the month
// it lies in.
struct Tab {
  long screen;
  const char* name;
};
constexpr Tab kMonth{screens::kMonthView, "MonthView"};
constexpr Tab kWeek{screens::kWeekView, "WeekView"};
constexpr Tab kDay{screens::kDayView, "DayView"};
constexpr Tab kTime{screens::kTimeView, "TimeView"};

// The image texts of the edge cells.
constexpr const char* kLeftSelected = "tb_left_sel.gif width=5 height=21 border=0></td>";
constexpr const char* kLeftAfterSelected = "tb_left_sns.gif width=5 height=21 border=0></td>";
constexpr const char* kLeft = "tb_left_ns.gif width=5 height=21 border=0></td>";
constexpr const char* kRightSelected = "tb_right_sel.gif width=5 height=21 border=0></td>";
constexpr const char* kRight = "tb_right.gif width=5 height=21 border=0></td>";
constexpr const char* kRightSelectedClosingStrip =
    "tb_right_sel.gif width=5 height=21 border=0></td></tr></table>";
constexpr const char* kRightClosingStrip =
    "tb_right.gif width=5 height=21 border=0></td></tr></table>";

// The month strip's selected link has two blanks after "<a"; an unselected TimeView tab has
// no blank in its inner table tag.
enum class Spacing { kUsual, kMonthStrip, kTimeTab };

std::string TabLink(const Page& page, const Tab& tab) {
  return LinkTo(page, ScreenSteppingTo(tab.screen, Step::kOn),
                {.hour = page.props.DefaultStartHour});
}

// " title="Display MonthView" >&nbsp;MonthView&nbsp;</a></td>"
std::string LinkEnd(const Tab& tab) {
  return " title=\"Display " + std::string(tab.name) + "\" >&nbsp;" + tab.name + "&nbsp;</a></td>";
}

void AppendEdge(Page& page, const char* image) {
  page.PageBuffer += "<td align=left width=5 height=21><img src=" + page.props.ImagePath + image;
}

void AppendSelectedTab(Page& page, const Tab& tab, const char* right_edge,
                       Spacing spacing = Spacing::kUsual) {
  std::string& out = page.PageBuffer;
  AppendEdge(page, kLeftSelected);
  out += "<td align=left height=21 class=tabs bgcolor=" + page.props.TidewellColor;
  out += spacing == Spacing::kMonthStrip ? " nowrap><a  class=tabs href="
                                         : " nowrap><a class=tabs href=";
  out += TabLink(page, tab) + LinkEnd(tab);
  AppendEdge(page, right_edge);
}

// An unselected tab's body: the link on the tab colour over a two-pixel white line.
void AppendUnselectedTab(Page& page, const Tab& tab, const char* left_edge, const char* right_edge,
                         Spacing spacing = Spacing::kUsual) {
  std::string& out = page.PageBuffer;
  AppendEdge(page, left_edge);
  out += spacing == Spacing::kTimeTab
             ? "<td align=left height=21 bgcolor=#4F6F93 nowrap><table width=100% cellpadding=0 "
               "cellspacing=0 border=0>"
             : "<td align=left height=21 bgcolor=#4F6F93 nowrap><table width=100% cellpadding=0 "
               "cellspacing=0 border=0 >";
  out += "<tr bgcolor=#4F6F93><td align=left height=19 class=tabs nowrap><a class=tabs href=";
  out += TabLink(page, tab) + LinkEnd(tab) + "</tr>";
  out += "<tr bgcolor=#ffffff><td align=left height=2 nowrap><img src=" + page.props.ImagePath +
         "tb_space.gif width=1 height=1 border=0></td></tr></table></td>";
  AppendEdge(page, right_edge);
}

void AppendStripOpening(Page& page) {
  page.PageBuffer += "<!-- tabs start -->";
  page.PageBuffer +=
      "<table align=center valign=top width=620 cellpadding=0 cellspacing=0 border=0><tr>";
  page.PageBuffer += "<td align=left><table width=100% cellpadding=0 cellspacing=0 border=0><tr>";
}

void AppendFiller(Page& page) {
  page.PageBuffer += page.BrowserKind == browsers::kNavigator
                         ? "<td class=text align=right height=21 valign=middle width=365>"
                         : "<td class=text align=right height=21 valign=middle width=100%>";
  page.PageBuffer += "</td></tr></table>";
  page.PageBuffer += "<!-- tabs end -->";
}

}  // namespace

void AppendMonthTabs(Page& page) {
  page.PageBuffer += "<!-- Tabs Start -->";
  page.PageBuffer +=
      "<table align=center valign=top width=620 cellpadding=0 cellspacing=0 border=0 ><tr>";
  page.PageBuffer += "<td align=left><table width=100% cellpadding=0 cellspacing=0 border=0 ><tr>";
  AppendSelectedTab(page, kMonth, kRightSelected, Spacing::kMonthStrip);
  AppendUnselectedTab(page, kWeek, kLeftAfterSelected, kRight);
  AppendUnselectedTab(page, kDay, kLeft, kRightClosingStrip);
  AppendUnselectedTab(page, kTime, kLeft, kRight, Spacing::kTimeTab);
  AppendFiller(page);
}

void AppendWeekTabs(Page& page) {
  AppendStripOpening(page);
  AppendUnselectedTab(page, kMonth, kLeft, kRight);
  AppendSelectedTab(page, kWeek, kRightSelected);
  AppendUnselectedTab(page, kDay, kLeftAfterSelected, kRightClosingStrip);
  AppendUnselectedTab(page, kTime, kLeft, kRight, Spacing::kTimeTab);
  AppendFiller(page);
}

void AppendDayTabs(Page& page) {
  AppendStripOpening(page);
  AppendUnselectedTab(page, kMonth, kLeft, kRight);
  AppendUnselectedTab(page, kWeek, kLeft, kRight);
  AppendSelectedTab(page, kDay, kRightSelectedClosingStrip);
  AppendUnselectedTab(page, kTime, kLeft, kRight, Spacing::kTimeTab);
  AppendFiller(page);
}

void AppendTimeTabs(Page& page) {
  AppendStripOpening(page);
  AppendUnselectedTab(page, kMonth, kLeft, kRight);
  AppendUnselectedTab(page, kWeek, kLeft, kRight);
  AppendUnselectedTab(page, kDay, kLeft, kRight);
  AppendSelectedTab(page, kTime, kRightSelectedClosingStrip);
  AppendFiller(page);
}

}  // namespace tidewell
