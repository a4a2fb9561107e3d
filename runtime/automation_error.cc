#include "runtime/automation_error.h"

namespace tidewell {

void RaiseTypeMismatch() {
  throw AutomationError(errors::kTypeMismatch, "Type mismatch");
}
void RaiseOverflow() {
  throw AutomationError(errors::kOverflow, "Overflow");
}
void RaiseInvalidUseOfNull() {
  throw AutomationError(errors::kInvalidUseOfNull, "Invalid use of Null");
}
void RaiseSubscriptOutOfRange() {
  throw AutomationError(errors::kSubscriptOutOfRange, "Subscript out of range");
}
void RaiseInvalidProcedureCall() {
  throw AutomationError(errors::kInvalidProcedureCall, "Invalid procedure call or argument");
}

}  // namespace tidewell
