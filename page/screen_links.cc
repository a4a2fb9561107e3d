#include "page/screen_links.h"

#include "page/link_codec.h"
#include "page/page.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

// The screen field's text: the number, then "/" and the argument when there is one.
std::string ScreenField(const LinkScreen& screen) {
  std::string field = std::to_string(screen.screen);
  if (!screen.argument.empty()) field += "/" + screen.argument;
  return field;
}

}  // namespace

LinkScreen ScreenReturningTo(long screen, long return_view) {
  return {screen, std::to_string(return_view)};
}

LinkScreen ScreenSteppingTo(long screen, Step step) {
  return {screen, step == Step::kBack ? "p" : "n"};
}

void AppendLinkTo(std::string& out, const Page& page, const LinkScreen& screen,
                  const LinkChanges& changes) {
  // The page's own values only where the link keeps them: a month view writes some hundreds
  // of links, most with a date and hour of their own.
  const Variant page_date = changes.date ? Variant() : Variant(page.CurrentDate);
  const Variant page_hour = changes.hour ? Variant() : Variant(page.CurrentHour);
  const Variant page_sort = changes.sort ? Variant() : Variant(page.SortOrder);
  AppendLink(out, page, ScreenField(screen), changes.date ? *changes.date : page_date,
             changes.hour ? *changes.hour : page_hour, changes.item, page.UserKey,
             changes.sort ? *changes.sort : page_sort, page.AdminKey, changes.suffix);
}

std::string LinkTo(const Page& page, const LinkScreen& screen, const LinkChanges& changes) {
  std::string link;
  AppendLinkTo(link, page, screen, changes);
  return link;
}

std::string SignedOutLink(const Page& page) {
  return BuildLink(page, ScreenField(screens::kLogin), Now(), 0, 0, "", "", "");
}

std::string ReturningLink(const Page& page, long screen, long item_id) {
  return LinkTo(page, ScreenReturningTo(screen, page.ReturnView), {.item = item_id});
}

std::string DatePickerLink(const Page& page, long form_screen, const std::string& field_value,
                           std::string_view suffix) {
  const Date month = IsDate(field_value) ? CDate(field_value) : page.CurrentDate;
  return LinkTo(page, ScreenReturningTo(screens::kDatePicker, form_screen),
                {.date = month, .suffix = suffix});
}

}  // namespace tidewell
