#pragma once

#include <string>
#include <type_traits>

#include "data/dialect.h"

namespace tidewell {

// The kinds a property can be (the first column of property_list.h). A kind names the C++
// type the struct holds and the rule every setter applies before storing, whether the value
// arrives by name (property_table.h) or through an ASPTidewell setter, so the two paths
// cannot store different things. How a value given by name converts is the table's business.
namespace property_kind {

// Most kinds store what they are given.
template <typename T>
struct StoredAsGiven {
  using Value = T;
  static T Stored(T value) { return value; }
};

struct Flag : StoredAsGiven<bool> {};
struct Number : StoredAsGiven<long> {};
struct Text : StoredAsGiven<std::string> {};
// DataServer: the table also accepts the enumeration's names (see ToDataServer there).
struct DataServerChoice : StoredAsGiven<ASPDataServer> {};

// ImagePath: image links are the folder followed directly by a file name, so a non-empty
// folder gets a trailing "/" when it has none.
struct Folder {
  using Value = std::string;
  static std::string Stored(std::string folder);
};

}  // namespace property_kind

// What a property's getter returns: small values by copy, text by reference to the stored
// string.
template <typename Kind>
using PropertyRead = std::conditional_t<std::is_scalar_v<typename Kind::Value>,
                                        typename Kind::Value, const typename Kind::Value&>;

// The last column of property_list.h: whether OnStartPage sets the property back to its
// default, so that only what the page sets after it wins.
enum class AtStartPage { kKept, kReset };

// The component's public properties with their defaults, one member per line of
// property_list.h. The host page sets them by name (property_table.h) after OnStartPage, as
// script did.
struct Properties {
#define TIDEWELL_PROPERTY(kind, Name, default_value, at_start) \
  property_kind::kind::Value Name = default_value;
#include "page/property_list.h"
#undef TIDEWELL_PROPERTY
};

// What OnStartPage and object creation set again: the properties marked kReset in the list
// (the start hour, the colours and the hex link setting). Everything else keeps its value.
void ResetPropertyDefaults(Properties& p);

}  // namespace tidewell
