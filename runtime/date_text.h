#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

// Date text under the regional settings in force, as the run time wrote it: the short date,
// and after a blank the long time when the value has a time of day.
std::string DateToText(Date d);
std::string ShortDateText(Date d);
std::string LongTimeText(Date d);

// Reads date text the way the run time's IsDate and CDate did: the short date with "/", "-"
// or "." separators and two- or four-digit years in the locale's order (the other order when
// that reading is impossible, then year first), a month name form ("February 29, 2024",
// "29 Feb 2024"), ISO yyyy-mm-dd, each with an optional time ("14:30", "2:30:15 PM"), or a
// time alone. Nothing when the text is no date.
std::optional<Date> ParseDateText(std::string_view text);

}  // namespace tidewell
