#include "page/property_table.h"

#include <string>
#include <type_traits>
#include <variant>

#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

// A member of Properties together with its kind: Text and Folder members have the same
// type but not the same rule.
template <typename Kind>
struct MemberOf {
  typename Kind::Value Properties::*member;
};

using Member = std::variant<MemberOf<property_kind::Flag>, MemberOf<property_kind::Number>,
                            MemberOf<property_kind::Text>, MemberOf<property_kind::Folder>,
                            MemberOf<property_kind::DataServerChoice>>;

struct Entry {
  std::string_view name;
  Member member;
};

// One entry per line of the list, in its order, which is the type library's.
const Entry kProperties[] = {
#define TIDEWELL_PROPERTY(kind, Name, default_value, at_start) \
  {#Name, MemberOf<property_kind::kind>{&Properties::Name}},
#include "page/property_list.h"
#undef TIDEWELL_PROPERTY
};

const Entry* FindOrNull(std::string_view name) {
  for (const Entry& e : kProperties) {
    if (EqualsIgnoringCase(e.name, name)) return &e;
  }
  return nullptr;
}

const Entry& Find(std::string_view name) {
  if (const Entry* e = FindOrNull(name)) return *e;
  throw AutomationError(438,
                        "Object doesn't support this property or method: " + std::string(name));
}

// The data server takes its enumeration's names as well as its numbers.
ASPDataServer ToDataServer(const Variant& value) {
  if (value.type() == Variant::Type::kString) {
    std::string text = Trim(value.AsString());
    if (EqualsIgnoringCase(text, "Access")) return ASPDataServer::Access;
    if (EqualsIgnoringCase(text, "SQLServer")) return ASPDataServer::SQLServer;
  }
  int32_t n = CLng(value);
  if (n != 0 && n != 1) RaiseTypeMismatch();
  return static_cast<ASPDataServer>(n);
}

// A value given by name, converted by the run time's rule for the kind; a value that does
// not convert raises the type mismatch there.
bool Converted(property_kind::Flag, const Variant& value) { return CBool(value); }
long Converted(property_kind::Number, const Variant& value) { return CLng(value); }
std::string Converted(property_kind::Text, const Variant& value) { return CStr(value); }
std::string Converted(property_kind::Folder, const Variant& value) { return CStr(value); }
ASPDataServer Converted(property_kind::DataServerChoice, const Variant& value) {
  return ToDataServer(value);
}

}  // namespace

void LetProperty(Properties& p, std::string_view name, const Variant& value) {
  std::visit(
      [&]<typename Kind>(MemberOf<Kind> m) {
        // Stored applies the kind's rule (ImagePath's trailing "/"), as the setters do.
        p.*m.member = Kind::Stored(Converted(Kind{}, value));
      },
      Find(name).member);
}

Variant GetProperty(const Properties& p, std::string_view name) {
  return std::visit(
      [&]<typename Kind>(MemberOf<Kind> m) -> Variant {
        // The data server reads back as its number, the way the type library declared it.
        if constexpr (std::is_same_v<Kind, property_kind::DataServerChoice>) {
          return static_cast<int>(p.*m.member);
        } else {
          return Variant(p.*m.member);
        }
      },
      Find(name).member);
}

bool IsPropertyName(std::string_view name) {
  return FindOrNull(name) != nullptr;
}

std::vector<std::string_view> PropertyNames() {
  std::vector<std::string_view> names;
  for (const Entry& e : kProperties) names.push_back(e.name);
  return names;
}

}  // namespace tidewell
