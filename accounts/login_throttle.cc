#include "accounts/login_throttle.h"

#include "data/recordset.h"
#include "data/statement.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Statement;

Statement InsertEntryStatement(std::string_view subject, std::string_view token, long long at) {
  return Statement("INSERT INTO LoginFailures (Subject, Token, FailedAt) VALUES (")
      .Text(subject)
      .Add(", ")
      .Text(token)
      .Add(", ")
      .Number(at)
      .Add(")");
}

Statement CountEntriesStatement(std::string_view subject, long long since) {
  return Statement("SELECT COUNT(*) AS Failures FROM LoginFailures WHERE Subject = ")
      .Text(subject)
      .Add(" AND FailedAt > ")
      .Number(since);
}

Statement DeleteEntryStatement(std::string_view token) {
  return Statement("DELETE FROM LoginFailures WHERE Token = ").Text(token);
}

Statement DeleteExpiredStatement(long long before) {
  return Statement("DELETE FROM LoginFailures WHERE FailedAt <= ").Number(before);
}

// Names are counted without regard to case, as the login matches them, and kept hashed: the
// table need not learn which names people try.
std::string AccountSubject(std::string_view user_name) {
  std::string folded(user_name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return "account:" + Sha256Hex(folded);
}

// Writes one entry and answers whether the subject is still within its limit, this entry
// included.
bool WriteAndCount(Page& page, LoginAttempt& attempt, const std::string& subject, int limit,
                   long long now) {
  std::string token = GenerateOwnerKey();
  page.Connection->Execute(InsertEntryStatement(subject, token, now));
  attempt.entries.push_back(std::move(token));
  ado::Recordset rs;
  rs.Open(CountEntriesStatement(subject, now - kLoginWindowSeconds), *page.Connection);
  return CLng(rs.Fields("Failures").Value()) <= limit;
}

}  // namespace

LoginAttempt AdmitLoginAttempt(Page& page, std::string_view user_name) {
  const long long now = UnixNow();
  page.Connection->Execute(DeleteExpiredStatement(now - kLoginWindowSeconds));
  LoginAttempt attempt;
  bool within = WriteAndCount(page, attempt, AccountSubject(user_name), kAccountFailureLimit, now);
  const std::string address =
      page.request ? page.request->ServerVariables("REMOTE_ADDR") : std::string();
  if (!address.empty()) {
    within =
        WriteAndCount(page, attempt, "address:" + address, kAddressFailureLimit, now) && within;
  }
  if (!within) {
    ForgetLoginAttempt(page, attempt);
    attempt.entries.clear();
  }
  attempt.admitted = within;
  return attempt;
}

void ForgetLoginAttempt(Page& page, const LoginAttempt& attempt) {
  for (const std::string& token : attempt.entries) {
    page.Connection->Execute(DeleteEntryStatement(token));
  }
}

}  // namespace tidewell
