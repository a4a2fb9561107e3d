#pragma once

#include <string>
#include <utility>

namespace tidewell {

// Why a request stopped short of what it was asked to do. The kind picks what the page shows:
// most refusals stand in red above the form that was posted, the database kinds send the
// request to the error screen with their own advice.
enum class ErrorKind {
  kNone,
  // A posted date reads as no date (item form, search form): the form is drawn again with
  // the message, its date field empty.
  kInvalidDate,
  // The connection could not be made at all: no or an unknown provider, a connection string
  // that cannot be read. The error screen advises how a connection string is written.
  kCannotConnect,
  // The engine was reached but refused: a missing file, permissions, a server that is down,
  // a refused login, or an update it could not write. The error screen advises on the
  // permissions a database needs.
  kDatabaseRefused,
  // A statement failed while a screen's data was read, usually the wrong DataServer dialect.
  // The dispatcher draws the error screen after the part of the screen drawn so far, and the
  // error screen advises how DataServer must match the database.
  kDataRead,
  // The login form's name and password were refused (or the throttle refused the attempt).
  kLoginRefused,
  // An account's name belongs to another account.
  kUserNameTaken,
  // An account's initials belong to another member of the group it joins.
  kInitialsTaken,
  // Both of the above at once: the form empties both fields.
  kUserNameAndInitialsTaken,
  // A new group's name belongs to another group.
  kGroupNameTaken,
};

// The request's pending error: raised by an action or a failed read, shown by the screen the
// request ends on. `Text` is markup, ready for the page. Nothing clears it once raised.
struct PendingError {
  ErrorKind Kind = ErrorKind::kNone;
  std::string Text;

  bool Raised() const { return Kind != ErrorKind::kNone; }
  void Raise(ErrorKind kind, std::string text) {
    Kind = kind;
    Text = std::move(text);
  }
};

// Whether the account forms' refusal names the user name, or the initials, as taken.
inline bool NameWasTaken(ErrorKind kind) {
  return kind == ErrorKind::kUserNameTaken || kind == ErrorKind::kUserNameAndInitialsTaken;
}
inline bool InitialsWereTaken(ErrorKind kind) {
  return kind == ErrorKind::kInitialsTaken || kind == ErrorKind::kUserNameAndInitialsTaken;
}

}  // namespace tidewell
