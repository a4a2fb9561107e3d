#pragma once

#include <optional>
#include <string>
#include <vector>

#include "views/item_list.h"
#include "views/item_list_statements.h"
#include "views/item_rows.h"
#include "views/list_reading.h"
#include "views/view_snapshot.h"

namespace tidewell {

struct Page;

// The item lists of one view's cells: the days of a month or a week (modes 0 and 1 of
// item_list.h), or the hours of a day view (mode 2). Made before the view draws its first
// cell, it hands out each cell's list, exactly as BuildItemList gives it for that cell: the
// same rows in the same order, the same cut and "more" link.
//
// A failure, whether in the one statement or in a cell's, becomes the request's pending "DS"
// error; the list handed out is then "&nbsp;", and the view, seeing page.Error.Raised(), drops
// what it drew, as it does after BuildItemList.
class ViewLists {
 public:
  ViewLists(Page& page, long mode, std::vector<ListCell> cells,
            ListReading reading = ListReading::kOnePerView);

  // The list of the cell at `index` in the order the cells were given; markup, "&nbsp;" when
  // the cell has no items.
  std::string ListOf(size_t index);
  // The same, written at the end of `out`: a month's lists go straight into the page.
  void AppendListOf(std::string& out, size_t index);
  const ListCell& Cell(size_t index) const { return cells_[index]; }

 private:
  void ReadAll();

  Page& page_;
  long mode_;
  std::vector<ListCell> cells_;
  ListReading reading_;
  std::vector<DayList> lists_;  // one a cell, when read with one statement
  // Cell by cell, the lists read in one transaction, so that they show one state of the
  // calendar; one statement needs none.
  std::optional<ViewSnapshot> snapshot_;
};

}  // namespace tidewell
