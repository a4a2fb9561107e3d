#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

struct Page;

// Every link is ScriptName + "WS=" + the encoded payload
//   "~" f1 "~" f2 "~" f3 "~" f4 "~" f5 "~" f6 "~" f7 "~" [suffix]
// f1 screen ["/" return view or argument], f2 date, f3 hour, f4 item id [+ "d"], f5 the
// shown user's key, f6 sort token, f7 the acting administrator's key. Fields are turned into
// text by the run time's rules; the two keys are written signed (link_keys.h).
std::string BuildLink(const Page& page, const Variant& f1, const Variant& f2, const Variant& f3,
                      const Variant& f4, std::string_view f5, const Variant& f6,
                      std::string_view f7, std::string_view suffix = "");
// The same link written at the end of `out`.
void AppendLink(std::string& out, const Page& page, const Variant& f1, const Variant& f2,
                const Variant& f3, const Variant& f4, std::string_view f5, const Variant& f6,
                std::string_view f7, std::string_view suffix = "");

// With hex on, each byte becomes two upper-case hex digits ("~" is "7E"); with hex off the
// text passes unchanged. Working on bytes keeps every UTF-8 character intact.
std::string EncodeQueryString(std::string_view text, bool hex);

// The reverse: pairs of hex digits back to bytes, an odd last digit read alone. A pair that is
// not hexadecimal raises the run time's type mismatch.
std::string DecodeQueryString(std::string_view text, bool hex);

}  // namespace tidewell
