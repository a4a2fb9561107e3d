#include "feeds/event_import.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "accounts/account_records.h"
#include "accounts/account_statements.h"
#include "accounts/user_options.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "data/transaction.h"
#include "feeds/feed_calendar.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// --- Statements ---

// Every instance the account has imported, read at once: UIDs are the other calendar's text
// and are never spliced into a statement, only written through bound values.
Statement ImportedEventsOfStatement(std::string_view owner_key) {
  return Statement("SELECT Uid, InstanceStart, ItemID FROM TidewellImportedEvents WHERE OwnerKey = ")
      .Text(owner_key);
}

Statement ImportedEventsTable() {
  return Statement("TidewellImportedEvents");
}

// --- Texts as the form leaves them ---

// Line ends as a browser posts a text area's: CR LF.
std::string WithFormLineEnds(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      out += "\r\n";
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

// A one-line field holds no line ends: each becomes a blank.
std::string OnOneLine(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return out;
}

// The text trimmed as the form trims it, cut to `limit` characters (whole UTF-8 sequences);
// `cut` is set when it was longer.
std::string WithinLimit(std::string_view text, size_t limit, bool& cut) {
  std::string trimmed = Trim(text);
  size_t characters = 0;
  for (size_t at = 0; at < trimmed.size(); ++at) {
    const bool starts_character = (static_cast<unsigned char>(trimmed[at]) & 0xC0) != 0x80;
    if (starts_character && ++characters > limit) {
      cut = true;
      return RTrim(std::string_view(trimmed).substr(0, at));
    }
  }
  cut = false;
  return trimmed;
}

// --- The account ---

struct ImportingAccount {
  NamedAccount named;
  long start_hour = 0;
};

// The account's own start hour when it has one that is an hour, else the site's.
ImportingAccount AccountFor(ado::Connection& connection, std::string_view user_name,
                            long site_start_hour) {
  std::optional<NamedAccount> named = FindAccountNamed(connection, user_name);
  if (!named) throw ImportRefused("there is no user named " + std::string(user_name));
  Recordset rs;
  rs.Open(AccountStatement(named->owner_key), connection);
  const UserOptions options = ReadUserOptions(CStrOrBlank(rs.Fields("Options").Value()));
  const bool own = options.start_hour && *options.start_hour >= 0 && *options.start_hour <= 23;
  return {*named, own ? *options.start_hour : site_start_hour};
}

// --- What earlier imports made ---

using InstanceName = std::pair<std::string, std::string>;  // UID, instance start

std::map<InstanceName, long> ImportedItems(ado::Connection& connection,
                                           std::string_view owner_key) {
  std::map<InstanceName, long> imported;
  Recordset rs;
  rs.Open(ImportedEventsOfStatement(owner_key), connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    imported.emplace(InstanceName{CStrOrBlank(rs.Fields("Uid").Value()),
                                  CStrOrBlank(rs.Fields("InstanceStart").Value())},
                     CLng(rs.Fields("ItemID").Value()));
  }
  return imported;
}

bool ItemExists(ado::Connection& connection, long item_id, std::string_view owner_key) {
  Recordset rs;
  rs.Open(OwnItemStatement(item_id, owner_key), connection);
  return !rs.Eof();
}

void RememberImport(ado::Connection& connection, std::string_view owner_key,
                    const EventInstance& instance, long item_id) {
  Recordset rs;
  rs.Open(ImportedEventsTable(), connection, ado::adOpenDynamic, ado::adLockOptimistic);
  rs.AddNew();
  rs.Fields("OwnerKey").SetValue(owner_key);
  rs.Fields("Uid").SetValue(instance.uid);
  rs.Fields("InstanceStart").SetValue(instance.instance_start);
  rs.Fields("ItemID").SetValue(item_id);
  rs.Update();
  rs.Close();
}

std::string Counted(long count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

ItemRecord ItemOfInstance(const EventInstance& instance, std::string_view owner_key,
                       long start_hour, ItemCuts& cuts) {
  ItemRecord item;
  item.owner_key = owner_key;
  item.date = DateSerial(instance.start.year, instance.start.month, instance.start.day);
  item.hour = instance.all_day ? start_hour : instance.start.hour;
  item.time_text = ItemTimeText(item.hour, instance.all_day ? 0 : instance.start.minute);
  // A summary that starts with the mark our own feeds give complete items is a complete item,
  // so that a feed imported into another calendar of ours keeps what was done.
  std::string_view summary = instance.summary;
  item.complete = summary.starts_with(kCompleteMark);
  if (item.complete) summary.remove_prefix(kCompleteMark.size());
  bool cut = false;
  item.heading = WithinLimit(OnOneLine(summary), kHeadingMaxCharacters, cut);
  cuts.headings += cut;
  item.description =
      WithinLimit(WithFormLineEnds(instance.description), kDescriptionMaxCharacters, cut);
  cuts.descriptions += cut;
  item.urgent = instance.priority >= 1 && instance.priority <= 4;
  return item;
}

ImportReport ImportEvents(ado::Connection& connection, std::string_view user_name,
                          const CalendarEvents& events, long site_start_hour) {
  ImportReport report;
  report.skipped = events.skipped;
  InOneTransaction(connection, [&] {
    // Held to the end, so that the account cannot be deleted, nor the same file imported by
    // another run, in between.
    connection.Execute(LockAccountsStatement());
    const ImportingAccount account = AccountFor(connection, user_name, site_start_hour);
    report.user_name = account.named.user_name;
    const std::string& owner_key = account.named.owner_key;
    const std::map<InstanceName, long> earlier = ImportedItems(connection, owner_key);
    std::set<InstanceName> this_run;
    for (const EventInstance& instance : events.instances) {
      const InstanceName name{instance.uid, instance.instance_start};
      if (auto found = earlier.find(name); found != earlier.end()) {
        ++(ItemExists(connection, found->second, owner_key) ? report.already_imported
                                                            : report.deleted_since);
        continue;
      }
      if (!this_run.insert(name).second) {
        ++report.repeated;
        continue;
      }
      const long item_id = InsertItem(
          connection, ItemOfInstance(instance, owner_key, account.start_hour, report.cuts));
      RememberImport(connection, owner_key, instance, item_id);
      ++report.imported;
    }
  });
  return report;
}

std::string ImportSummary(const ImportReport& report) {
  std::string summary =
      "imported " + Counted(report.imported, "item", "items") + " for " + report.user_name;
  std::vector<std::string> reasons;
  auto reason = [&reasons](long count, const std::string& why) {
    if (count > 0) reasons.push_back(std::to_string(count) + " " + why);
  };
  reason(report.already_imported, "already imported");
  reason(report.deleted_since, "imported before and deleted since");
  reason(report.repeated, "repeated in the file");
  reason(report.skipped.cancelled, "cancelled");
  reason(report.skipped.outside_window, "outside the window");
  reason(report.skipped.not_events, report.skipped.not_events == 1 ? "not a VEVENT" : "not VEVENTs");
  summary += "; skipped " + std::to_string(report.Skipped());
  if (!reasons.empty()) {
    summary += " (";
    for (size_t i = 0; i < reasons.size(); ++i) summary += (i > 0 ? ", " : "") + reasons[i];
    summary += ")";
  }
  if (report.cuts.headings + report.cuts.descriptions > 0) {
    std::vector<std::string> cut;
    if (report.cuts.headings > 0) {
      cut.push_back(Counted(report.cuts.headings, "heading", "headings") + " to " +
                    std::to_string(kHeadingMaxCharacters) + " characters");
    }
    if (report.cuts.descriptions > 0) {
      cut.push_back(Counted(report.cuts.descriptions, "description", "descriptions") + " to " +
                    std::to_string(kDescriptionMaxCharacters) + " characters");
    }
    summary += "; cut " + cut.front() + (cut.size() > 1 ? " and " + cut.back() : "");
  }
  return summary;
}

}  // namespace tidewell
