#include "views/view_lists.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "data/recordset.h"
#include "data/statement.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/date_text.h"
#include "runtime/dates.h"
#include "views/item_list.h"
#include "views/list_reading.h"

namespace tidewell {
namespace {

// A cell as the statement tells it apart: the day (the whole days of its date serial, as the
// statement splices only the date), and the hour when the cell is one. A row belongs to the
// cell whose condition it met.
using CellKey = std::pair<long, long>;

long DayOf(Date date) {
  return static_cast<long>(std::floor(date.serial));
}

CellKey KeyOf(const ListCell& cell) {
  return {DayOf(cell.day), cell.hour.value_or(-1)};
}

}  // namespace

ViewLists::ViewLists(Page& page, long mode, std::vector<ListCell> cells, ListReading reading)
    : page_(page), mode_(mode), cells_(std::move(cells)), reading_(reading) {
  // An order given as a column's position counts the columns of the cell's own statement,
  // which the view's outnumbers by DateStamp: such a view reads cell by cell, so that a
  // position past the cell's columns fails as it always did.
  if (!IsNamedSort(ExpandSortCode(page_.SortOrder, mode_))) reading_ = ListReading::kOnePerCell;
  if (reading_ == ListReading::kOnePerCell) {
    snapshot_.emplace(page_);
  } else {
    lists_.resize(cells_.size());
    TrapListFailure(page_, [this] {
      ReadAll();
      return std::string();
    });
  }
}

void ViewLists::ReadAll() {
  const ListOwner owner{page_.UserKey, ListGroupScope(page_)};
  const std::string sort = ExpandSortCode(page_.SortOrder, mode_);
  const ListLimit limit = LimitOf(mode_);
  const bool by_hour = CellsAreHours(cells_);
  ado::Statement statement = ViewListStatement(cells_, owner, sort, page_.props.DataServer);
  // A cell's own statement stopped at `fetched` rows: the rest of a crowded cell is not read.
  statement.KeepPerKey({by_hour ? std::vector<std::string>{"DateStamp", "TimeStamp"}
                                : std::vector<std::string>{"DateStamp"},
                        limit.fetched});
  ado::Recordset rs;
  rs.Open(statement, ListConnection(page_));

  // The cells by key, looked up with the cell of the row before first: rows come cell by cell.
  std::vector<std::pair<CellKey, size_t>> cell_of;
  cell_of.reserve(cells_.size());
  for (size_t i = 0; i < cells_.size(); ++i) cell_of.emplace_back(KeyOf(cells_[i]), i);
  std::sort(cell_of.begin(), cell_of.end());
  auto last_cell = cell_of.end();
  std::vector<long> fetched(cells_.size(), 0);
  const ItemReader reader(rs, /*time_table=*/false);
  ado::Field date_stamp = rs.Fields("DateStamp");
  ado::Field time_stamp = rs.Fields("TimeStamp");
  // The rows come in the lists' order, so each cell's rows come in its own list's order.
  for (; !rs.Eof(); rs.MoveNext()) {
    const CellKey key{DayOf(CDate(date_stamp.Value())), by_hour ? CLng(time_stamp.Value()) : -1};
    if (last_cell == cell_of.end() || last_cell->first != key) {
      last_cell = std::lower_bound(cell_of.begin(), cell_of.end(), std::pair(key, size_t{0}));
      // Cannot happen: every row met one cell's condition.
      if (last_cell == cell_of.end() || last_cell->first != key) continue;
    }
    const size_t cell = last_cell->second;
    DayList& list = lists_[cell];
    // The statement keeps a cell's first `fetched` rows (KeepPerKey); the list shows the first
    // `shown` and tells of more when it was given all `fetched`.
    if (static_cast<long>(list.rows.size()) < limit.shown) {
      // Room for the whole list at once: each row moved on growth is a handful of strings.
      if (list.rows.empty()) list.rows.reserve(static_cast<size_t>(limit.shown));
      list.rows.push_back(reader.Read());
    }
    list.more = ++fetched[cell] >= limit.fetched;
  }
  rs.Close();
}

std::string ViewLists::ListOf(size_t index) {
  std::string list;
  AppendListOf(list, index);
  return list;
}

void ViewLists::AppendListOf(std::string& out, size_t index) {
  const ListCell& cell = cells_[index];
  if (reading_ == ListReading::kOnePerCell) {
    out += BuildItemList(page_, mode_, cell.day, cell.hour.value_or(0));
    return;
  }
  const size_t start = out.size();
  if (!page_.Error.Raised()) {
    TrapListFailure(page_, [&] {
      AppendDayListMarkup(out, page_, mode_, ShortDateText(DateOnly(cell.day)), lists_[index]);
      return std::string();
    });
    if (page_.Error.Raised()) out.resize(start);
  }
  if (out.size() == start) out += "&nbsp;";
}

}  // namespace tidewell
