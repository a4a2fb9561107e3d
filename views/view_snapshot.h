#pragma once

namespace tidewell {

struct Page;

// While alive, a view's item lists read one state of the calendar: their statements run in
// one transaction, so that a page never shows half of an edit another visitor made meanwhile,
// and the embedded engine takes its read lock once for the page instead of once for each of
// its dozens of lists. Only a view that reads cell by cell needs it (view_lists.h). Nothing is written in it; it is committed at the end, or rolled back
// when a list failed. Without an open connection it does nothing (the lists then report the
// failure themselves).
class ViewSnapshot {
 public:
  explicit ViewSnapshot(Page& page);
  ~ViewSnapshot();
  ViewSnapshot(const ViewSnapshot&) = delete;
  ViewSnapshot& operator=(const ViewSnapshot&) = delete;

 private:
  Page& page_;
  bool open_ = false;
};

}  // namespace tidewell
