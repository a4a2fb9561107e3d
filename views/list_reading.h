#pragma once

#include <functional>
#include <string>

namespace tidewell {

struct Page;
namespace ado {
class Connection;
}

// How a view reads the item lists of its cells.
enum class ListReading {
  // One statement over every cell the view draws, its rows dealt out to the cells in memory.
  kOnePerView,
  // Each cell's own statement through BuildItemList: a statement a cell. The views fall back
  // to it for an order given as a column's position, which counts the columns of the cell's
  // statement; the tests render with it to check the other against it.
  kOnePerCell,
};

// What every item list of the views reads through: the list builder (item_list.h) and the
// views' lists (view_lists.h) alike.

// The request's connection; a page drawn without one fails as a closed connection fails.
ado::Connection& ListConnection(Page& page);

// The current user's group when his lists show the whole group, else 0 (his own items). Read
// from the database once per request: with his account, or by the first list that needs it.
long ListGroupScope(Page& page);

// Runs `read` under the lists' error trap: a statement that fails, or a value the run time
// cannot convert, becomes the request's pending kDataRead error (errors/database_errors.h) and the
// answer is "".
std::string TrapListFailure(Page& page, const std::function<std::string()>& read);

}  // namespace tidewell
