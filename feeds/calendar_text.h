#pragma once

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <libical/ical.h>

namespace tidewell {

// An iCalendar text that cannot be read as a whole: what broke, and where ("line 7, VEVENT,
// DTSTART: ..."). An import refuses the whole file for it.
class MalformedCalendar : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct FreeComponent {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using ComponentHandle = std::unique_ptr<icalcomponent, FreeComponent>;

// A calendar text as libical's parser read it, with the lines its parts came from.
//
// libical keeps no line numbers, so the text is also walked here on its own, line by line
// (unfolded), only to remember where each BEGIN and each property line stands: the parser
// makes the components in the order of their BEGIN lines, and the properties of a component
// (an error it met in place of the property it could not read) in the order of their lines.
class ParsedCalendar {
 public:
  // Parses `text` with libical. Throws MalformedCalendar when the text holds no VCALENDAR,
  // when a BEGIN has no END (or an END no BEGIN), and when the parser left an error
  // (X-LIC-ERROR) anywhere in it.
  static ParsedCalendar Parse(std::string_view text);

  // The VCALENDARs of the text, in order.
  const std::vector<icalcomponent*>& Calendars() const { return calendars_; }

  // Where a component begins (its BEGIN line), and where one of its own properties stands;
  // 0 when unknown.
  int LineOf(icalcomponent* component) const;
  int LineOf(icalcomponent* component, icalproperty* property) const;

  // "line 12, VEVENT \"Standup\"": where a message about `component` points.
  std::string Where(icalcomponent* component) const;
  std::string Where(icalcomponent* component, icalproperty* property) const;

 private:
  struct Lines {
    int begin = 0;
    std::vector<int> properties;
  };
  ComponentHandle root_;
  std::vector<icalcomponent*> calendars_;
  std::map<icalcomponent*, Lines> lines_;
};

}  // namespace tidewell
