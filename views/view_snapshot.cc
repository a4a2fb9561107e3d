#include "views/view_snapshot.h"

#include "data/database_error.h"
#include "page/page.h"

namespace tidewell {

ViewSnapshot::ViewSnapshot(Page& page) : page_(page) {
  if (!page_.Connection || page_.Connection->State() != ado::adStateOpen) return;
  try {
    page_.Connection->BeginTrans();
    open_ = true;
  } catch (const ado::DatabaseError&) {
    // The lists then run one by one, as they would without it.
  }
}

ViewSnapshot::~ViewSnapshot() {
  if (!open_) return;
  try {
    if (page_.Error.Raised()) {
      page_.Connection->RollbackTrans();
    } else {
      page_.Connection->CommitTrans();
    }
  } catch (const ado::DatabaseError&) {
    // Nothing was written; closing the connection ends what is left of it.
  }
}

}  // namespace tidewell
