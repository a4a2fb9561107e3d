#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell::ado {

// Dates as the engines store them: "yyyy-mm-dd", or "yyyy-mm-dd hh:mm:ss" when the value has
// a time of day. Both providers read and write this form, whatever the regional settings.
std::string IsoDateText(Date value);

// Reads "yyyy-mm-dd" with an optional " hh:mm[:ss[.fraction]]" (or "T" before the time) and an
// optional trailing time zone, which is dropped. Nothing when the text is no such date.
std::optional<Date> ParseIsoDate(std::string_view text);

// Reads the m/d/yyyy form the statements splice (two- or four-digit years), with an optional
// time "h:mm[:ss]" and AM/PM. Nothing when the text is no valid date.
std::optional<Date> ParseStatementDate(std::string_view text);

}  // namespace tidewell::ado
