#include "component/screen_links.h"

#include "component/link_codec.h"
#include "component/page.h"

namespace tidewell {

std::string ScreenReturningTo(long screen, long return_view) {
  return std::to_string(screen) + "/" + std::to_string(return_view);
}

std::string ReturningLink(const Page& page, long screen, long item_id) {
  return BuildLink(page, ScreenReturningTo(screen, page.ReturnView), page.CurrentDate,
                   page.CurrentHour, item_id, page.UserKey, page.SortOrder, page.AdminKey);
}

}  // namespace tidewell
