#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

struct Page;

// Pieces the four calendar views share.

// An arrow of a view's title bar: its tooltip and where it leads.
struct PagingLink {
  const char* title;  // "Previous Week"
  std::string href;
};

// The title bar of the week, day and time views: the 610-pixel bar in TidewellColor with the
// back and forward arrows in its first cell and "&nbsp;<b>" title "</b>" in the second. Like
// every title bar, the second cell is followed by an opening "<td>" where a "</td>" would
// close it.
void AppendPagingTitleBar(Page& page, const PagingLink& previous, const PagingLink& next,
                          std::string_view title);

// A grid's date for day `day` of `month` in `year`, made the way the grids have always made
// it: written as text in the server's date order ("m/d/yyyy" when the date-order test says
// month first, else "d/m/yyyy", day and month with two digits when `padded`) and read back by
// the run time's CDate.
Date GridDate(int month, int day, int year, bool month_first, bool padded);

// "Sunday, November 15, 2026": the day as the views' titles name it.
std::string LongDateTitle(Date day);

}  // namespace tidewell
