#include "feeds/calendar_text.h"

#include <cctype>

namespace tidewell {
namespace {

// A component as the text spells it: its name, its BEGIN line and the lines of its own
// properties (nested components' lines belong to them).
struct ScannedComponent {
  std::string name;
  int begin = 0;
  std::vector<int> properties;
};

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return upper;
}

bool StartsWithWord(std::string_view line, std::string_view word) {
  return line.size() >= word.size() && UpperCase(line.substr(0, word.size())) == word;
}

// One content line, its folds joined: the text and the line number it starts on.
struct ContentLine {
  std::string text;
  int number = 0;
};

// The text's content lines, unfolded as iCalendar folds them (a line that starts with a blank
// or a tab goes on the line before it). Empty lines are left out.
std::vector<ContentLine> ContentLines(std::string_view text) {
  std::vector<ContentLine> lines;
  int number = 0;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    ++number;
    at = end + 1;
    if (!line.empty() && (line.front() == ' ' || line.front() == '\t') && !lines.empty()) {
      lines.back().text += line.substr(1);
    } else if (!line.empty()) {
      lines.push_back({std::string(line), number});
    }
  }
  return lines;
}

std::string Trimmed(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
    text.remove_suffix(1);
  }
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
    text.remove_prefix(1);
  }
  return std::string(text);
}

// The components in the order of their BEGIN lines. Throws MalformedCalendar for an END
// that closes another component than the last one begun, and for a BEGIN left open.
std::vector<ScannedComponent> ScanComponents(std::string_view text) {
  std::vector<ScannedComponent> components;
  std::vector<size_t> open;  // indexes into `components`
  for (const ContentLine& line : ContentLines(text)) {
    if (StartsWithWord(line.text, "BEGIN:")) {
      components.push_back({UpperCase(Trimmed(line.text.substr(6))), line.number, {}});
      open.push_back(components.size() - 1);
    } else if (StartsWithWord(line.text, "END:")) {
      const std::string name = UpperCase(Trimmed(line.text.substr(4)));
      if (open.empty() || components[open.back()].name != name) {
        throw MalformedCalendar(
            "line " + std::to_string(line.number) + ": END:" + name +
            (open.empty() ? " closes nothing"
                          : " where " + components[open.back()].name + " (begun on line " +
                                std::to_string(components[open.back()].begin) +
                                ") should end"));
      }
      open.pop_back();
    } else if (!open.empty()) {
      components[open.back()].properties.push_back(line.number);
    } else {
      throw MalformedCalendar("line " + std::to_string(line.number) +
                              ": a line outside any BEGIN:VCALENDAR ... END:VCALENDAR");
    }
  }
  if (!open.empty()) {
    const ScannedComponent& unclosed = components[open.back()];
    throw MalformedCalendar("line " + std::to_string(unclosed.begin) + ": BEGIN:" +
                            unclosed.name + " has no END:" + unclosed.name +
                            " before the file ends");
  }
  return components;
}

// The components under `root` (itself first), in the order the parser made them: the order
// of their BEGIN lines.
void CollectInOrder(icalcomponent* root, std::vector<icalcomponent*>& out) {
  out.push_back(root);
  for (icalcomponent* child = icalcomponent_get_first_component(root, ICAL_ANY_COMPONENT);
       child != nullptr; child = icalcomponent_get_next_component(root, ICAL_ANY_COMPONENT)) {
    CollectInOrder(child, out);
  }
}

std::vector<icalproperty*> PropertiesOf(icalcomponent* component) {
  std::vector<icalproperty*> properties;
  for (icalproperty* property = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY);
       property != nullptr;
       property = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY)) {
    properties.push_back(property);
  }
  return properties;
}

// libical's message, less its note that it dropped the property: nothing is kept here.
std::string ParserMessage(icalproperty* error) {
  std::string message = icalproperty_get_xlicerror(error);
  const std::string dropped = " Removing entire property:";
  if (size_t at = message.find(dropped); at != std::string::npos) {
    message.replace(at, dropped.size(), "");
  }
  return message;
}

}  // namespace

