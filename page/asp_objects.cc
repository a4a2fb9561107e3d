#include "page/asp_objects.h"

#include "runtime/strings.h"

namespace tidewell {

bool AspCollection::Contains(std::string_view name) const {
  for (const auto& [key, value] : items_) {
    if (EqualsIgnoringCase(key, name)) return true;
  }
  return false;
}

std::string AspCollection::operator()(std::string_view name) const {
  std::string joined;
  bool first = true;
  for (const auto& [key, value] : items_) {
    if (!EqualsIgnoringCase(key, name)) continue;
    if (!first) joined += ", ";
    joined += value;
    first = false;
  }
  return joined;
}

std::string AspRequest::operator()(std::string_view name) const {
  for (const AspCollection* collection : {&QueryString, &Form, &Cookies, &ServerVariables}) {
    if (collection->Contains(name)) return (*collection)(name);
  }
  return "";
}

}  // namespace tidewell
