#include "page/screen_links.h"

#include "page/link_codec.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {

std::string ScreenReturningTo(long screen, long return_view) {
  return std::to_string(screen) + "/" + std::to_string(return_view);
}

std::string ReturningLink(const Page& page, long screen, long item_id) {
  return BuildLink(page, ScreenReturningTo(screen, page.ReturnView), page.CurrentDate,
                   page.CurrentHour, item_id, page.UserKey, page.SortOrder, page.AdminKey);
}

std::string DatePickerLink(const Page& page, long form_screen, const std::string& field_value,
                           std::string_view suffix) {
  const Variant month = IsDate(field_value) ? Variant(CDate(field_value)) : page.CurrentDate;
  return BuildLink(page, ScreenReturningTo(screens::kDatePicker, form_screen), month,
                   page.CurrentHour, 0, page.UserKey, page.SortOrder, page.AdminKey, suffix);
}

}  // namespace tidewell
