#include "items/item_form.h"

#include <optional>
#include <string>

#include "errors/error_screen.h"
#include "frame/markup.h"
#include "items/item_updates.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/conversions.h"
#include "views/option_lists.h"

namespace tidewell {
namespace {

// --- The values shown ---

// A posted hour the hour select can mark, or -1.
long PostedHour(const std::string& text) {
  std::optional<double> hour = ParseNumericText(text);
  return hour && *hour >= 0 && *hour <= 23 ? CLng(text) : -1;
}

// After a refused post the user's input stays, except the date when it was the reason.
void KeepPostedValues(const Page& page, ItemFormValues& values) {
  if (page.Error.Kind != ErrorKind::kInvalidDate) values.date = page.FormValue("datestamp");
  values.hour = PostedHour(page.FormValue("timestamp"));
  values.time_text = page.FormValue("timetext");
  values.heading = page.FormValue("heading");
  values.description = page.FormValue("description");
  values.urgent = page.FormValue("urgent") == "on" ? "checked" : "";
  values.complete = page.FormValue("complete") == "on" ? "checked" : "";
}

// A new item starts on the date and hour shown, without minutes; an edited one as stored.
ItemFormValues FormValues(Page& page, bool editing, bool refused) {
  ItemFormValues values;
  values.date = CStr(page.CurrentDate);
  values.hour = page.CurrentHour;
  if (editing) LoadItemForEdit(page, page.ItemId, values);
  if (refused) KeepPostedValues(page, values);
  return values;
}

// --- Markup ---

void AppendOwnerList(Page& page) {
  page.PageBuffer += "Owner:<br>";
  page.PageBuffer += "<select class=text name=ownerkey>";
  page.PageBuffer += ItemOwnerList(page);
  page.PageBuffer += "</select>";
  page.PageBuffer += "<br><br>";
}

// Hours always in 24-hour form.
void AppendHourSelect(Page& page, long hour) {
  page.PageBuffer += "<select class=text name=timestamp >";
  for (long h = 0; h <= 23; ++h) {
    page.PageBuffer += TextOption(FormatTwoDigits(h), FormatTwoDigits(h), h == hour);
  }
  page.PageBuffer += "</select>";
  page.PageBuffer += "&nbsp;:&nbsp;";
}

// The quarter hours first, then every minute; an item's own minute is marked among the
// minutes, except 00, for which the first entry already stands.
void AppendMinuteSelect(Page& page, const std::string& time_text) {
  const std::string minute =
      time_text.size() > 2 ? time_text.substr(time_text.size() - 2) : time_text;
  std::string& out = page.PageBuffer;
  out += "<select class=text name=timetext >";
  out += "<option class=text value=00 >00</option>";
  out += "<option class=text value=15 >15</option>";
  out += "<option class=text value=30 >30</option>";
  out += "<option class=text value=45 >45</option>";
  out += "<option class=text value=00 >--</option>";
  for (long m = 0; m <= 59; ++m) {
    const std::string mm = FormatTwoDigits(m);
    out += TextOption(mm, mm, m != 0 && mm == minute);
  }
  out += "</select>";
}

void AppendDateAndTime(Page& page, const ItemFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<table cellpadding=0 cellspacing=0 border=0>";
  out += "<tr>";
  out += "<td class=text>Scheduled Date:</td>";
  out += "<td class=text>&nbsp;&nbsp;Scheduled Time:</td>";
  out += "</tr>";
  out += "<tr>";
  out += "<td class=text>";
  // The picker fills the form's date field ("5/5").
  AppendDateField(page, "datestamp", values.date,
                  DatePickerLink(page, screens::kDatePicker, values.date));
  out += "</td>";
  out += "<td class=text>";
  out += "&nbsp;&nbsp;";
  AppendHourSelect(page, values.hour);
  AppendMinuteSelect(page, values.time_text);
  out += "</td>";
  out += "</tr>";
  out += "</table>";
}

void AppendHeadingAndDescription(Page& page, const ItemFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<br>";
  out += "Heading:<br>";
  out += "<input class=text type=text name=heading size=50 maxlength=50 value=\"" +
         EscapeHtml(values.heading) + "\" >";
  out += "<br><br>";
  out += "Description: (max 255 chars)<br>";
  out += "<textarea class=text name=description cols=50 rows=5 >" + EscapeHtml(values.description) +
         "</textarea>";
  out += "<br>";
}

void AppendFlags(Page& page, const ItemFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<input type=checkbox name=urgent " + values.urgent + " >&nbsp;Urgent";
  out += "&nbsp;&nbsp;<input type=checkbox name=complete " + values.complete + " >&nbsp;Complete";
  out += "<br><br>";
}

void AppendSubmit(Page& page, bool editing) {
  if (editing) {
    page.PageBuffer += "<input class=text type=submit name=submit value=Update >";
    page.PageBuffer += "<input type=hidden name=action value=u />";
  } else {
    page.PageBuffer += "<input class=text type=submit name=submit value=Add >";
    page.PageBuffer += "<input type=hidden name=action value=a />";
  }
}

}  // namespace

void AddModifyView(Page& page) {
  // The form is drawn with an error pending only when its post was refused.
  const bool refused = page.Error.Raised();
  const bool editing = page.ItemId != 0;
  const ItemFormValues values = FormValues(page, editing, refused);
  if (page.Error.Raised() && !refused) {
    // The item could not be read: the error screen instead of a form that would lose it.
    ErrorScreen(page);
    return;
  }
  std::string& out = page.PageBuffer;

  AppendValidator(page, {{"datestamp", "Scheduled Date"}, {"heading", "Heading"}});
  AppendDatePickerScript(page);
  out += "<!-- AddModifyView  Start -->";
  AppendTitleBar(page, editing ? "Edit Scheduled Item." : "Add Item to Schedule.",
                 TitleCell::kPlain);
  AppendFormBodyOpening(page, screens::kItemHelp);
  // The post goes back through screen 4, so that the driver runs it, with the view to go on to.
  out += "<form action=" + ReturningLink(page, screens::kItemForm, page.ItemId) +
         " method=post name=addmodify onsubmit=\"return validator(this)\" >";
  if (refused) out += "<font color=#b22222><b>" + page.Error.Text + "</b></font><br><br>";
  AppendOwnerList(page);
  AppendDateAndTime(page, values);
  AppendHeadingAndDescription(page, values);
  AppendFlags(page, values);
  AppendSubmit(page, editing);
  out += "</form>";
  AppendFormBodyClosing(page);
  out += "<!-- AddModifyView End -->";
}

}  // namespace tidewell
