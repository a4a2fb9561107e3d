// The component's public properties, one line each, in the order of the type library. This
// list is the only place a property is declared: the Properties struct (properties.h), the
// name-based table (property_table.cc) and ASPTidewell's Get and Set pairs
// (component/asp_tidewell.h) are all expanded from it, so adding a property is adding a line.
//
//   TIDEWELL_PROPERTY(kind, Name, default, at start page)
//
// kind          how the value is held and converted (property_kind in properties.h):
//                 Flag   bool, set by name through CBool
//                 Number long, set by name through CLng
//                 Text   std::string, set by name through CStr, stored as given
//                 Folder std::string that keeps a trailing "/" however it is set
//                 DataServerChoice  ASPDataServer, set by name from "Access", "SQLServer",
//                        0 or 1, read by name as its number
// at start page kReset when OnStartPage (and object creation) sets it back to its default,
//               kKept when only the page's own settings change it
//
// This file has no include guard on purpose: each includer defines TIDEWELL_PROPERTY,
// includes it, and undefines the macro again.

#ifndef TIDEWELL_PROPERTY
#error "Define TIDEWELL_PROPERTY(kind, Name, default_value, at_start) before including this list"
#endif

// clang-format off
//                kind              Name                       default                start page
TIDEWELL_PROPERTY(Flag,             Visible,                   false,                 kKept)
TIDEWELL_PROPERTY(Text,             Position,                  "",                    kKept)
TIDEWELL_PROPERTY(Flag,             HexQueryString,            true,                  kReset)
TIDEWELL_PROPERTY(DataServerChoice, DataServer,                ASPDataServer::Access, kKept)
TIDEWELL_PROPERTY(Text,             ConnectionString,          "",                    kKept)
TIDEWELL_PROPERTY(Flag,             AllowUserOwnDefaults,      false,                 kKept)
TIDEWELL_PROPERTY(Number,           DefaultStartHour,          -1,                    kReset)
TIDEWELL_PROPERTY(Flag,             Show12HourDay,             false,                 kKept)
TIDEWELL_PROPERTY(Flag,             HighlightDeltaDays,        false,                 kKept)
TIDEWELL_PROPERTY(Flag,             HighlightTodaysDate,       false,                 kKept)
TIDEWELL_PROPERTY(Flag,             HighlightTodaysTime,       false,                 kKept)
TIDEWELL_PROPERTY(Text,             HighlightDeltaDaysColor,   "#efefef",             kReset)
TIDEWELL_PROPERTY(Text,             HighlightTodaysDateColor,  "#dee7f7",             kReset)
TIDEWELL_PROPERTY(Text,             HighlightTodaysTimeColor,  "#dee7f7",             kReset)
TIDEWELL_PROPERTY(Text,             TimeViewHeadingColor,      "#ffffff",             kReset)
TIDEWELL_PROPERTY(Text,             TimeViewDescriptionColor,  "#ffffff",             kReset)
TIDEWELL_PROPERTY(Text,             TimeViewSelectedItemColor, "#dee7f7",             kReset)
TIDEWELL_PROPERTY(Text,             TimeViewColumnColor,       "#a5c1e7",             kReset)
TIDEWELL_PROPERTY(Text,             CompletedItemColor,        "#adadad",             kReset)
TIDEWELL_PROPERTY(Flag,             CompletedItemCrossOut,     false,                 kKept)
TIDEWELL_PROPERTY(Text,             TidewellColor,             "#172676",             kReset)
TIDEWELL_PROPERTY(Folder,           ImagePath,                 "",                    kKept)
// clang-format on
