#include "page/property_table.h"

#include <array>
#include <string>
#include <variant>

#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

using Member = std::variant<bool Properties::*, long Properties::*, std::string Properties::*,
                            ASPDataServer Properties::*>;

struct Entry {
  std::string_view name;
  Member member;
};

const std::array<Entry, 22> kProperties = {{
    {"Visible", &Properties::Visible},
    {"Position", &Properties::Position},
    {"HexQueryString", &Properties::HexQueryString},
    {"DataServer", &Properties::DataServer},
    {"ConnectionString", &Properties::ConnectionString},
    {"AllowUserOwnDefaults", &Properties::AllowUserOwnDefaults},
    {"DefaultStartHour", &Properties::DefaultStartHour},
    {"Show12HourDay", &Properties::Show12HourDay},
    {"HighlightDeltaDays", &Properties::HighlightDeltaDays},
    {"HighlightTodaysDate", &Properties::HighlightTodaysDate},
    {"HighlightTodaysTime", &Properties::HighlightTodaysTime},
    {"HighlightDeltaDaysColor", &Properties::HighlightDeltaDaysColor},
    {"HighlightTodaysDateColor", &Properties::HighlightTodaysDateColor},
    {"HighlightTodaysTimeColor", &Properties::HighlightTodaysTimeColor},
    {"TimeViewHeadingColor", &Properties::TimeViewHeadingColor},
    {"TimeViewDescriptionColor", &Properties::TimeViewDescriptionColor},
    {"TimeViewSelectedItemColor", &Properties::TimeViewSelectedItemColor},
    {"TimeViewColumnColor", &Properties::TimeViewColumnColor},
    {"CompletedItemColor", &Properties::CompletedItemColor},
    {"CompletedItemCrossOut", &Properties::CompletedItemCrossOut},
    {"TidewellColor", &Properties::TidewellColor},
    {"ImagePath", &Properties::ImagePath},
}};

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

}  // namespace

void LetProperty(Properties& p, std::string_view name, const Variant& value) {
  const Entry& entry = Find(name);
  if (entry.name == "ImagePath") return SetImagePath(p, CStr(value));
  std::visit(
      [&](auto member) {
        using T = std::remove_reference_t<decltype(p.*member)>;
        if constexpr (std::is_same_v<T, bool>) p.*member = CBool(value);
        if constexpr (std::is_same_v<T, long>) p.*member = CLng(value);
        if constexpr (std::is_same_v<T, std::string>) p.*member = CStr(value);
        if constexpr (std::is_same_v<T, ASPDataServer>) p.*member = ToDataServer(value);
      },
      entry.member);
}

Variant GetProperty(const Properties& p, std::string_view name) {
  return std::visit(
      [&](auto member) -> Variant {
        using T = std::remove_cvref_t<decltype(p.*member)>;
        if constexpr (std::is_same_v<T, ASPDataServer>) {
          return static_cast<int>(p.*member);
        } else {
          return Variant(p.*member);
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