ParsedCalendar ParsedCalendar::Parse(std::string_view text) {
  // Some programs start the file with a byte order mark, which belongs to no line.
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::vector<ScannedComponent> scanned = ScanComponents(text);
  ParsedCalendar parsed;
  parsed.root_.reset(icalparser_parse_string(std::string(text).c_str()));
  if (!parsed.root_) throw MalformedCalendar("the file holds no BEGIN:VCALENDAR ... END:VCALENDAR");

  std::vector<icalcomponent*> components;
  if (icalcomponent_isa(parsed.root_.get()) == ICAL_XROOT_COMPONENT) {
    // Several top-level components: the parser gathers them under a root of its own, which
    // stands on no line.
    for (icalcomponent* child =
             icalcomponent_get_first_component(parsed.root_.get(), ICAL_ANY_COMPONENT);
         child != nullptr;
         child = icalcomponent_get_next_component(parsed.root_.get(), ICAL_ANY_COMPONENT)) {
      CollectInOrder(child, components);
    }
  } else {
    CollectInOrder(parsed.root_.get(), components);
  }
  if (components.size() == scanned.size()) {
    for (size_t i = 0; i < components.size(); ++i) {
      Lines& lines = parsed.lines_[components[i]];
      lines.begin = scanned[i].begin;
      // One property a line, unless the parser split or joined some: then only the BEGIN.
      if (PropertiesOf(components[i]).size() == scanned[i].properties.size()) {
        lines.properties = scanned[i].properties;
      }
    }
  }

  for (icalcomponent* component : components) {
    if (icalcomponent_isa(component) == ICAL_VCALENDAR_COMPONENT &&
        (component == parsed.root_.get() || icalcomponent_get_parent(component) == parsed.root_.get())) {
      parsed.calendars_.push_back(component);
    }
    for (icalproperty* property : PropertiesOf(component)) {
      if (icalproperty_isa(property) == ICAL_XLICERROR_PROPERTY) {
        throw MalformedCalendar(parsed.Where(component, property) + ": " + ParserMessage(property));
      }
    }
  }
  if (parsed.calendars_.empty()) {
    throw MalformedCalendar(parsed.Where(components.front()) + ": the file holds no VCALENDAR");
  }
  return parsed;
}

int ParsedCalendar::LineOf(icalcomponent* component) const {
  auto found = lines_.find(component);
  return found == lines_.end() ? 0 : found->second.begin;
}

int ParsedCalendar::LineOf(icalcomponent* component, icalproperty* property) const {
  auto found = lines_.find(component);
  if (found == lines_.end()) return 0;
  const std::vector<icalproperty*> properties = PropertiesOf(component);
  for (size_t i = 0; i < properties.size() && i < found->second.properties.size(); ++i) {
    if (properties[i] == property) return found->second.properties[i];
  }
  return 0;
}

std::string ParsedCalendar::Where(icalcomponent* component) const {
  std::string where = icalcomponent_kind_to_string(icalcomponent_isa(component));
  if (icalcomponent_get_first_property(component, ICAL_SUMMARY_PROPERTY) != nullptr) {
    where += " \"" + std::string(icalcomponent_get_summary(component)) + "\"";
  }
  if (const int line = LineOf(component); line > 0) {
    where = "line " + std::to_string(line) + ", " + where;
  }
  return where;
}

std::string ParsedCalendar::Where(icalcomponent* component, icalproperty* property) const {
  std::string where = icalcomponent_kind_to_string(icalcomponent_isa(component));
  if (icalcomponent_get_first_property(component, ICAL_SUMMARY_PROPERTY) != nullptr) {
    where += " \"" + std::string(icalcomponent_get_summary(component)) + "\"";
  }
  if (const int begin = LineOf(component); begin > 0) {
    where += " (begun on line " + std::to_string(begin) + ")";
  }
  if (icalproperty_isa(property) != ICAL_XLICERROR_PROPERTY) {
    where += ", " + std::string(icalproperty_get_property_name(property));
  }
  if (const int line = LineOf(component, property); line > 0) {
    where = "line " + std::to_string(line) + ", " + where;
  }
  return where;
}

}  // namespace tidewell
