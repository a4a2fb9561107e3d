#pragma once

#include <string_view>
#include <vector>

#include "page/properties.h"
#include "runtime/variant.h"

namespace tidewell {

// The properties by name, the way automation resolved a name a script used. Names match
// without regard to case. Values convert by the run time's rules (CBool, CLng, CStr), so
// "True", "-1" and "0" all set a Boolean; a value that does not convert raises the run
// time's type mismatch, and an unknown name raises error 438.
void LetProperty(Properties& p, std::string_view name, const Variant& value);
Variant GetProperty(const Properties& p, std::string_view name);
bool IsPropertyName(std::string_view name);

// The names in the order of the type library.
std::vector<std::string_view> PropertyNames();

}  // namespace tidewell
